// SPDX-License-Identifier: Apache-2.0
// One mechanism by which the library's values serve as keys of unordered containers.
#pragma once

#include <concepts>
#include <cstddef>
#include <string_view>

namespace orvane {

/// A hash. A type of its own, so that another library's `hashValue()` is not taken for one of
/// these.
struct HashValue {
  std::size_t value = 0;  ///< As std::hash would answer it.

  friend constexpr bool operator==(const HashValue&, const HashValue&) = default;
};

/// Mixes the hash of one more member into that of those before it.
[[nodiscard]] constexpr std::size_t hashCombine(std::size_t seed, std::size_t next) noexcept {
  return seed ^
         (next + static_cast<std::size_t>(0x9e3779b97f4a7c15ULL) + (seed << 6U) + (seed >> 2U));
}

/// The hash of some members, in order.
template <class... Members>
[[nodiscard]] HashValue hashOf(const Members&... members) {
  std::size_t seed = sizeof...(Members);
  ((seed = hashCombine(seed, std::hash<Members>{}(members))), ...);
  return {seed};
}

/// A type of this library that hashes itself: `std::hash` of it calls `hashValue()`.
template <class T>
concept HashesItself = requires(const T& value) {
  { value.hashValue() } -> std::same_as<HashValue>;
};

}  // namespace orvane

template <orvane::HashesItself T>
struct std::hash<T> {
  std::size_t operator()(const T& value) const { return value.hashValue().value; }
};
