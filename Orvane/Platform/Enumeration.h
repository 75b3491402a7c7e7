// SPDX-License-Identifier: Apache-2.0
// One mechanism that gives every enumeration its wire texts, its list of cases and its printed
// form.
#pragma once

#include <Orvane/Platform/TextStream.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

namespace orvane {

/// A case of an enumeration and the text that stands for it on the wire.
template <class E>
struct EnumerationCase {
  E value;                    ///< The case.
  std::string_view wireText;  ///< Its text.
};

/// The table of an enumeration, specialised beside it: `static constexpr EnumerationCase<E>
/// cases[]` in the order of declaration; `isJSONText`, `fallback` and `reportedName` where the
/// enumeration stands in a record (see Coding/CodableTypes.h).
template <class E>
struct EnumerationTable;

/// An enumeration that has a table.
template <class E>
concept Enumeration = std::is_enum_v<E> && requires {
  EnumerationTable<E>::cases;
};

/// Every case with its wire text, in the order of declaration.
template <Enumeration E>
[[nodiscard]] constexpr const auto& allCases() noexcept {
  return EnumerationTable<E>::cases;
}

/// The wire text of a case; empty for a value outside the enumeration.
template <Enumeration E>
[[nodiscard]] constexpr std::string_view wireText(E value) noexcept {
  for (const auto& row : EnumerationTable<E>::cases) {
    if (row.value == value) return row.wireText;
  }
  return {};
}

/// The case that a wire text stands for: exact, case-sensitive; absent for any other text.
template <Enumeration E>
[[nodiscard]] constexpr std::optional<E> fromWireText(std::string_view text) noexcept {
  for (const auto& row : EnumerationTable<E>::cases) {
    if (row.wireText == text) return row.value;
  }
  return std::nullopt;
}

/// The number of a case.
template <Enumeration E>
[[nodiscard]] constexpr std::int64_t rawValue(E value) noexcept {
  return static_cast<std::int64_t>(value);
}

/// The case that has the given number; absent for any other.
template <Enumeration E>
[[nodiscard]] constexpr std::optional<E> fromRawValue(std::int64_t raw) noexcept {
  for (const auto& row : EnumerationTable<E>::cases) {
    if (rawValue(row.value) == raw) return row.value;
  }
  return std::nullopt;
}

/// An enumeration that has a case for any other text, and so no table.
template <class E>
concept OpenEnumeration = requires(const E& value) {
  { value.wireText() } -> std::same_as<std::string_view>;
};

/// Prints the wire text.
template <TextStream Stream, Enumeration E>
Stream& operator<<(Stream& stream, E value) {
  stream << wireText(value);
  return stream;
}
/// The same for an open enumeration.
template <TextStream Stream, OpenEnumeration E>
Stream& operator<<(Stream& stream, const E& value) {
  stream << value.wireText();
  return stream;
}

}  // namespace orvane
