// SPDX-License-Identifier: Apache-2.0
#include "Text.h"

#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Platform/TimeZone.h>

#include <wchar.h>  // NOLINT(modernize-deprecated-headers): wcwidth is of POSIX

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>

namespace orvane::cli {
namespace {

// From year 1 to year 9999: what a calendar date in four digits can tell.
constexpr double firstShownSecond = -62135596800.0;
constexpr double lastShownSecond = 253402300799.0;

struct CodePoint {
  char32_t value;
  std::size_t length;  // in bytes; 0 for what is not UTF-8
};

// The code point at the beginning of `text`, which is not empty (RFC 3629).
CodePoint firstCodePoint(std::string_view text) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {0, 0};
  char32_t value = lead & (0xFFU >> (length + 1));
  for (std::size_t index = 1; index < length; ++index) {
    if ((byte(index) & 0xC0U) != 0x80U) return {0, 0};
    value = (value << 6U) | (byte(index) & 0x3FU);
  }
  constexpr std::array<char32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
  if (value < least[length] || value > 0x10FFFF || isSurrogate) return {0, 0};
  return {value, length};
}

// The number's digits in `base`, at least `width` of them.
std::string digitsOf(std::uint64_t number, std::size_t width, int base = 10) {
  std::array<char, 64> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, base).ptr;
  const std::string digits(buffer.data(), end);
  return std::string(digits.size() < width ? width - digits.size() : 0, '0') + digits;
}

std::string twoDigits(std::int64_t number) {
  return digitsOf(static_cast<std::uint64_t>(std::abs(number)), 2);
}

std::string yearText(std::int64_t year) {
  return (year < 0 ? "-" : "") + digitsOf(static_cast<std::uint64_t>(std::abs(year)), 4);
}

bool isControl(char32_t value) {
  // Beside C0 and C1, the marks that change the direction of what stands around them.
  const bool isDirection =
      (value >= 0x202A && value <= 0x202E) || (value >= 0x2066 && value <= 0x2069);
  return value < 0x20 || (value >= 0x7F && value < 0xA0) || isDirection;
}

std::string escaped(char32_t value) {
  if (value == '\n') return "\\n";
  if (value == '\t') return "\\t";
  if (value == '\r') return "\\r";
  return value < 0x100 ? "\\x" + digitsOf(value, 2, 16) : "\\u" + digitsOf(value, 4, 16);
}

std::size_t columnsOf(char32_t value) {
  const int columns = ::wcwidth(static_cast<wchar_t>(value));
  return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

std::int64_t secondsEastOfGreenwich(Date date, const std::optional<TimeZone>& given) {
  const auto zone = given ? given : TimeZone::named(DeviceSettings::current()->timeZone);
  return zone ? zone->secondsFromGMT(date) : 0;
}

struct LocalTime {
  std::string day;
  std::string timeOfDay;
  std::string offset;  // from UTC
};

// Absent beyond what a calendar shows.
std::optional<LocalTime> localTimeOf(Date date, const std::optional<TimeZone>& zone) {
  const double seconds = std::floor(secondsSince1970(date));
  if (!(seconds >= firstShownSecond && seconds <= lastShownSecond)) return std::nullopt;
  const std::int64_t offset = secondsEastOfGreenwich(date, zone);
  const auto local = static_cast<std::int64_t>(seconds) + offset;
  const std::chrono::sys_seconds point{std::chrono::seconds(local)};
  const auto midnight = std::chrono::floor<std::chrono::days>(point);
  const std::chrono::year_month_day day(midnight);
  const std::chrono::hh_mm_ss time(point - midnight);
  LocalTime parts;
  parts.day = yearText(static_cast<int>(day.year())) + "-" +
              twoDigits(static_cast<unsigned>(day.month())) + "-" +
              twoDigits(static_cast<unsigned>(day.day()));
  parts.timeOfDay = twoDigits(time.hours().count()) + ":" + twoDigits(time.minutes().count()) +
                    ":" + twoDigits(time.seconds().count());
  parts.offset =
      (offset < 0 ? "-" : "+") + twoDigits(offset / 3600) + ":" + twoDigits(offset / 60 % 60);
  return parts;
}

std::string beyondCalendars(Date date) {
  return decimal(secondsSince1970(date), 0) + " s after 1970";
}

}  // namespace

std::string toText(std::string_view text) { return std::string(text); }
std::string toText(bool value) { return value ? "yes" : "no"; }
std::string toText(std::int64_t number) { return std::to_string(number); }
std::string toText(double number) { return decimal(number, 6); }
std::string toText(const URL& url) { return url.absoluteString(); }
std::string toText(const User::Gender& gender) { return std::string(gender.wireText()); }

std::string toText(TransportMode mode) {
  return mode == TransportMode::unknown ? "unknown" : choiceName(wireText(mode));
}

std::string toText(const Event::EventType& type) {
  const auto* known = type.as<Event::KnownEventType>();
  if (known == nullptr) return std::string(type.wireText());
  switch (*known) {
    case Event::KnownEventType::acceleration:
      return "harsh acceleration";
    case Event::KnownEventType::braking:
      return "harsh braking";
    case Event::KnownEventType::cornering:
      return "harsh cornering";
    case Event::KnownEventType::speeding:
      return "speeding";
    case Event::KnownEventType::postedSpeedLimit:
      break;
  }
  return "above the limit";
}

std::string toText(const TripScores::SubScore& score) {
  using enum TripScores::KnownSubScore;
  // "distracted.driving", "distracted_driving"
  std::string words(score.wireText());
  for (const char separator : {'.', '_'}) std::ranges::replace(words, separator, ' ');
  const auto* known = score.as<TripScores::KnownSubScore>();
  if (known == nullptr) return words;
  switch (*known) {
    case acceleration:
      return "harsh acceleration";
    case braking:
      return "harsh braking";
    case cornering:
      return "harsh cornering";
    case postedSpeedLimit:
      return "over-speeding";
    default:
      return words;
  }
}

std::string toText(Event::Severity severity) {
  switch (severity) {
    case Event::Severity::veryLow:
      return "very low";
    case Event::Severity::low:
      return "low";
    case Event::Severity::medium:
      return "medium";
    case Event::Severity::high:
      return "high";
    case Event::Severity::veryHigh:
      break;
  }
  return "very high";
}

std::string toText(DriverDetection::Status status) {
  return status == DriverDetection::Status::inTraining ? "in training" : "trained";
}

std::string toText(Date date) { return localTime(date, std::nullopt); }

std::string toText(const DateComponents& day) {
  if (!day.year) return "-";
  std::string text = yearText(*day.year);
  if (day.month) text += "-" + twoDigits(*day.month);
  if (day.month && day.day) text += "-" + twoDigits(*day.day);
  return text;
}

std::string localTime(Date date, const std::optional<TimeZone>& zone) {
  const auto parts = localTimeOf(date, zone);
  return parts ? parts->day + " " + parts->timeOfDay + " " + parts->offset : beyondCalendars(date);
}

std::string localMinute(Date date, const std::optional<TimeZone>& zone) {
  const auto parts = localTimeOf(date, zone);
  if (!parts) return beyondCalendars(date);
  return parts->day + " " + parts->timeOfDay.substr(0, 5);
}

std::optional<std::string> internetTime(Date date, const std::optional<TimeZone>& zone) {
  const auto parts = localTimeOf(date, zone);
  if (!parts) return std::nullopt;
  return parts->day + "T" + parts->timeOfDay + parts->offset;
}

std::string localTimeOfDay(Date date, const std::optional<TimeZone>& zone) {
  const auto parts = localTimeOf(date, zone);
  return parts ? parts->timeOfDay : beyondCalendars(date);
}

std::string decimal(double number, int decimals) {
  // Enough for the largest number: 309 digits before the point.
  std::array<char, 400> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                 std::chars_format::fixed, decimals)
                       .ptr;
  std::string text(buffer.data(), end);
  if (decimals > 0 && std::isfinite(number)) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
  }
  return text == "-0" ? "0" : text;
}

std::string kilometresOf(double metres) { return decimal(metres / 1000.0, 1) + " km"; }

std::string kilometresPerHourOf(double metresPerSecond) {
  return decimal(metresPerSecond * 3.6, 0) + " km/h";
}

std::string durationOf(double seconds) {
  // Beyond that nothing is left to split.
  constexpr double longest = 1e15;
  if (!(std::abs(seconds) < longest)) return decimal(seconds, 0) + " s";
  const auto whole = static_cast<std::int64_t>(std::llround(seconds));
  const std::string sign = whole < 0 ? "-" : "";
  const std::int64_t size = std::abs(whole);
  const std::string hours = std::to_string(size / 3600) + " h ";
  const std::string minutes = std::to_string(size / 60 % 60) + " min";
  if (size >= 3600) return sign + hours + minutes;
  const std::string rest = std::to_string(size % 60) + " s";
  return size >= 60 ? sign + minutes + " " + rest : sign + rest;
}

Date dateOfMilliseconds(double milliseconds) { return dateFromSeconds(milliseconds / 1000.0); }

Moment minuteOfMilliseconds(double milliseconds) {
  return {localMinute(dateOfMilliseconds(milliseconds), std::nullopt)};
}

std::string visible(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const CodePoint first = firstCodePoint(text);
    const std::size_t length = first.length == 0 ? 1 : first.length;
    if (first.length == 0) {
      shown += "\uFFFD";
    } else if (isControl(first.value)) {
      shown += escaped(first.value);
    } else {
      shown += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return shown;
}

std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const CodePoint first = firstCodePoint(text);
    columns += first.length == 0 ? 1 : columnsOf(first.value);
    text.remove_prefix(first.length == 0 ? 1 : first.length);
  }
  return columns;
}

std::string cut(std::string_view text, std::size_t columns) {
  if (columnsOf(text) <= columns) return std::string(text);
  std::string kept;
  std::size_t used = 1;  // the ellipsis
  while (!text.empty()) {
    const CodePoint first = firstCodePoint(text);
    const std::size_t length = first.length == 0 ? 1 : first.length;
    used += first.length == 0 ? 1 : columnsOf(first.value);
    if (used > columns) break;
    kept += text.substr(0, length);
    text.remove_prefix(length);
  }
  return kept + "…";
}

std::string wrapped(std::string_view text, std::size_t columns, std::size_t used,
                    std::size_t indent) {
  std::string whole;
  bool isFirst = true;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    const std::size_t width = columnsOf(word);
    const bool breaks = !isFirst && used + 1 + width > columns;
    if (breaks) whole.append(1, '\n').append(indent, ' ');
    if (!isFirst && !breaks) whole += ' ';
    used = (breaks ? indent : used + (isFirst ? 0 : 1)) + width;
    whole += word;
    isFirst = false;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return whole;
}

}  // namespace orvane::cli
