// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>

#include <simdjson.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace orvane {
namespace {

// Of a longer text the beginning is enough for a line.
constexpr std::size_t longestText = std::size_t{64} << 10U;

}  // namespace

bool isUTF8(std::string_view text) noexcept {
  return simdjson::validate_utf8(text.data(), text.size());
}

bool isASCII(std::string_view text) noexcept {
  // Sixteen bytes at once, what a register of any processor holds, and no way out in between.
  using Bytes = std::array<std::uint64_t, 2>;
  constexpr std::size_t step = sizeof(Bytes);
  const auto bytesAt = [&text](std::size_t at) {
    Bytes bytes{};
    std::memcpy(&bytes, text.data() + at, step);
    return bytes;
  };
  const auto either = [](Bytes a, Bytes b) { return Bytes{a[0] | b[0], a[1] | b[1]}; };

  Bytes seen{};
  if (text.size() < step) {
    for (const char c : text) seen[0] |= static_cast<unsigned char>(c);
  } else {
    std::size_t at = 0;
    for (; at + 4 * step <= text.size(); at += 4 * step) {
      const Bytes first = either(bytesAt(at), bytesAt(at + step));
      const Bytes second = either(bytesAt(at + 2 * step), bytesAt(at + 3 * step));
      seen = either(seen, either(first, second));
    }
    for (; at + step < text.size(); at += step) seen = either(seen, bytesAt(at));
    seen = either(seen, bytesAt(text.size() - step));
  }
  return ((seen[0] | seen[1]) & 0x8080808080808080U) == 0;
}

std::string concatenated(std::initializer_list<std::string_view> pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  std::string text;
  text.reserve(size);
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

std::string oneLine(std::string_view text, std::size_t most) {
  const auto read = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(std::min(text.size(), longestText))));
  icu::UnicodeString line;
  bool isBlankDue = false;
  for (std::int32_t at = 0; at < read.length(); at = read.moveIndex32(at, 1)) {
    const UChar32 character = read.char32At(at);
    if (u_isUWhiteSpace(character)) {
      isBlankDue = !line.isEmpty();
      continue;
    }
    if (u_iscntrl(character) || u_hasBinaryProperty(character, UCHAR_BIDI_CONTROL)) continue;
    if (std::exchange(isBlankDue, false)) line.append(UChar32{' '});
    line.append(character);
  }
  if (static_cast<std::size_t>(line.countChar32()) > most) {
    line.truncate(line.moveIndex32(0, static_cast<std::int32_t>(most)));
  }
  std::string bytes;
  return line.toUTF8String(bytes);
}

}  // namespace orvane
