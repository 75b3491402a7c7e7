// SPDX-License-Identifier: Apache-2.0
// Records from JSON texts and back.
#pragma once

#include <Orvane/Coding/DecodingError.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>

#include <string>
#include <string_view>

namespace orvane {

/// The coding of a record or of a list of records; call `decode`, `encode` and `encodeChecked`.
template <class T>
struct ORVANE_EXPORT RecordCoding {
  [[nodiscard]] static Result<T> decode(std::string_view json);
  [[nodiscard]] static Result<std::string> encode(const T& value);
  [[nodiscard]] static Result<std::string> encodeChecked(const T& value);
};

/// Reads a record, or a list (`std::vector`) of records, from a JSON text (RFC 8259). The text must
/// be one valid value as a whole, members that nobody reads included, nest at most 1,000 levels deep
/// and hold no number beyond a double's range; of records at most 64 may stand in one another.
/// Numbers may have any length: a floating member takes the nearest double, an integer member only
/// an integer of 64 bits. Fails with a `DecodingError`. Defined for every record of Orvane/Models
/// and for lists of them. Any thread.
template <class T>
[[nodiscard]] Result<T> decode(std::string_view json) {
  return RecordCoding<T>::decode(json);
}

/// Writes a record, or a list of records, as a JSON text: members in the order of the record's
/// table, numbers in the shortest form that reads back the same. Fails with an `EncodingError`.
/// What a record declares a programming fault when it is written (a point in time outside 64 bits
/// of milliseconds) stops the process. Any thread.
template <class T>
[[nodiscard]] Result<std::string> encode(const T& value) {
  return RecordCoding<T>::encode(value);
}

/// The checking form of `encode`, for records that somebody else filled: what would stop the
/// process is an `EncodingError`, too. Any thread.
template <class T>
[[nodiscard]] Result<std::string> encodeChecked(const T& value) {
  return RecordCoding<T>::encodeChecked(value);
}

}  // namespace orvane
