// SPDX-License-Identifier: Apache-2.0
#include "Time.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace orvane::sandbox {

namespace {

constexpr std::array weekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::optional<int> digits(std::string_view text) {
  int value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  return value;
}

}  // namespace

Milliseconds ServerClock::now() const { return machineTime() + skew() * millisPerSecond; }

Milliseconds ServerClock::machineTime() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

std::string httpDate(Milliseconds time) {
  const Day day = dayOf(time);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{
      std::chrono::floor<std::chrono::seconds>(std::chrono::milliseconds{time - startOf(day)})};
  std::array<char, 40> text{};
  const int size = std::snprintf(
      text.data(), text.size(), "%s, %02u %s %04d %02d:%02d:%02d GMT",
      weekdays.at(std::chrono::weekday{day}.c_encoding()), static_cast<unsigned>(date.day()),
      months.at(static_cast<unsigned>(date.month()) - 1), static_cast<int>(date.year()),
      static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
      static_cast<int>(clock.seconds().count()));
  return {text.data(), static_cast<std::size_t>(std::max(size, 0))};
}

std::optional<Day> parseDay(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const auto year = digits(text.substr(0, 4));
  const auto month = digits(text.substr(5, 2));
  const auto day = digits(text.substr(8, 2));
  if (!year || !month || !day) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year{*year},
                                         std::chrono::month{static_cast<unsigned>(*month)},
                                         std::chrono::day{static_cast<unsigned>(*day)}};
  if (!date.ok()) return std::nullopt;
  return Day{date};
}

std::optional<Milliseconds> parseTimestamp(std::string_view text) {
  const auto day = parseDay(text.substr(0, 10));
  if (!day) return std::nullopt;
  if (text.size() == 10) return startOf(*day);
  if (text.size() != 20 || text[10] != 'T' || text[13] != ':' || text[16] != ':' ||
      text[19] != 'Z') {
    return std::nullopt;
  }
  const auto hours = digits(text.substr(11, 2));
  const auto minutes = digits(text.substr(14, 2));
  const auto seconds = digits(text.substr(17, 2));
  if (!hours || !minutes || !seconds || *hours > 23 || *minutes > 59 || *seconds > 59) {
    return std::nullopt;
  }
  return startOf(*day) + ((*hours * 60 + *minutes) * 60 + *seconds) * millisPerSecond;
}

std::string formatDay(Day day) {
  const std::chrono::year_month_day date{day};
  std::array<char, 32> text{};
  const int size =
      std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                    static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return {text.data(), static_cast<std::size_t>(std::max(size, 0))};
}

std::string formatTime(Milliseconds time) {
  const Milliseconds ofDay = time - startOf(dayOf(time));
  std::array<char, 32> text{};
  const int size =
      std::snprintf(text.data(), text.size(), "T%02d:%02d:%02d.%03dZ",
                    static_cast<int>(ofDay / 3'600'000), static_cast<int>(ofDay / 60'000 % 60),
                    static_cast<int>(ofDay / 1000 % 60), static_cast<int>(ofDay % 1000));
  return formatDay(dayOf(time)).append(text.data(), static_cast<std::size_t>(std::max(size, 0)));
}

int age(Day birth, Day day) {
  const std::chrono::year_month_day from{birth};
  const std::chrono::year_month_day to{day};
  const int years = static_cast<int>(to.year()) - static_cast<int>(from.year());
  const bool birthdayReached =
      to.month() > from.month() || (to.month() == from.month() && to.day() >= from.day());
  return birthdayReached ? years : years - 1;
}

}  // namespace orvane::sandbox
