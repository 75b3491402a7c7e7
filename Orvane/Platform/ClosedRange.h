// SPDX-License-Identifier: Apache-2.0
// A range that includes both of its bounds.
#pragma once

#include <Orvane/Platform/Fatal.h>

#include <optional>
#include <utility>

namespace orvane {

/// From `lowerBound()` to `upperBound()`, both included; the lower never exceeds the upper.
template <class T>
class ClosedRange {
 public:
  /// A lower bound above the upper one, or one that can't be compared, is a programming fault.
  constexpr ClosedRange(T lowerBound, T upperBound)
      : lower_(std::move(lowerBound)), upper_(std::move(upperBound)) {
    precondition(lower_ <= upper_, "a range's lower bound exceeds its upper bound");
  }

  /// The checking form: absent where the constructor would stop the process.
  [[nodiscard]] static constexpr std::optional<ClosedRange> make(T lowerBound, T upperBound) {
    if (!(lowerBound <= upperBound)) return std::nullopt;
    return ClosedRange(std::move(lowerBound), std::move(upperBound));
  }

  /// The least value in it.
  [[nodiscard]] constexpr const T& lowerBound() const noexcept { return lower_; }
  /// The greatest value in it.
  [[nodiscard]] constexpr const T& upperBound() const noexcept { return upper_; }
  /// True for the bounds and everything between them.
  [[nodiscard]] constexpr bool contains(const T& value) const {
    return lower_ <= value && value <= upper_;
  }

  friend constexpr bool operator==(const ClosedRange&, const ClosedRange&) = default;
  friend constexpr auto operator<=>(const ClosedRange&, const ClosedRange&) = default;

 private:
  T lower_;
  T upper_;
};

}  // namespace orvane
