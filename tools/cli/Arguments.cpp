// SPDX-License-Identifier: Apache-2.0
#include "Arguments.h"

#include "Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <locale>
#include <sstream>
#include <string>

namespace orvane::cli {
namespace {

// In the order of their numbers.
constexpr std::array<std::string_view, 4> severityNames{"off", "low", "medium", "high"};

constexpr char lowered(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

template <class Number>
std::optional<Number> wholeTextAs(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{} || stop != end || text.empty()) return std::nullopt;
  return number;
}

std::optional<std::int64_t> digits(std::string_view text) {
  const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
  return std::ranges::all_of(text, isDigit) ? wholeTextAs<std::int64_t>(text) : std::nullopt;
}

bool exists(std::int64_t year, std::int64_t month, std::int64_t day) {
  return std::chrono::year_month_day{std::chrono::year(static_cast<int>(year)),
                                     std::chrono::month(static_cast<unsigned>(month)),
                                     std::chrono::day(static_cast<unsigned>(day))}
      .ok();
}

}  // namespace

std::optional<std::string> Argument<std::string>::parse(std::string_view text) {
  return std::string(text);
}

std::optional<std::filesystem::path> Argument<std::filesystem::path>::parse(std::string_view text) {
  if (text.empty()) return std::nullopt;
  return std::filesystem::path(text);
}

std::optional<bool> Argument<bool>::parse(std::string_view text) {
  if (sameChoice(text, "yes") || sameChoice(text, "true")) return true;
  if (sameChoice(text, "no") || sameChoice(text, "false")) return false;
  return std::nullopt;
}

std::optional<std::int64_t> Argument<std::int64_t>::parse(std::string_view text) {
  return wholeTextAs<std::int64_t>(text);
}

std::optional<std::uint64_t> Argument<std::uint64_t>::parse(std::string_view text) {
  return wholeTextAs<std::uint64_t>(text);
}

std::optional<ClosedRange<std::int64_t>> Argument<ClosedRange<std::int64_t>>::parse(
    std::string_view text) {
  const std::size_t hyphen = text.find('-');
  if (hyphen == std::string_view::npos) return std::nullopt;
  const auto lower = digits(text.substr(0, hyphen));
  const auto upper = digits(text.substr(hyphen + 1));
  return lower && upper ? ClosedRange<std::int64_t>::make(*lower, *upper) : std::nullopt;
}

std::optional<double> Argument<double>::parse(std::string_view text) {
  const bool isPlain = text.find_first_not_of("-.0123456789Ee+") == std::string_view::npos;
  if (!isPlain || text.starts_with('+')) return std::nullopt;
  // Not every standard library's std::from_chars reads them.
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  double number = 0;
  stream >> number;
  return stream && stream.peek() == EOF && std::isfinite(number) ? std::optional(number)
                                                                 : std::nullopt;
}

std::optional<DateComponents> Argument<DateComponents>::parse(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const auto year = digits(text.substr(0, 4));
  const auto month = digits(text.substr(5, 2));
  const auto day = digits(text.substr(8, 2));
  if (!year || !month || !day || !exists(*year, *month, *day)) return std::nullopt;
  return DateComponents{year, month, day};
}

std::optional<User::Gender> Argument<User::Gender>::parse(std::string_view text) {
  return User::Gender::fromWireText(text);
}

std::vector<std::string> Argument<TransportMode>::choices() {
  std::vector<std::string> names;
  for (const auto& row : allCases<TransportMode>()) names.push_back(toText(row.value));
  return names;
}

std::optional<TransportMode> Argument<TransportMode>::parse(std::string_view text) {
  for (const auto& row : allCases<TransportMode>()) {
    if (sameChoice(toText(row.value), text)) return row.value;
  }
  return std::nullopt;
}

std::vector<std::string> Argument<DrivingEventSeverity>::choices() {
  return {severityNames.begin(), severityNames.end()};
}

std::optional<DrivingEventSeverity> Argument<DrivingEventSeverity>::parse(std::string_view text) {
  const auto isText = [&](std::string_view name) { return sameChoice(name, text); };
  const auto* const found = std::ranges::find_if(severityNames, isText);
  if (found == severityNames.end()) return std::nullopt;
  return static_cast<DrivingEventSeverity>(found - severityNames.begin());
}

std::optional<Day> Argument<Day>::parse(std::string_view text) {
  if (const auto date = Argument<DateComponents>::parse(text)) return Day{date};
  if (sameChoice(text, "today")) return Day{};
  if (sameChoice(text, "yesterday")) return Day{{}, 1};
  const std::size_t end = text.find('-');
  const auto count = digits(text.substr(0, end));
  const bool isAgo =
      end != std::string_view::npos && (text.substr(end) == "-days-ago" || text == "1-day-ago");
  // No longer ago than the calendar's years go back.
  constexpr std::int64_t most = 700'000;
  if (!isAgo || !count || *count > most) return std::nullopt;
  return Day{{}, *count};
}

std::optional<TimeOfDay> Argument<TimeOfDay>::parse(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon > 2 || text.size() != colon + 3) return std::nullopt;
  const auto hour = digits(text.substr(0, colon));
  const auto minute = digits(text.substr(colon + 1));
  if (!hour || !minute || *hour > 23 || *minute > 59) return std::nullopt;
  return TimeOfDay{static_cast<int>(*hour), static_cast<int>(*minute)};
}

std::string choiceName(std::string_view wireText) {
  std::string name(wireText);
  const auto isSmall = [](char character) { return character >= 'a' && character <= 'z'; };
  if (std::ranges::any_of(name, isSmall)) return name;
  std::ranges::transform(name, name.begin(), lowered);
  std::ranges::replace(name, '_', '-');
  return name;
}

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  std::string whole;
  for (const std::string& text : texts) whole.append(whole.empty() ? "" : separator).append(text);
  return whole;
}

bool sameChoice(std::string_view left, std::string_view right) {
  const auto folded = [](std::string_view text) {
    std::string kept;
    for (const char character : text) {
      if (character != '-' && character != '_') kept.push_back(lowered(character));
    }
    return kept;
  };
  return folded(left) == folded(right);
}

}  // namespace orvane::cli
