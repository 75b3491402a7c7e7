// SPDX-License-Identifier: Apache-2.0
// A point in time, and the device clock that reads it.
#pragma once

#include <Orvane/Platform/Export.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace orvane {

/// Seconds as a 64-bit float.
using Seconds = std::chrono::duration<double>;

/// A point in time: seconds since 1970-01-01 UTC as a 64-bit float, leap seconds not counted.
using Date = std::chrono::time_point<std::chrono::system_clock, Seconds>;

/// The point in time `seconds` after 1970-01-01 UTC.
[[nodiscard]] constexpr Date dateFromSeconds(double seconds) noexcept {
  return Date{Seconds{seconds}};
}

/// Seconds from 1970-01-01 UTC to `date`.
[[nodiscard]] constexpr double secondsSince1970(Date date) noexcept {
  return date.time_since_epoch().count();
}

/// The point in time `milliseconds` after 1970-01-01 UTC: the wire form of most times.
[[nodiscard]] constexpr Date dateFromMilliseconds(std::int64_t milliseconds) noexcept {
  return dateFromSeconds(static_cast<double>(milliseconds) / 1000.0);
}

/// Milliseconds from 1970-01-01 UTC to `date`, halves rounded away from zero. Absent for a date
/// that is not finite or does not fit in 64 bits of milliseconds.
[[nodiscard]] ORVANE_EXPORT std::optional<std::int64_t> millisecondsSince1970(Date date) noexcept;

/// The date in UTC as RFC 3339 writes it, to the millisecond, without a fraction where there is
/// none: "2024-05-13T07:30:00.25Z". Outside its years 0 to 9999, "1e+300 s since 1970".
[[nodiscard]] ORVANE_EXPORT std::string rfc3339Text(Date date);

/// The clock of the device, right or wrong.
class ORVANE_EXPORT DeviceClock {
 public:
  /// Reads a time source; it may be called from any thread.
  using Source = Date (*)();

  /// What the device's clock shows now. Any thread.
  [[nodiscard]] static Date now() noexcept;

  /// Replaces the clock, for tests and simulations, and answers the former one; null stands for the
  /// system's. Any thread.
  static Source setSource(Source source) noexcept;
};

}  // namespace orvane
