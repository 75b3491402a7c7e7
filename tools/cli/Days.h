// SPDX-License-Identifier: Apache-2.0
// Days and times of day from the command line as points in time of the device's time zone.
#pragma once

#include "Arguments.h"
#include "Options.h"
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/DateComponents.h>
#include <Orvane/Platform/DateRange.h>

#include <optional>

namespace orvane::cli {

/// Noon of a day of the Gregorian calendar, all of whose parts are set.
[[nodiscard]] Date noonOf(const DateComponents& day);

/// The next point in time from now on at which the device's clock shows this time of day.
[[nodiscard]] Date next(TimeOfDay time);

/// The options `--from` and `--to`.
class DayOptions {
 public:
  void declare(Options& options);

  /// The days between, both included; without an end, up to today. Absent where none is given. A
  /// `Failure` for an end without a beginning, or before it.
  [[nodiscard]] std::optional<DateRange> range() const;

 private:
  std::optional<DateComponents> from_;
  std::optional<DateComponents> to_;
};

}  // namespace orvane::cli
