// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>

#include <simdjson.h>

namespace orvane {

bool isUTF8(std::string_view text) noexcept {
  return simdjson::validate_utf8(text.data(), text.size());
}

}  // namespace orvane
