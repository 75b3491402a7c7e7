// SPDX-License-Identifier: Apache-2.0
// Records from JSON texts and back.
#pragma once

#include <Orvane/Coding/DecodingError.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>

#include <string>
#include <string_view>

namespace orvane {

/// Reads a record, or a list (`std::vector`) of records, from a JSON text (RFC 8259). The text must
/// be one valid value as a whole, members that nobody reads included. Fails with a `DecodingError`.
/// Defined for every record of Orvane/Models and for lists of them. Any thread.
template <class T>
[[nodiscard]] ORVANE_EXPORT Result<T> decode(std::string_view json);

/// Writes a record, or a list of records, as a JSON text: members in the order of the record's
/// table, numbers in the shortest form that reads back the same. Fails with an `EncodingError`.
/// What a record declares a programming fault when it is written (a point in time outside 64 bits
/// of milliseconds) stops the process. Any thread.
template <class T>
[[nodiscard]] ORVANE_EXPORT Result<std::string> encode(const T& value);

}  // namespace orvane
