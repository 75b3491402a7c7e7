// SPDX-License-Identifier: Apache-2.0
#include "Days.h"

#include "ExitCode.h"
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Platform/TimeZone.h>

#include <chrono>
#include <cmath>
#include <cstdint>

namespace orvane::cli {
namespace {

constexpr std::int64_t secondsOfDay = 86400;

std::int64_t offsetAt(std::int64_t seconds) {
  const auto zone = TimeZone::named(DeviceSettings::current()->timeZone);
  return zone ? zone->secondsFromGMT(dateFromSeconds(static_cast<double>(seconds))) : 0;
}

// What is `local` on a clock that shows UTC, as the device's clock shows it. (Where that clock is
// put back or forward it may be another one.)
std::int64_t fromLocal(std::int64_t local) {
  const std::int64_t nearby = local - offsetAt(local);
  return local - offsetAt(nearby);
}

}  // namespace

DateComponents dateOf(const Day& day) {
  if (day.date) return *day.date;
  const auto today = dayOf(DeviceClock::now());
  if (!today) throw Failure(ExitCode::usage, "the device's clock shows no day");
  return componentsOf(*today - std::chrono::days(day.daysAgo));
}

Date noonOf(const DateComponents& day) {
  const std::chrono::year_month_day date{
      std::chrono::year(static_cast<int>(day.year.value_or(1970))),
      std::chrono::month(static_cast<unsigned>(day.month.value_or(1))),
      std::chrono::day(static_cast<unsigned>(day.day.value_or(1)))};
  const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
  const std::int64_t noon = days * secondsOfDay + secondsOfDay / 2;
  return dateFromSeconds(static_cast<double>(fromLocal(noon)));
}

std::optional<std::chrono::sys_days> dayOf(Date date) {
  using std::chrono::year;
  constexpr std::chrono::sys_days first = year(1) / 1 / 1;
  constexpr std::chrono::sys_days last = year(9999) / 12 / 31;
  // Written so that what is not a number does not pass.
  const bool isNear =
      date > Date(first - std::chrono::days(1)) && date < Date(last + std::chrono::days(2));
  if (!isNear) return std::nullopt;
  const auto seconds = static_cast<std::int64_t>(std::floor(secondsSince1970(date)));
  const std::chrono::sys_seconds local{std::chrono::seconds(seconds + offsetAt(seconds))};
  const auto day = std::chrono::floor<std::chrono::days>(local);
  return day >= first && day <= last ? std::optional(day) : std::nullopt;
}

DateComponents componentsOf(std::chrono::sys_days day) {
  const std::chrono::year_month_day date{day};
  return {static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
          static_cast<unsigned>(date.day())};
}

Date next(TimeOfDay time) {
  const auto now = static_cast<std::int64_t>(std::ceil(secondsSince1970(DeviceClock::now())));
  const std::int64_t localNow = now + offsetAt(now);
  const std::int64_t today = localNow - ((localNow % secondsOfDay) + secondsOfDay) % secondsOfDay;
  const std::int64_t wanted = today + (time.hour * std::int64_t{60} + time.minute) * 60;
  std::int64_t found = fromLocal(wanted);
  // A clock that is put forward leaves times out, but not on two days in a row.
  constexpr int enough = 3;
  for (int day = 0; day < enough; ++day) {
    const std::int64_t local = wanted + day * secondsOfDay;
    found = fromLocal(local);
    if (found >= now && found + offsetAt(found) == local) break;
  }
  return dateFromSeconds(static_cast<double>(found));
}

void DayOptions::declare(Options& options) {
  options.option("--from", from_, "The first day: 2024-05-13, yesterday, 7-days-ago");
  options.option("--to", to_, "The last day, included; left out, today");
}

std::optional<DateRange> DayOptions::range() const {
  if (!from_ && to_) throw Failure(ExitCode::usage, "--to needs --from, too");
  if (!from_) return std::nullopt;
  const DateRange range{noonOf(dateOf(*from_)), to_ ? noonOf(dateOf(*to_)) : DeviceClock::now()};
  const bool isInOrder = range.start <= range.end;
  // Today's noon may be still to come.
  if (!isInOrder && to_) throw Failure(ExitCode::usage, "--to is before --from");
  return isInOrder ? range : DateRange{range.start, range.start};
}

}  // namespace orvane::cli
