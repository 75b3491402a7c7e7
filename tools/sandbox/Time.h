// SPDX-License-Identifier: Apache-2.0
//
// The server's clock, which may run ahead of the machine's, and the calendar texts of the wire.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::sandbox {

using Milliseconds = std::int64_t;  // since 1970-01-01 UTC
using Day = std::chrono::sys_days;

inline constexpr Milliseconds millisPerSecond = 1000;
inline constexpr Milliseconds millisPerDay = 86'400'000;

/// The time that tokens are checked against and that every answer's Date header carries.
class ServerClock {
 public:
  explicit ServerClock(std::int64_t skewSeconds) : skewSeconds_(skewSeconds) {}

  [[nodiscard]] Milliseconds now() const;
  [[nodiscard]] static Milliseconds machineTime();
  [[nodiscard]] std::int64_t skew() const { return skewSeconds_.load(std::memory_order_relaxed); }
  void setSkew(std::int64_t seconds) { skewSeconds_.store(seconds, std::memory_order_relaxed); }

 private:
  std::atomic<std::int64_t> skewSeconds_;
};

/// The IMF-fixdate form of RFC 9110, as the Date header has it.
[[nodiscard]] std::string httpDate(Milliseconds time);

/// Exactly four, two and two ASCII digits that name a day of the Gregorian calendar.
[[nodiscard]] std::optional<Day> parseDay(std::string_view text);

/// A day as above, or a day and a time of day: "2025-06-01T12:00:00Z".
[[nodiscard]] std::optional<Milliseconds> parseTimestamp(std::string_view text);

[[nodiscard]] std::string formatDay(Day day);

/// Day and time of day in UTC, to the millisecond: "2025-06-01T12:00:00.000Z".
[[nodiscard]] std::string formatTime(Milliseconds time);

[[nodiscard]] inline Day dayOf(Milliseconds time) {
  return std::chrono::floor<std::chrono::days>(
      std::chrono::sys_time<std::chrono::milliseconds>{std::chrono::milliseconds{time}});
}

[[nodiscard]] inline Milliseconds startOf(Day day) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(day.time_since_epoch()).count();
}

/// The Monday on or before the day.
[[nodiscard]] inline Day startOfWeek(Day day) {
  return day - (std::chrono::weekday{day} - std::chrono::Monday);
}

[[nodiscard]] inline Day startOfMonth(Day day) {
  const std::chrono::year_month_day date{day};
  return Day{date.year() / date.month() / 1};
}

/// Whole years from birth to the day; negative when the birth is still to come.
[[nodiscard]] int age(Day birth, Day day);

}  // namespace orvane::sandbox
