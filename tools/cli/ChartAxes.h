// SPDX-License-Identifier: Apache-2.0
// What the two axes of a chart by days show: round values, and days at which people look.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orvane::cli {

/// Values at even distances, each a multiple of 1, 2 or 5 times a power of ten.
struct ValueAxis {
  double lower = 0;
  double step = 1;
  std::size_t steps = 1;

  [[nodiscard]] double upper() const { return tick(steps); }
  [[nodiscard]] double tick(std::size_t index) const {
    return lower + step * static_cast<double>(index);
  }
  /// Where a value lies: 0 at the lower end, 1 at the upper.
  [[nodiscard]] double position(double value) const {
    return (value - lower) / (step * static_cast<double>(steps));
  }
  [[nodiscard]] std::string label(std::size_t index) const;
};

/// The axis with about `steps` of them that `values`, which are not empty, fill well. It stays
/// within `usual` as long as all of them do. Absent where floating-point numbers can't express it.
[[nodiscard]] std::optional<ValueAxis> valueAxis(std::span<const double> values, std::size_t steps,
                                                 std::optional<std::pair<double, double>> usual);

struct DayTick {
  std::chrono::sys_days day;
  std::string label;
};

/// At most `most` of the days from `first` to `last`, which lie in the years 1 to 9999: every one
/// of them, every second, Mondays, or the first days of months or years, labelled "17 May", "May"
/// or, for January, "2024".
[[nodiscard]] std::vector<DayTick> dayTicks(std::chrono::sys_days first, std::chrono::sys_days last,
                                            std::size_t most);

/// "2024-05-17".
[[nodiscard]] std::string isoDay(std::chrono::sys_days day);

}  // namespace orvane::cli
