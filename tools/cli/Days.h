// SPDX-License-Identifier: Apache-2.0
// Days and times of day from the command line as points in time of the device's time zone.
#pragma once

#include "Arguments.h"
#include "Options.h"
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/DateComponents.h>
#include <Orvane/Platform/DateRange.h>

#include <chrono>
#include <optional>

namespace orvane::cli {

/// The day that is meant, by the device's clock. A `Failure` where that shows no day.
[[nodiscard]] DateComponents dateOf(const Day& day);

/// Noon of a day of the Gregorian calendar, all of whose parts are set.
[[nodiscard]] Date noonOf(const DateComponents& day);

/// The day of the Gregorian calendar that a point in time falls on by the device's clock. Absent
/// outside of the years 1 to 9999.
[[nodiscard]] std::optional<std::chrono::sys_days> dayOf(Date date);
/// Its parts.
[[nodiscard]] DateComponents componentsOf(std::chrono::sys_days day);

/// The next point in time from now on at which the device's clock shows this time of day.
[[nodiscard]] Date next(TimeOfDay time);

/// The options `--from` and `--to`.
class DayOptions {
 public:
  void declare(Options& options);

  [[nodiscard]] bool isGiven() const noexcept { return from_ || to_; }
  /// The days between, both included; without an end, up to today. Absent where none is given. A
  /// `Failure` for an end without a beginning, or before it.
  [[nodiscard]] std::optional<DateRange> range() const;

 private:
  std::optional<Day> from_;
  std::optional<Day> to_;
};

}  // namespace orvane::cli
