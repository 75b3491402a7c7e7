// SPDX-License-Identifier: Apache-2.0
// One value per day, drawn for a terminal and as an SVG document. Days without a value are gaps.
#pragma once

#include "Output.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane::cli {

struct DayChart {
  using Day = std::chrono::sys_days;
  struct Point {
    Day day;
    double value;
    std::string note{};  ///< What else is shown where the pointer rests.
  };

  std::string title;
  /// The days to be drawn, values or not; those of the points are in any case.
  std::optional<std::pair<Day, Day>> period{};
  std::vector<Point> points{};  ///< Of several on a day the mean is drawn in a terminal.
  /// A line across the SVG document.
  std::optional<double> average{};
  /// The axis does not leave these as long as no value does.
  std::optional<std::pair<double, double>> usualValues{};
};

/// The chart as lines of at most `style.columns`, a bar per day; where days are more than columns,
/// one for several of them, as high as their mean. No lines where that is too narrow, or the values
/// are too far apart to be set off against each other.
[[nodiscard]] std::vector<std::string> chartLines(const DayChart& chart, const OutputStyle& style);

/// The chart as an SVG document: a dot per value, days next to each other joined.
[[nodiscard]] std::string chartDocument(const DayChart& chart);

}  // namespace orvane::cli
