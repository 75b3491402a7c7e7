// SPDX-License-Identifier: Apache-2.0
// Records and enumerations from JSON texts and back.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Coding/DecodingError.h>
#include <Orvane/Coding/EnumerationCoding.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>

#include <string>
#include <string_view>

namespace orvane {

namespace detail {

template <class T>
[[nodiscard]] consteval auto codingOf() {
  static_assert(Codable<T>,
                "orvane::decode and orvane::encode take a record of Orvane/Models, an enumeration "
                "with wire texts, or a std::vector of either");
  if constexpr (TextEnumeration<typename EntryOf<T>::type>) {
    return EnumerationCoding<T>{};
  } else {
    return RecordCoding<T>{};
  }
}

template <class T>
using CodingOf = decltype(codingOf<T>());

}  // namespace detail

/// Reads a record, an enumeration, or a list (`std::vector`) of either, from a JSON text (RFC
/// 8259). The text must be one valid value as a whole, members that nobody reads included, nest at
/// most 1,000 levels deep and hold no number beyond a double's range; of records at most 64 may
/// stand in one another. Numbers may have any length: a floating member takes the nearest double,
/// an integer member only an integer of 64 bits. Fails with a `DecodingError`; for any other `T`
/// (see `Codable`) there is no `decode`, which the compiler says in words. Any thread.
template <class T>
[[nodiscard]] Result<T> decode(std::string_view json) {
  return detail::CodingOf<T>::decode(json);
}

/// Writes what `decode` reads as a JSON text: members in the order of the record's
/// table, numbers in the shortest form that reads back the same. Fails with an `EncodingError`.
/// What a record declares a programming fault when it is written (a point in time outside 64 bits
/// of milliseconds) stops the process. Any thread.
template <class T>
[[nodiscard]] Result<std::string> encode(const T& value) {
  return detail::CodingOf<T>::encode(value);
}

/// The checking form of `encode`, for records that somebody else filled: what would stop the
/// process is an `EncodingError`, too. Any thread.
template <class T>
[[nodiscard]] Result<std::string> encodeChecked(const T& value) {
  return detail::CodingOf<T>::encodeChecked(value);
}

}  // namespace orvane
