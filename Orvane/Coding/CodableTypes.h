// SPDX-License-Identifier: Apache-2.0
// Which types `decode` and `encode` take.
#pragma once

#include <Orvane/Platform/Enumeration.h>

#include <concepts>
#include <optional>
#include <string_view>
#include <type_traits>
#include <vector>

namespace orvane {

/// Whether the library holds a coding made for `T`: each header of Orvane/Models says so for its
/// records, and for the enumerations that are more than a text on the wire.
template <class T>
inline constexpr bool hasCoding = false;

/// An enumeration that is one text of a record: that of a table which says `isJSONText`, or any.
/// Those that stand only in a query or a header have a table, too, and no coding.
template <class E>
concept TextEnumeration =
    !hasCoding<E> && ((Enumeration<E> && requires { requires EnumerationTable<E>::isJSONText; }) ||
                      (OpenEnumeration<E> && requires(std::string_view text) {
                        { E::fromWireText(text) } -> std::same_as<E>;
                      }));

namespace detail {

/// What a list is made of, and everything else itself.
template <class T>
struct EntryOf : std::type_identity<T> {};
template <class T>
struct EntryOf<std::vector<T>> : std::type_identity<T> {};

}  // namespace detail

/// A record of Orvane/Models, an enumeration that stands in one, or a list (`std::vector`) of
/// either.
template <class T>
concept Codable = hasCoding<typename detail::EntryOf<T>::type> ||
    TextEnumeration<typename detail::EntryOf<T>::type>;

/// The case that a text stands for when an enumeration is read; absent where it stands for none.
/// What happens with a text that is not in the table the table says: a member `fallback` is taken
/// instead.
template <TextEnumeration E>
[[nodiscard]] constexpr std::optional<E> readWireText(std::string_view text) {
  if constexpr (OpenEnumeration<E>) {
    return E::fromWireText(text);
  } else if constexpr (requires { EnumerationTable<E>::fallback; }) {
    return fromWireText<E>(text).value_or(EnumerationTable<E>::fallback);
  } else {
    return fromWireText<E>(text);
  }
}

/// The text as which a case of an enumeration is written.
template <TextEnumeration E>
[[nodiscard]] constexpr std::string_view textOnTheWire(const E& value) noexcept {
  if constexpr (OpenEnumeration<E>) {
    return value.wireText();
  } else {
    return wireText(value);
  }
}

/// The name by which errors call an enumeration, a member `reportedName` of its table; empty
/// without one.
template <TextEnumeration E>
[[nodiscard]] constexpr std::string_view reportedName() noexcept {
  if constexpr (requires { EnumerationTable<E>::reportedName; }) {
    return EnumerationTable<E>::reportedName;
  } else {
    return {};
  }
}

}  // namespace orvane
