// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/CurrentDate.h>
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Services/Scoring/ScoringComposer.h>
#include <Orvane/Services/Scoring/ScoringService.h>

#include <limits>

namespace orvane {
namespace {

using Aggregate = ScoringAggregateComposer;
using Average = ScoringAverageComposer;
using ByVehicle = ScoringVehicleComposer;

ClosedRange<Date> lastDaysOrStop(std::uint64_t days) {
  const Result<ClosedRange<Date>> dates = ScoringService::lastDays(days);
  if (!dates) fatal(dates.error()->message());
  return *dates.value();
}

}  // namespace

std::string LastDaysError::message() const {
  return kind == Case::tooManyDays ? "the number of days exceeds the largest signed 64-bit integer"
                                   : "the calendar can't produce the date so many days ago";
}

Result<ClosedRange<Date>> ScoringService::lastDays(std::uint64_t days) {
  if (days > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return LastDaysError{LastDaysError::Case::tooManyDays};
  }
  const Date now = currentDate();
  const std::optional<Date> from = addingDays(now, -static_cast<std::int64_t>(days));
  // A clock that shows no number makes no range, either.
  const auto dates = from ? ClosedRange<Date>::make(*from, now) : std::nullopt;
  if (!dates) return LastDaysError{LastDaysError::Case::notInCalendar};
  return *dates;
}

RequestHandle ScoringService::dateRange(Date from, Date to,
                                        Completion<ScoringAggregate> then) const {
  return get(*this, Aggregate(Aggregate::DateRange{from, to}), std::move(then));
}

RequestHandle ScoringService::last7Days(Completion<ScoringAggregate> completionHandler) const {
  return get(*this, Aggregate(Aggregate::Period::last7Days), std::move(completionHandler));
}

RequestHandle ScoringService::lastWeek(Completion<ScoringAggregate> completionHandler) const {
  return last7Days(std::move(completionHandler));
}

RequestHandle ScoringService::last30Days(Completion<ScoringAggregate> completionHandler) const {
  return get(*this, Aggregate(Aggregate::Period::last30Days), std::move(completionHandler));
}

RequestHandle ScoringService::lastMonth(Completion<ScoringAggregate> completionHandler) const {
  return last30Days(std::move(completionHandler));
}

RequestHandle ScoringService::last90Days(Completion<ScoringAggregate> completionHandler) const {
  return get(*this, Aggregate(Aggregate::Period::last90Days), std::move(completionHandler));
}

RequestHandle ScoringService::lastYear(Completion<ScoringAggregate> completionHandler) const {
  return get(*this, Aggregate(Aggregate::Period::lastYear), std::move(completionHandler));
}

RequestHandle ScoringService::today(Completion<ScoringAggregate> completionHandler) const {
  return get(*this, Aggregate(Aggregate::Period::today), std::move(completionHandler));
}

RequestHandle ScoringService::custom(Date from, Date to, Completion<ScoringAverage> then) const {
  return get(*this, Average(Average::CUSTOM{from, to}), std::move(then));
}

RequestHandle ScoringService::fetchWeek(std::uint64_t weekNumber,
                                        Completion<ScoringAverage> then) const {
  return get(*this, Average(Average::WEEK{weekNumber}), std::move(then));
}

RequestHandle ScoringService::fetchAggregateScoresByVehicle(
    std::string vehicleId, Date from, Date to, Completion<ScoringAggregate> then) const {
  return get(*this, ByVehicle(ByVehicle::AggregateScoring{std::move(vehicleId), from, to}),
             std::move(then));
}

RequestHandle ScoringService::fetchAverageScoresByVehicle(std::string vehicleId, Date from, Date to,
                                                          Completion<ScoringAverage> then) const {
  return get(*this, ByVehicle(ByVehicle::AverageScoring{std::move(vehicleId), from, to}),
             std::move(then));
}

RequestHandle ScoringService::fetchLastNDaysAggregateScoresByVehicle(
    std::string vehicleId, std::uint64_t days, Completion<ScoringAggregate> then) const {
  const ClosedRange<Date> dates = lastDaysOrStop(days);
  return fetchAggregateScoresByVehicle(std::move(vehicleId), dates.lowerBound(), dates.upperBound(),
                                       std::move(then));
}

RequestHandle ScoringService::fetchLastNDaysAverageScores(std::optional<std::string> vehicleId,
                                                          std::uint64_t days,
                                                          Completion<ScoringAverage> then) const {
  const ClosedRange<Date> dates = lastDaysOrStop(days);
  const Date from = dates.lowerBound();
  const Date to = dates.upperBound();
  if (!vehicleId || vehicleId->empty()) return custom(from, to, std::move(then));
  return fetchAverageScoresByVehicle(*std::move(vehicleId), from, to, std::move(then));
}

}  // namespace orvane
