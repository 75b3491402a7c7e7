// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/HTTPDate.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>

namespace orvane {
namespace {

constexpr std::array<std::string_view, 12> months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<std::string_view, 7> weekdays{"Monday", "Tuesday",  "Wednesday", "Thursday",
                                                   "Friday", "Saturday", "Sunday"};

// Longer pauses are not meant; the bound keeps sums of times from overflowing.
constexpr double longestPause = 31'536'000;

// Takes a text to pieces from its start. Once a piece is not there all later ones are not, either.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool isAtEnd() const { return isGood_ && rest_.empty(); }

  void text(std::string_view expected) {
    isGood_ = isGood_ && rest_.starts_with(expected);
    if (isGood_) rest_.remove_prefix(expected.size());
  }

  unsigned number(std::size_t digits) {
    unsigned number = 0;
    for (std::size_t i = 0; i < digits; ++i) {
      isGood_ = isGood_ && i < rest_.size() && rest_[i] >= '0' && rest_[i] <= '9';
      if (!isGood_) return 0;
      number = 10 * number + static_cast<unsigned>(rest_[i] - '0');
    }
    rest_.remove_prefix(digits);
    return number;
  }

  // A day of the month whose first digit may be a blank.
  unsigned paddedDay() {
    if (!rest_.starts_with(' ')) return number(2);
    text(" ");
    return number(1);
  }

  unsigned month() {
    const auto* found = std::find_if(months.begin(), months.end(), [this](std::string_view name) {
      return rest_.starts_with(name);
    });
    isGood_ = isGood_ && found != months.end();
    if (!isGood_) return 0;
    rest_.remove_prefix(3);
    return static_cast<unsigned>(found - months.begin()) + 1;
  }

  std::chrono::seconds timeOfDay() {
    const unsigned hour = number(2);
    text(":");
    const unsigned minute = number(2);
    text(":");
    const unsigned second = number(2);
    isGood_ = isGood_ && hour < 24 && minute < 60 && second <= 60;  // 60: a leap second
    return std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second);
  }

 private:
  std::string_view rest_;
  bool isGood_ = true;
};

int yearOf(Date date) {
  const auto days = std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(
      std::chrono::seconds(static_cast<std::int64_t>(secondsSince1970(date)))));
  return static_cast<int>(std::chrono::year_month_day(days).year());
}

// RFC 9110: two digits that would lie more than 50 years ahead mean the past.
int fullYear(unsigned twoDigits, int thisYear) {
  const int year = thisYear - thisYear % 100 + static_cast<int>(twoDigits);
  return year > thisYear + 50 ? year - 100 : year;
}

struct Parts {
  unsigned day = 0;
  unsigned month = 0;
  int year = 0;
  std::chrono::seconds time{0};
};

std::optional<Date> dateOf(const Parts& parts) {
  const std::chrono::year_month_day day{
      std::chrono::year(parts.year), std::chrono::month(parts.month), std::chrono::day(parts.day)};
  if (!day.ok()) return std::nullopt;
  const std::chrono::sys_seconds moment = std::chrono::sys_days(day) + parts.time;
  return dateFromSeconds(static_cast<double>(moment.time_since_epoch().count()));
}

// "06 Nov 1994 08:49:37 GMT" behind "Sun, ".
std::optional<Date> fixedDate(Reader reader) {
  Parts parts;
  parts.day = reader.number(2);
  reader.text(" ");
  parts.month = reader.month();
  reader.text(" ");
  parts.year = static_cast<int>(reader.number(4));
  reader.text(" ");
  parts.time = reader.timeOfDay();
  reader.text(" GMT");
  return reader.isAtEnd() ? dateOf(parts) : std::nullopt;
}

// "06-Nov-94 08:49:37 GMT" behind "Sunday, ".
std::optional<Date> formerDate(Reader reader, int thisYear) {
  Parts parts;
  parts.day = reader.number(2);
  reader.text("-");
  parts.month = reader.month();
  reader.text("-");
  parts.year = fullYear(reader.number(2), thisYear);
  reader.text(" ");
  parts.time = reader.timeOfDay();
  reader.text(" GMT");
  return reader.isAtEnd() ? dateOf(parts) : std::nullopt;
}

// "Nov  6 08:49:37 1994" behind "Sun ".
std::optional<Date> timestampDate(Reader reader) {
  Parts parts;
  parts.month = reader.month();
  reader.text(" ");
  parts.day = reader.paddedDay();
  reader.text(" ");
  parts.time = reader.timeOfDay();
  reader.text(" ");
  parts.year = static_cast<int>(reader.number(4));
  return reader.isAtEnd() ? dateOf(parts) : std::nullopt;
}

}  // namespace

std::optional<Date> dateFromHTTP(std::string_view text, Date now) {
  for (const std::string_view weekday : weekdays) {
    if (!text.starts_with(weekday.substr(0, 3))) continue;
    const std::string_view behind = text.substr(3);
    if (behind.starts_with(", ")) return fixedDate(Reader(behind.substr(2)));
    if (behind.starts_with(" ")) return timestampDate(Reader(behind.substr(1)));
    if (!text.starts_with(weekday) || !text.substr(weekday.size()).starts_with(", ")) continue;
    return formerDate(Reader(text.substr(weekday.size() + 2)), yearOf(now));
  }
  return std::nullopt;
}

std::optional<Seconds> pauseFromHTTP(std::string_view text, Date now) {
  std::uint64_t seconds = 0;
  const char* end = text.data() + text.size();
  const auto [rest, failure] = std::from_chars(text.data(), end, seconds);
  if (rest == end && !text.empty() && failure != std::errc::invalid_argument) {
    const bool isLong = failure == std::errc::result_out_of_range;
    return Seconds(std::min(isLong ? longestPause : static_cast<double>(seconds), longestPause));
  }
  const auto date = dateFromHTTP(text, now);
  if (!date) return std::nullopt;
  return Seconds(std::clamp(secondsSince1970(*date) - secondsSince1970(now), 0.0, longestPause));
}

}  // namespace orvane
