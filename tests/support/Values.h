// SPDX-License-Identifier: Apache-2.0
// Points in time and numbers that many tests need.
#pragma once

#include <Orvane/Platform/Date.h>

#include <chrono>
#include <cstdint>
#include <limits>

namespace orvane {

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();

/// A time of a day, noon unless it is told.
[[nodiscard]] constexpr Date utc(std::chrono::year_month_day day,
                                 std::chrono::minutes time = std::chrono::hours(12)) {
  return std::chrono::sys_days(day) + time;
}

}  // namespace orvane
