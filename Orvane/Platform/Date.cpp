// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Date.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstdio>

namespace orvane {
namespace {

constinit std::atomic<DeviceClock::Source> clockSource{nullptr};

}  // namespace

std::optional<std::int64_t> millisecondsSince1970(Date date) noexcept {
  const double milliseconds = std::round(secondsSince1970(date) * 1000.0);
  // Written so that a NaN does not pass.
  if (!(milliseconds >= -0x1p63 && milliseconds < 0x1p63)) return std::nullopt;
  return static_cast<std::int64_t>(milliseconds);
}

std::string rfc3339Text(Date date) {
  using namespace std::chrono;
  constexpr sys_days first = year{0} / January / 1;
  constexpr sys_days end = year{10'000} / January / 1;
  std::array<char, 40> text{};
  const auto time = millisecondsSince1970(date);
  const sys_time<milliseconds> moment{milliseconds{time.value_or(0)}};
  if (!time || moment < first || moment >= end) {
    std::snprintf(text.data(), text.size(), "%.17g s since 1970", secondsSince1970(date));
    return text.data();
  }
  const auto day = floor<days>(moment);
  const year_month_day calendar{day};
  const hh_mm_ss clock{moment - day};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03d",
                int{calendar.year()}, unsigned{calendar.month()}, unsigned{calendar.day()},
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()),
                static_cast<int>(clock.subseconds().count()));
  std::string whole = text.data();
  whole.erase(whole.find_last_not_of('0') + 1);
  if (whole.ends_with('.')) whole.pop_back();
  return whole + 'Z';
}

Date DeviceClock::now() noexcept {
  if (const Source source = clockSource.load(std::memory_order_acquire)) return source();
  return std::chrono::system_clock::now();
}

DeviceClock::Source DeviceClock::setSource(Source source) noexcept {
  return clockSource.exchange(source, std::memory_order_acq_rel);
}

}  // namespace orvane
