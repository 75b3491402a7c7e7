// SPDX-License-Identifier: Apache-2.0
// From one point in time to another.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Hash.h>

#include <compare>
#include <cstddef>

namespace orvane {

/// Two points in time in any order, as somebody asked for them. Compared by IEEE 754's total order,
/// so that it can be kept in sets whatever it holds, but that 0.0 and -0.0 are one point.
struct DateRange {
  Date start{};  ///< Where it begins.
  Date end{};    ///< Where it ends; it may lie before `start`.

  [[nodiscard]] HashValue hashValue() const {
    return hashOf(secondsSince1970(start), secondsSince1970(end));
  }

  /// By where they start, then by where they end.
  friend std::strong_ordering operator<=>(const DateRange& left, const DateRange& right) noexcept {
    const auto byStart = compare(left.start, right.start);
    return byStart != std::strong_ordering::equal ? byStart : compare(left.end, right.end);
  }
  /// True when both points are the same.
  friend bool operator==(const DateRange& left, const DateRange& right) noexcept {
    return (left <=> right) == std::strong_ordering::equal;
  }

 private:
  static std::strong_ordering compare(Date left, Date right) noexcept {
    // Adding 0.0 makes it of -0.0, and changes nothing else.
    return std::strong_order(secondsSince1970(left) + 0.0, secondsSince1970(right) + 0.0);
  }
};

}  // namespace orvane
