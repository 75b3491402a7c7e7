// SPDX-License-Identifier: Apache-2.0
// How values print themselves that hold others.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/TextStream.h>

#include <concepts>

namespace orvane::detail {

/// Prints a value as it prints itself, the values of a list in brackets, those of an optional or
/// "nothing", and a point in time as RFC 3339 has it. What can't be printed is "…".
template <TextStream Stream, class T>
void print(Stream& stream, const T& value) {
  if constexpr (std::same_as<T, Date>) {
    stream << rfc3339Text(value);
  } else if constexpr (std::same_as<T, bool>) {
    stream << (value ? "true" : "false");
  } else if constexpr (requires { stream << value; }) {
    stream << value;
  } else if constexpr (requires { value.begin() != value.end(); }) {
    const char* before = "[";
    for (const auto& element : value) {
      stream << before;
      print(stream, element);
      before = ", ";
    }
    stream << (value.begin() != value.end() ? "]" : "[]");
  } else if constexpr (requires { value.has_value(), *value; }) {
    if (!value.has_value()) {
      stream << "nothing";
    } else {
      print(stream, *value);
    }
  } else {
    stream << "…";
  }
}

}  // namespace orvane::detail
