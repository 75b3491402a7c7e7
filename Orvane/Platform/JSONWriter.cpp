// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/JSONWriter.h>
#include <Orvane/Platform/Text.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace orvane::json {
namespace {

constexpr std::size_t leastRoom = 256;

// What any number takes, the comma behind it included.
constexpr std::size_t roomOfANumber = 32;

// --- Texts, as many bytes at once as a register holds -------------------------------------------

constexpr std::uint64_t inEachByte(std::uint64_t byte) { return byte * 0x0101010101010101U; }

constexpr std::uint64_t highBits = inEachByte(0x80);

bool mustBeEscaped(char c) noexcept {
  return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

template <class Word>
Word wordAt(const char* at) noexcept {
  Word word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// Not 0 exactly where one of the eight bytes must be escaped: a subtraction borrows where a byte is
// less than what is taken from it, and a borrow reaches other bytes from such a one only.
std::uint64_t escapesIn(std::uint64_t bytes) noexcept {
  const std::uint64_t quote = bytes ^ inEachByte('"');
  const std::uint64_t backslash = bytes ^ inEachByte('\\');
  return (((bytes - inEachByte(0x20)) & ~bytes) | ((quote - inEachByte(1)) & ~quote) |
          ((backslash - inEachByte(1)) & ~backslash)) &
         highBits;
}

// A block of a text: how many of its bytes stand before the first that must be escaped, and whether
// one of them is none of ASCII.
#if defined(__SSE2__)
struct Block {
  static constexpr std::size_t size = 16;
  __m128i bytes;

  explicit Block(const char* at) noexcept { std::memcpy(&bytes, at, sizeof bytes); }
  [[nodiscard]] std::size_t plain() const noexcept {
    const __m128i isControl = _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(0x1F)), bytes);
    const __m128i isQuote = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('"'));
    const __m128i isBackslash = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\'));
    const int escapes =
        _mm_movemask_epi8(_mm_or_si128(isControl, _mm_or_si128(isQuote, isBackslash)));
    return static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(escapes) | 1U << size));
  }
  [[nodiscard]] bool isASCII() const noexcept { return _mm_movemask_epi8(bytes) == 0; }
};
#else
struct Block {
  static constexpr std::size_t size = 8;
  std::uint64_t bytes;

  explicit Block(const char* at) noexcept : bytes(wordAt<std::uint64_t>(at)) {}
  [[nodiscard]] std::size_t plain() const noexcept {
    if (escapesIn(bytes) == 0) return size;
    std::array<char, size> each{};
    std::memcpy(each.data(), &bytes, size);
    return static_cast<std::size_t>(std::find_if(each.begin(), each.end(), mustBeEscaped) -
                                    each.begin());
  }
  [[nodiscard]] bool isASCII() const noexcept { return (bytes & highBits) == 0; }
};
#endif

constexpr std::size_t longestEscape = 6;

char* writeEscape(char c, char* at) noexcept {
  static constexpr std::string_view hexadecimal = "0123456789abcdef";
  *at++ = '\\';
  switch (c) {
    case '"':
    case '\\':
      *at++ = c;
      return at;
    case '\n':
      *at++ = 'n';
      return at;
    case '\r':
      *at++ = 'r';
      return at;
    case '\t':
      *at++ = 't';
      return at;
    default:
      *at++ = 'u';
      *at++ = '0';
      *at++ = '0';
      *at++ = hexadecimal[static_cast<unsigned char>(c) >> 4U];
      *at++ = hexadecimal[static_cast<unsigned char>(c) & 0xFU];
      return at;
  }
}

// Copies as many bytes as one or two words hold, some of them twice, if none must be escaped.
template <class Word>
bool copyIfPlain(std::string_view text, char* at, bool& isASCII) noexcept {
  const std::size_t last = text.size() - sizeof(Word);
  const auto first = wordAt<Word>(text.data());
  const auto second = wordAt<Word>(text.data() + last);
  std::uint64_t firstBytes = first;
  std::uint64_t secondBytes = second;
  if constexpr (sizeof(Word) == 4) {
    firstBytes |= std::uint64_t{second} << 32U;
    secondBytes = firstBytes;
  }
  if ((escapesIn(firstBytes) | escapesIn(secondBytes)) != 0) return false;
  if (((firstBytes | secondBytes) & highBits) != 0) isASCII = false;
  std::memcpy(at, &first, sizeof first);
  std::memcpy(at + last, &second, sizeof second);
  return true;
}

// --- Numbers ------------------------------------------------------------------------------------

// What std::to_chars makes of it, faster, of whole numbers and those with few decimal places, which
// most are; null for others. A number of fifteen digits at most is the only one of them that a
// double can stand for, and so the shortest.
char* writeShortDecimal(double number, char* at) noexcept {
  constexpr std::int64_t places = 1'000'000;
  const double magnitude = std::abs(number);
  // Smaller ones have an exponent.
  if (!(magnitude >= 1e-3 && magnitude < 1e9)) return nullptr;
  // What it is rounded to does not matter: a wrong one is found out.
  // NOLINTNEXTLINE(bugprone-incorrect-roundings)
  const auto scaled = static_cast<std::int64_t>(magnitude * double{places} + 0.5);
  if (static_cast<double>(scaled) / double{places} != magnitude) return nullptr;
  const std::int64_t whole = scaled / places;
  std::int64_t fraction = scaled % places;
  // So have those with many zeros at their end.
  if (fraction == 0 && whole % 100'000 == 0) return nullptr;

  if (number < 0) *at++ = '-';
  at = std::to_chars(at, at + 10, whole).ptr;
  if (fraction == 0) return at;
  *at++ = '.';
  for (std::int64_t place = places / 10; fraction != 0; place /= 10) {
    *at++ = static_cast<char>('0' + fraction / place);
    fraction %= place;
  }
  return at;
}

char* writeNumber(double number, char* at) noexcept {
  // A whole number beyond 64 bits has an exponent, and a negative zero a fraction: readers that
  // tell integers from other numbers, our own included, would refuse the one and drop the sign of
  // the other.
  if (number == 0) {
    const std::string_view zero = std::signbit(number) ? "-0.0" : "0";
    return std::copy(zero.begin(), zero.end(), at);
  }
  if (char* const end = writeShortDecimal(number, at)) return end;
  char* const limit = at + roomOfANumber - 1;
  return std::abs(number) < 0x1p63
             ? std::to_chars(at, limit, number).ptr
             : std::to_chars(at, limit, number, std::chars_format::scientific).ptr;
}

}  // namespace

void Writer::makeRoom(std::size_t bytes) {
  text_.resize(std::max({leastRoom, 2 * text_.size(), used_ + bytes}));
}

void Writer::literal(std::string_view text) {
  text.copy(room(text.size()), text.size());
  used_ += text.size();
}

void Writer::close(char bracket) {
  if (room(2)[-1] == ',') --used_;
  text_[used_++] = bracket;
  text_[used_++] = ',';
}

void Writer::key(std::string_view name) {
  quoted(name);
  put(':');
}

void Writer::value(std::string_view text) {
  quoted(text);
  put(',');
}

void Writer::value(double number) {
  if (!std::isfinite(number)) {
    failure_ = "a number is not finite";
    number = 0;
  }
  char* const begin = room(roomOfANumber);
  char* const end = writeNumber(number, begin);
  *end = ',';
  used_ += static_cast<std::size_t>(end - begin) + 1;
}

void Writer::value(std::int64_t number) {
  char* const begin = room(roomOfANumber);
  char* const end = std::to_chars(begin, begin + roomOfANumber - 1, number).ptr;
  *end = ',';
  used_ += static_cast<std::size_t>(end - begin) + 1;
}

void Writer::fault(std::string_view message) {
  if (faults_ == Faults::stopTheProcess) fatal(message);
  failure_ = message;
}

std::string Writer::take() && {
  text_.resize(used_ == 0 ? 0 : used_ - 1);
  return std::move(text_);
}

void Writer::quoted(std::string_view text) {
  bool isASCII = true;
  // A block may be written as a whole where less of it counts; then come the quote and a comma.
  const auto roomFor = [this](std::size_t left) {
    return room(left + Block::size + longestEscape);
  };
  const auto escape = [&](char c, char* at) {
    used_ = static_cast<std::size_t>(writeEscape(c, at) - text_.data());
    return roomFor(text.size());
  };

  const std::string_view whole = text;
  char* at = roomFor(text.size());
  *at++ = '"';
  while (text.size() >= Block::size) {
    const Block block(text.data());
    const std::size_t plain = block.plain();
    if (!block.isASCII()) isASCII = false;
    std::memcpy(at, &block.bytes, Block::size);
    if (plain == Block::size) {
      // By a constant, so that the next block need not wait for what this one holds.
      at += Block::size;
      text.remove_prefix(Block::size);
      continue;
    }
    at += plain;
    text.remove_prefix(plain);
    const char special = text.front();
    text.remove_prefix(1);
    at = escape(special, at);
  }
  if ((text.size() >= 8 && copyIfPlain<std::uint64_t>(text, at, isASCII)) ||
      (text.size() >= 4 && text.size() < 8 && copyIfPlain<std::uint32_t>(text, at, isASCII))) {
    at += text.size();
    text = {};
  }
  while (!text.empty()) {
    const char c = text.front();
    text.remove_prefix(1);
    if (static_cast<unsigned char>(c) >= 0x80) isASCII = false;
    if (mustBeEscaped(c)) {
      at = escape(c, at);
    } else {
      *at++ = c;
    }
  }
  *at++ = '"';
  used_ = static_cast<std::size_t>(at - text_.data());
  if (!isASCII && !isUTF8(whole)) failure_ = "a text is not UTF-8";
}

}  // namespace orvane::json
