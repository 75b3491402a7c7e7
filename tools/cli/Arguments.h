// SPDX-License-Identifier: Apache-2.0
// How the texts of the command line become values: one `Argument` per type.
#pragma once

#include <Orvane/Models/TransportMode.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/ClosedRange.h>
#include <Orvane/Platform/DateComponents.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertService.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

/// How a text is read as a `T`: `label` stands for it in the usage, `meaning` ("a day …") in the
/// message about a text that `parse` refuses, and `choices()`, where the type has it, are offered
/// by help and shell completion.
template <class T>
struct Argument;

template <>
struct Argument<std::string> {
  static constexpr std::string_view label = "TEXT";
  static constexpr std::string_view meaning = "a text";
  [[nodiscard]] static std::optional<std::string> parse(std::string_view text);
};

/// What a value names one of: what completion lists.
enum class Listed : std::uint8_t {
  nothing,
  files,
  folders,
  trips,
  vehicles,
  users,
  invitations,
  settings,
  profiles,
  commands,
};

/// An identifier of the backend's, which is never empty. Most stand in paths, where an empty one
/// would address what is above it: all vehicles instead of one.
template <Listed kind>
struct IdentifierOf {
  std::string text;
};
using Identifier = IdentifierOf<Listed::nothing>;
using TripID = IdentifierOf<Listed::trips>;
using VehicleID = IdentifierOf<Listed::vehicles>;
using UserID = IdentifierOf<Listed::users>;
using InvitationID = IdentifierOf<Listed::invitations>;

template <Listed kind>
struct Argument<IdentifierOf<kind>> {
  static constexpr std::string_view label = kind == Listed::users ? "USER" : "ID";
  static constexpr std::string_view meaning = "an identifier";
  static constexpr Listed listed = kind;
  [[nodiscard]] static std::optional<IdentifierOf<kind>> parse(std::string_view text) {
    if (text.empty()) return std::nullopt;
    return IdentifierOf<kind>{std::string(text)};
  }
};

template <>
struct Argument<std::filesystem::path> {
  static constexpr std::string_view label = "FILE";
  static constexpr std::string_view meaning = "a path";
  static constexpr Listed listed = Listed::files;
  [[nodiscard]] static std::optional<std::filesystem::path> parse(std::string_view text);
};

template <>
struct Argument<bool> {
  static constexpr std::string_view label = "yes|no";
  static constexpr std::string_view meaning = "one of the choices";
  [[nodiscard]] static std::vector<std::string> choices() { return {"yes", "no"}; }
  [[nodiscard]] static std::optional<bool> parse(std::string_view text);
};

template <>
struct Argument<std::int64_t> {
  static constexpr std::string_view label = "NUMBER";
  static constexpr std::string_view meaning = "a whole number";
  [[nodiscard]] static std::optional<std::int64_t> parse(std::string_view text);
};

template <>
struct Argument<std::uint64_t> {
  static constexpr std::string_view label = "NUMBER";
  static constexpr std::string_view meaning = "a whole number from 0 up";
  [[nodiscard]] static std::optional<std::uint64_t> parse(std::string_view text);
};

template <>
struct Argument<double> {
  static constexpr std::string_view label = "NUMBER";
  static constexpr std::string_view meaning = "a number";
  [[nodiscard]] static std::optional<double> parse(std::string_view text);
};

/// A day of the Gregorian calendar that exists.
template <>
struct Argument<DateComponents> {
  static constexpr std::string_view label = "YYYY-MM-DD";
  static constexpr std::string_view meaning = "a day, as YYYY-MM-DD";
  [[nodiscard]] static std::optional<DateComponents> parse(std::string_view text);
};

/// A day of the calendar, or one seen from today.
struct Day {
  std::optional<DateComponents> date;
  std::int64_t daysAgo = 0;  ///< Where there is no date.
};

template <>
struct Argument<Day> {
  static constexpr std::string_view label = "DAY";
  static constexpr std::string_view meaning =
      "a day, as YYYY-MM-DD, today, yesterday or 7-days-ago";
  [[nodiscard]] static std::optional<Day> parse(std::string_view text);
};

template <>
struct Argument<User::Gender> {
  static constexpr std::string_view label = "male|female|TEXT";
  static constexpr std::string_view meaning = "a gender";
  [[nodiscard]] static std::vector<std::string> choices() { return {"male", "female"}; }
  [[nodiscard]] static std::optional<User::Gender> parse(std::string_view text);
};

/// How a wire text is written on the command line and on the screen: "WEEKEND_DRIVER" as
/// "weekend-driver"; one with small letters stays as it is.
[[nodiscard]] std::string choiceName(std::string_view wireText);

/// The texts one after the other, with `separator` between them.
[[nodiscard]] std::string joined(const std::vector<std::string>& texts, std::string_view separator);

/// True when both texts are the same but for case, hyphens and underscores.
[[nodiscard]] bool sameChoice(std::string_view left, std::string_view right);

template <Enumeration E>
struct Argument<E> {
  static constexpr std::string_view label{};
  static constexpr std::string_view meaning = "one of the choices";

  [[nodiscard]] static std::vector<std::string> choices() {
    std::vector<std::string> names;
    for (const auto& row : allCases<E>()) names.push_back(choiceName(row.wireText));
    return names;
  }

  [[nodiscard]] static std::optional<E> parse(std::string_view text) {
    for (const auto& row : allCases<E>()) {
      if (sameChoice(row.wireText, text)) return row.value;
    }
    return std::nullopt;
  }
};

/// The mode that is not known has no wire text of its own.
template <>
struct Argument<TransportMode> {
  static constexpr std::string_view label{};
  static constexpr std::string_view meaning = "one of the choices";
  [[nodiscard]] static std::vector<std::string> choices();
  [[nodiscard]] static std::optional<TransportMode> parse(std::string_view text);
};

/// By its name: on the wire it is a number.
template <>
struct Argument<DrivingEventSeverity> {
  static constexpr std::string_view label{};
  static constexpr std::string_view meaning = "one of the choices";
  [[nodiscard]] static std::vector<std::string> choices();
  [[nodiscard]] static std::optional<DrivingEventSeverity> parse(std::string_view text);
};

/// Two whole numbers with a hyphen between them, both included.
template <>
struct Argument<ClosedRange<std::int64_t>> {
  static constexpr std::string_view label = "FROM-TO";
  static constexpr std::string_view meaning = "a range of whole numbers, as 18-25";
  [[nodiscard]] static std::optional<ClosedRange<std::int64_t>> parse(std::string_view text);
};

/// A time of day, without its day.
struct TimeOfDay {
  int hour = 0;    ///< 0 to 23.
  int minute = 0;  ///< 0 to 59.
};

template <>
struct Argument<TimeOfDay> {
  static constexpr std::string_view label = "HH:MM";
  static constexpr std::string_view meaning = "a time of day, as HH:MM";
  [[nodiscard]] static std::optional<TimeOfDay> parse(std::string_view text);
};

}  // namespace orvane::cli
