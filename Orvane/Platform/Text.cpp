// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>

#include <simdjson.h>

#include <cstdint>
#include <cstring>

namespace orvane {

bool isUTF8(std::string_view text) noexcept {
  return simdjson::validate_utf8(text.data(), text.size());
}

bool isASCII(std::string_view text) noexcept {
  constexpr std::size_t word = sizeof(std::uint64_t);
  const auto wordAt = [&text](std::size_t at) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text.data() + at, word);
    return bytes;
  };
  // All bits at once, without a way out in between.
  std::uint64_t bits = 0;
  if (text.size() < word) {
    for (const char c : text) bits |= static_cast<unsigned char>(c);
  } else {
    std::size_t at = 0;
    for (; at + 4 * word <= text.size(); at += 4 * word) {
      bits |= wordAt(at) | wordAt(at + word) | wordAt(at + 2 * word) | wordAt(at + 3 * word);
    }
    for (; at + word < text.size(); at += word) bits |= wordAt(at);
    bits |= wordAt(text.size() - word);
  }
  return (bits & 0x8080808080808080U) == 0;
}

std::string concatenated(std::initializer_list<std::string_view> pieces) {
  std::size_t size = 0;
  for (const std::string_view piece : pieces) size += piece.size();
  std::string text;
  text.reserve(size);
  for (const std::string_view piece : pieces) text += piece;
  return text;
}

}  // namespace orvane
