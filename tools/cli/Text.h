// SPDX-License-Identifier: Apache-2.0
// Values as people read them: units, times, wire texts, and texts made safe for a terminal.
#pragma once

#include "Arguments.h"
#include <Orvane/Models/DriverDetection.h>
#include <Orvane/Models/Event.h>
#include <Orvane/Models/Scoring.h>
#include <Orvane/Models/TransportMode.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/DateComponents.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/TimeZone.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

/// What a table or block shows of a value.
[[nodiscard]] std::string toText(std::string_view text);
[[nodiscard]] std::string toText(bool value);
[[nodiscard]] std::string toText(std::int64_t number);
[[nodiscard]] std::string toText(double number);
/// In the device's time zone, with its offset: "2024-05-17 14:03:05 +02:00".
[[nodiscard]] std::string toText(Date date);
/// "1990-05-17", as much of it as is set; a hyphen where nothing is.
[[nodiscard]] std::string toText(const DateComponents& day);
[[nodiscard]] std::string toText(const URL& url);
[[nodiscard]] std::string toText(const User::Gender& gender);
[[nodiscard]] std::string toText(TransportMode mode);
/// "harsh braking"; a kind that is not known under the backend's name.
[[nodiscard]] std::string toText(const Event::EventType& type);
[[nodiscard]] std::string toText(Event::Severity severity);
/// "harsh braking"; a score without such a name under the backend's.
[[nodiscard]] std::string toText(const TripScores::SubScore& score);
[[nodiscard]] std::string toText(DriverDetection::Status status);

/// A point in time, as text.
struct Moment {
  std::string text;
};
[[nodiscard]] inline std::string toText(const Moment& moment) { return moment.text; }

[[nodiscard]] inline std::string toText(const std::string& text) {
  return toText(std::string_view(text));
}
// A literal would else become a boolean.
[[nodiscard]] inline std::string toText(const char* text) { return toText(std::string_view(text)); }

template <Enumeration E>
[[nodiscard]] std::string toText(E value) {
  return choiceName(wireText(value));
}

template <class T>
[[nodiscard]] std::string toText(const std::vector<T>& values) {
  std::vector<std::string> texts;
  texts.reserve(values.size());
  for (const T& value : values) texts.push_back(toText(value));
  return joined(texts, ", ");
}

/// As `toText(Date)`, but in `zone`, the device's where there is none.
[[nodiscard]] std::string localTime(Date date, const std::optional<TimeZone>& zone);
/// To the minute, where the place is clear: "2024-05-17 14:03".
[[nodiscard]] std::string localMinute(Date date, const std::optional<TimeZone>& zone);
/// As RFC 3339 has it: "2024-05-17T14:03:05+02:00". Absent outside the years 1 to 9999.
[[nodiscard]] std::optional<std::string> internetTime(Date date,
                                                      const std::optional<TimeZone>& zone);
/// The time of day alone: "14:03:05".
[[nodiscard]] std::string localTimeOfDay(Date date, const std::optional<TimeZone>& zone);

/// A number in the C locale with at most `decimals` of them, without trailing zeros.
[[nodiscard]] std::string decimal(double number, int decimals);

/// Units, of values as the records hold them.
[[nodiscard]] std::string kilometresOf(double metres);
[[nodiscard]] std::string kilometresPerHourOf(double metresPerSecond);
/// "1 h 12 min", "3 min 20 s", "20 s".
[[nodiscard]] std::string durationOf(double seconds);
/// A point in time that a record keeps as a number of milliseconds since 1970-01-01 UTC.
[[nodiscard]] Date dateOfMilliseconds(double milliseconds);
/// The same to the minute, for a column.
[[nodiscard]] Moment minuteOfMilliseconds(double milliseconds);

/// `text` with every control character, those that move a terminal's cursor included, written as
/// an escape ("\n", "\x1b"), and what is not UTF-8 as a replacement character.
[[nodiscard]] std::string visible(std::string_view text);

/// The columns that `text`, which is free of control characters, takes on a terminal.
[[nodiscard]] std::size_t columnsOf(std::string_view text);

/// `text` cut to `columns`, the last of them an ellipsis where something is missing.
[[nodiscard]] std::string cut(std::string_view text, std::size_t columns);

/// `text`, broken at blanks into lines of at most `columns`. The first line begins where `used`
/// columns are taken already, the others with `indent` blanks. A word that is too long for a line
/// stays whole.
[[nodiscard]] std::string wrapped(std::string_view text, std::size_t columns, std::size_t used,
                                  std::size_t indent);

}  // namespace orvane::cli
