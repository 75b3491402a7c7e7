// SPDX-License-Identifier: Apache-2.0
// Which types `decode` and `encode` take.
#pragma once

#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/TextStream.h>

#include <concepts>
#include <optional>
#include <string>
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

/// The coding that the library holds for a record or for a list of records; call `decode`, `encode`
/// and `encodeChecked`.
template <class T>
struct ORVANE_EXPORT RecordCoding {
  /// See `orvane::decode`.
  [[nodiscard]] static Result<T> decode(std::string_view json);
  /// See `orvane::encode`.
  [[nodiscard]] static Result<std::string> encode(const T& value);
  /// See `orvane::encodeChecked`.
  [[nodiscard]] static Result<std::string> encodeChecked(const T& value);
  /// The text as far as there is one, with why there is no more of it behind it.
  [[nodiscard]] static std::string print(const T& value);
};

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

/// Prints a record as its JSON text, as `encode` writes it; what can't be written is left out, and
/// told behind it.
template <TextStream Stream, class Record>
  requires(hasCoding<Record> && !Enumeration<Record> && !OpenEnumeration<Record>)
Stream& operator<<(Stream& stream, const Record& record) {
  stream << RecordCoding<Record>::print(record);
  return stream;
}

}  // namespace orvane
