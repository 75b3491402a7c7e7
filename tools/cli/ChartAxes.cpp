// SPDX-License-Identifier: Apache-2.0
#include "ChartAxes.h"

#include "Days.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace orvane::cli {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

// Values that hardly differ are not drawn further apart than as if they did by a tenth.
constexpr double leastDifference = 0.1;

constexpr int monthsPerYear = 12;
constexpr std::array<const char*, monthsPerYear> monthNames{
    "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// The round number from `number`, which is positive, up.
double roundedUp(double number) {
  const double power = std::pow(10.0, std::floor(std::log10(number)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= number) return factor * power;
  }
  return 10 * power;
}

unsigned monthOf(year_month_day date) { return static_cast<unsigned>(date.month()); }

std::string dayLabel(sys_days day) {
  const year_month_day date{day};
  return std::to_string(static_cast<unsigned>(date.day())) + " " + monthNames[monthOf(date) - 1];
}

// January stands for its year.
std::string monthLabel(sys_days day) {
  const year_month_day date{day};
  return monthOf(date) == 1 ? std::to_string(static_cast<int>(date.year()))
                            : monthNames[monthOf(date) - 1];
}

std::vector<DayTick> ticksByDays(sys_days first, sys_days last, days distance) {
  constexpr sys_days someMonday{days(4)};
  sys_days day = first;
  if (distance >= days(7))
    day = someMonday + std::chrono::ceil<std::chrono::weeks>(day - someMonday);
  std::vector<DayTick> ticks;
  for (; day <= last; day += distance) ticks.push_back({day, dayLabel(day)});
  return ticks;
}

std::vector<DayTick> ticksByMonths(sys_days first, sys_days last, int distance) {
  const year_month_day begin{first};
  const bool isFirstOfMonth = begin.day() == std::chrono::day(1);
  // Months since the year 0, which is before any that is drawn.
  int month = static_cast<int>(begin.year()) * monthsPerYear + static_cast<int>(monthOf(begin)) -
              (isFirstOfMonth ? 1 : 0);
  month = (month + distance - 1) / distance * distance;
  std::vector<DayTick> ticks;
  for (;; month += distance) {
    const sys_days day = std::chrono::year(month / monthsPerYear) / (month % monthsPerYear + 1) / 1;
    if (day > last) return ticks;
    ticks.push_back({day, monthLabel(day)});
  }
}

}  // namespace

std::string ValueAxis::label(std::size_t index) const {
  constexpr double widest = 1e6;
  constexpr int mostDecimals = 6;
  // What rounding has left of the zero between negative and positive ticks.
  const double value = std::abs(tick(index)) < step / 2 ? 0 : tick(index);
  const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step))));
  if (std::abs(value) < widest && decimals <= mostDecimals) return decimal(value, decimals);
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, mostDecimals)
                       .ptr;
  return {buffer.data(), end};
}

std::optional<ValueAxis> valueAxis(std::span<const double> values, std::size_t steps,
                                   std::optional<std::pair<double, double>> usual) {
  auto [least, most] = std::ranges::minmax(values);
  const bool isUsual = usual && least >= usual->first && most <= usual->second;
  const bool isPositive = least >= 0;
  const double size = std::max(std::abs(least), std::abs(most));
  const double missing = (size == 0 ? 1 : size * leastDifference) - (most - least);
  if (missing > 0) {
    least -= missing / 2;
    most += missing / 2;
  }
  if (isPositive) least = std::max(least, 0.0);
  if (isUsual) {
    least = std::max(least, usual->first);
    most = std::min(most, usual->second);
  }
  ValueAxis axis;
  axis.step = roundedUp((most - least) / static_cast<double>(steps));
  axis.lower = std::floor(least / axis.step) * axis.step;
  const double count = std::ceil((most - axis.lower) / axis.step);
  const bool isExpressible = std::isnormal(axis.step) && std::isfinite(axis.lower) &&
                             std::isfinite(axis.lower + axis.step * count) && count >= 1 &&
                             axis.lower + axis.step > axis.lower;
  if (!isExpressible) return std::nullopt;
  axis.steps = static_cast<std::size_t>(count);
  return axis;
}

std::vector<DayTick> dayTicks(sys_days first, sys_days last, std::size_t most) {
  for (const int distance : {1, 2, 7, 14}) {
    const auto count = static_cast<std::size_t>((last - first).count() / distance + 1);
    if (count <= most) return ticksByDays(first, last, days(distance));
  }
  for (const int distance : {1, 3, 6, 12, 24, 60, 120, 240, 600, 1200, 6000, 12000, 60000}) {
    auto ticks = ticksByMonths(first, last, distance);
    if (ticks.size() <= most) return ticks;
  }
  return {};
}

std::string isoDay(sys_days day) { return toText(componentsOf(day)); }

}  // namespace orvane::cli
