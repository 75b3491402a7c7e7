// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Integers of JSON texts that no 64 bits hold.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::json {

/// A text whose integers beyond 64 bits have been given an exponent.
struct WidenedIntegers {
  std::string text;
  /// One of them is nearest to the double -2^63, which would pass for the least integer of 64 bits.
  bool roundToLeast = false;
};

/// `text` with "e0" behind every integer that neither signed nor unsigned 64 bits hold: it has the
/// same value, is valid where the text was, and simdjson reads it as a double where it refuses the
/// integer. Nothing when there is no such integer. `padding` is reserved behind the text.
[[nodiscard]] std::optional<WidenedIntegers> widenIntegers(std::string_view text,
                                                           std::size_t padding);

}  // namespace orvane::json
