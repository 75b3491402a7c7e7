// SPDX-License-Identifier: Apache-2.0
// What the fuzz targets have in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace orvane {

/// An input as text.
inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Ends the process, which the fuzzer takes for a finding, where something does not hold.
template <class T>
void require(const T& holds) {
  if (!static_cast<bool>(holds)) std::abort();
}

/// Takes the text up to a separator off the front, the separator with it; all of it where there is
/// none.
inline std::string_view takeUntil(std::string_view& text, char separator) {
  const std::size_t end = text.find(separator);
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return taken;
}

}  // namespace orvane
