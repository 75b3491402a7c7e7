// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// What the library asks of texts beside their bytes.
#pragma once

#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// True when `text` is well-formed UTF-8 (RFC 3629).
[[nodiscard]] ORVANE_EXPORT bool isUTF8(std::string_view text) noexcept;

/// True when every byte of `text` is one of ASCII.
[[nodiscard]] bool isASCII(std::string_view text) noexcept;

/// The pieces as one text.
[[nodiscard]] ORVANE_EXPORT std::string concatenated(
    std::initializer_list<std::string_view> pieces);

/// `text` as one line of at most `most` characters (code points): blank space of any kind is one
/// blank, other control characters and those that turn the direction of writing are left out, and
/// what is not UTF-8 is a replacement character each.
[[nodiscard]] std::string oneLine(std::string_view text, std::size_t most);

/// The texts, or the wire texts of the cases, of a list or set, in its order, separated by ","
/// without blanks.
template <class Elements>
[[nodiscard]] std::string commaSeparated(const Elements& elements) {
  std::string joined;
  bool isFirst = true;
  for (const auto& element : elements) {
    if (!std::exchange(isFirst, false)) joined += ',';
    if constexpr (Enumeration<typename Elements::value_type>) {
      joined += wireText(element);
    } else {
      joined += element;
    }
  }
  return joined;
}

}  // namespace orvane
