// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>

#include <simdjson.h>

namespace orvane {

bool isUTF8(std::string_view text) noexcept {
  return simdjson::validate_utf8(text.data(), text.size());
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
