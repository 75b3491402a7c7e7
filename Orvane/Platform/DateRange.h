// SPDX-License-Identifier: Apache-2.0
// From one point in time to another.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Hash.h>

#include <compare>
#include <cstddef>

namespace orvane {

/// Two points in time in any order, as somebody asked for them. Compared bit by bit (IEEE 754,
/// total order), so that it can be kept in sets whatever it holds.
struct DateRange {
  Date start{};
  Date end{};

  [[nodiscard]] HashValue hashValue() const {
    return hashOf(secondsSince1970(start), secondsSince1970(end));
  }

  friend std::strong_ordering operator<=>(const DateRange& left, const DateRange& right) noexcept {
    const auto byStart =
        std::strong_order(secondsSince1970(left.start), secondsSince1970(right.start));
    if (byStart != std::strong_ordering::equal) return byStart;
    return std::strong_order(secondsSince1970(left.end), secondsSince1970(right.end));
  }
  friend bool operator==(const DateRange& left, const DateRange& right) noexcept {
    return (left <=> right) == std::strong_ordering::equal;
  }
};

}  // namespace orvane
