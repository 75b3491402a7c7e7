// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// What the library asks of texts beside their bytes.
#pragma once

#include <Orvane/Platform/Export.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// True when `text` is well-formed UTF-8 (RFC 3629).
[[nodiscard]] ORVANE_EXPORT bool isUTF8(std::string_view text) noexcept;

/// The pieces as one text.
[[nodiscard]] std::string concatenated(std::initializer_list<std::string_view> pieces);

/// The texts of a list or set, in its order, separated by "," without blanks.
template <class Texts>
[[nodiscard]] std::string commaSeparated(const Texts& texts) {
  std::string joined;
  bool isFirst = true;
  for (const std::string_view text : texts) {
    if (!std::exchange(isFirst, false)) joined += ',';
    joined += text;
  }
  return joined;
}

}  // namespace orvane
