// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Scoring/ScoringComposer.h>

#include <chrono>

namespace orvane {
namespace {

using Aggregate = ScoringAggregateComposer;
using Average = ScoringAverageComposer;

constexpr std::string_view periodType = "reportingPeriodType";
constexpr std::string_view customPeriod = "CUSTOM";

// False where the calendar can't form one of the days: as with leaderboards, the whole query is
// left out then.
[[nodiscard]] bool addDates(QueryItems& items, Date from, Date to) {
  const auto days = formatDates(from, to, dayPattern);
  if (!days) return false;
  items.add("startDate", days->first).add("endDate", days->second);
  return true;
}

// Days of 86,400 seconds each: neither leap years nor daylight-saving changes count.
constexpr std::chrono::days length(Aggregate::Period period) {
  using std::chrono::days;
  using enum Aggregate::Period;
  switch (period) {
    case last7Days:
      return days(7);
    case last30Days:
      return days(30);
    case last90Days:
      return days(90);
    case lastYear:
      return days(365);
    case today:
      break;
  }
  return days(0);
}

}  // namespace

std::string ScoringAggregateComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/statisticScores"});
}

std::optional<std::string> ScoringAggregateComposer::query() const {
  QueryItems items;
  if (const auto* range = std::get_if<DateRange>(&requestType)) {
    if (!addDates(items, range->from, range->to)) return std::nullopt;
    items.add(periodType, customPeriod);
  } else {
    const Period period = std::get<Period>(requestType);
    if (!addDates(items, today - length(period), today)) return std::nullopt;
    items.add(periodType, wireText(period));
  }
  return std::move(items).joined();
}

std::string ScoringAverageComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/averageScores"});
}

std::optional<std::string> ScoringAverageComposer::query() const {
  QueryItems items;
  if (const auto* week = std::get_if<WEEK>(&requestType)) {
    items.add("userScoreWeek", std::to_string(week->weekNumber));
    return std::move(items).joined();
  }
  if (const auto* custom = std::get_if<CUSTOM>(&requestType)) {
    items.add(periodType, customPeriod);
    if (!addDates(items, custom->from, custom->to)) return std::nullopt;
  } else {
    items.add(periodType, wireText(std::get<Period>(requestType)));
  }
  if (reportingPeriodCount) items.add("reportingPeriodCount", *reportingPeriodCount);
  return std::move(items).joined();
}

std::string ScoringVehicleComposer::path(std::string_view userID) const {
  if (const auto* trip = std::get_if<Trip>(&requestType)) {
    // Without the expansion an empty item stays between the two ampersands.
    return concatenated({"vehicles/", trip->vehicleId,
                         "/trips?limit=", std::to_string(trip->vehicleTripsLimit), "&",
                         trip->shouldExpandScores ? "expand=scores" : "", "&user=", userID});
  }
  if (const auto* average = std::get_if<AverageScoring>(&requestType)) {
    return concatenated({"vehicles/", average->vehicleId, "/averageScores"});
  }
  const auto& aggregate = std::get<AggregateScoring>(requestType);
  return concatenated({"vehicles/", aggregate.vehicleId, "/statisticScores"});
}

std::optional<std::string> ScoringVehicleComposer::query() const {
  if (const auto* average = std::get_if<AverageScoring>(&requestType)) {
    return Average(Average::CUSTOM{average->from, average->to}).query();
  }
  if (const auto* aggregate = std::get_if<AggregateScoring>(&requestType)) {
    return Aggregate(Aggregate::DateRange{aggregate->from, aggregate->to}).query();
  }
  return std::nullopt;
}

}  // namespace orvane
