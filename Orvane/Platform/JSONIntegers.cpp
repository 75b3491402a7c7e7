// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/JSONIntegers.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace orvane::json {
namespace {

constexpr std::string_view exponent = "e0";

// The last integer below the least one whose nearest double is -2^63 (a tie, and that one is even).
constexpr std::string_view lastRoundedToLeast = "-9223372036854776832";

std::size_t behindString(std::string_view text, std::size_t quote) {
  for (std::size_t at = quote + 1; at < text.size(); ++at) {
    if (text[at] == '"') return at + 1;
    if (text[at] == '\\') ++at;
  }
  return text.size();
}

// Where the next literal of a number begins at or behind `at`.
std::size_t nextNumber(std::string_view text, std::size_t at) {
  while (at < text.size()) {
    const char c = text[at];
    if (c == '-' || (c >= '0' && c <= '9')) return at;
    at = c == '"' ? behindString(text, at) : at + 1;
  }
  return text.size();
}

// All that a number may hold, so that a fraction's or an exponent's digits are none of their own.
std::string_view literalAt(std::string_view text, std::size_t begin) {
  const std::size_t end = text.find_first_not_of("0123456789+-.eE", begin);
  return text.substr(begin, std::min(end, text.size()) - begin);
}

template <class Integer>
bool exceeds(std::string_view literal) {
  Integer value = 0;
  const char* const end = literal.data() + literal.size();
  const auto result = std::from_chars(literal.data(), end, value);
  return result.ptr == end && result.ec == std::errc::result_out_of_range;
}

bool isBeyond64Bits(std::string_view literal) {
  constexpr std::size_t fewestDigits = 19;
  if (literal.size() < fewestDigits || !exceeds<std::int64_t>(literal)) return false;
  return literal.starts_with('-') || exceeds<std::uint64_t>(literal);
}

bool isRoundedToLeast(std::string_view literal) {
  return literal.size() == lastRoundedToLeast.size() && literal <= lastRoundedToLeast &&
         literal.starts_with('-');
}

}  // namespace

std::optional<WidenedIntegers> widenIntegers(std::string_view text, std::size_t padding) {
  std::optional<WidenedIntegers> widened;
  std::size_t copied = 0;
  std::string_view literal;
  for (std::size_t at = nextNumber(text, 0); at < text.size();
       at = nextNumber(text, at + literal.size())) {
    literal = literalAt(text, at);
    if (!isBeyond64Bits(literal)) continue;
    if (!widened) widened.emplace();
    const std::size_t end = at + literal.size();
    widened->text.append(text, copied, end - copied).append(exponent);
    widened->roundToLeast = widened->roundToLeast || isRoundedToLeast(literal);
    copied = end;
  }
  if (!widened) return std::nullopt;
  widened->text.reserve(widened->text.size() + text.size() - copied + padding);
  widened->text.append(text, copied);
  return widened;
}

}  // namespace orvane::json
