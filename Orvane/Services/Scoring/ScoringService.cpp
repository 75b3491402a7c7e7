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

Operation<ScoringAggregate> ScoringService::dateRange(Date from, Date to) const {
  return get<ScoringAggregate>(*this, Aggregate(Aggregate::DateRange{from, to}));
}

RequestHandle ScoringService::dateRange(Date from, Date to,
                                        Completion<ScoringAggregate> then) const {
  return dateRange(from, to).start(std::move(then));
}

Operation<ScoringAggregate> ScoringService::last7Days() const {
  return get<ScoringAggregate>(*this, Aggregate(Aggregate::Period::last7Days));
}

RequestHandle ScoringService::last7Days(Completion<ScoringAggregate> completionHandler) const {
  return last7Days().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringService::lastWeek() const { return last7Days(); }

RequestHandle ScoringService::lastWeek(Completion<ScoringAggregate> completionHandler) const {
  return lastWeek().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringService::last30Days() const {
  return get<ScoringAggregate>(*this, Aggregate(Aggregate::Period::last30Days));
}

RequestHandle ScoringService::last30Days(Completion<ScoringAggregate> completionHandler) const {
  return last30Days().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringService::lastMonth() const { return last30Days(); }

RequestHandle ScoringService::lastMonth(Completion<ScoringAggregate> completionHandler) const {
  return lastMonth().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringService::last90Days() const {
  return get<ScoringAggregate>(*this, Aggregate(Aggregate::Period::last90Days));
}

RequestHandle ScoringService::last90Days(Completion<ScoringAggregate> completionHandler) const {
  return last90Days().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringService::lastYear() const {
  return get<ScoringAggregate>(*this, Aggregate(Aggregate::Period::lastYear));
}

RequestHandle ScoringService::lastYear(Completion<ScoringAggregate> completionHandler) const {
  return lastYear().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringService::today() const {
  return get<ScoringAggregate>(*this, Aggregate(Aggregate::Period::today));
}

RequestHandle ScoringService::today(Completion<ScoringAggregate> completionHandler) const {
  return today().start(std::move(completionHandler));
}

Operation<ScoringAverage> ScoringService::custom(Date from, Date to) const {
  return get<ScoringAverage>(*this, Average(Average::CUSTOM{from, to}));
}

RequestHandle ScoringService::custom(Date from, Date to, Completion<ScoringAverage> then) const {
  return custom(from, to).start(std::move(then));
}

Operation<ScoringAverage> ScoringService::fetchWeek(std::uint64_t weekNumber) const {
  return get<ScoringAverage>(*this, Average(Average::WEEK{weekNumber}));
}

RequestHandle ScoringService::fetchWeek(std::uint64_t weekNumber,
                                        Completion<ScoringAverage> then) const {
  return fetchWeek(weekNumber).start(std::move(then));
}

Operation<ScoringAggregate> ScoringService::fetchAggregateScoresByVehicle(std::string vehicleId,
                                                                          Date from,
                                                                          Date to) const {
  return get<ScoringAggregate>(
      *this, ByVehicle(ByVehicle::AggregateScoring{std::move(vehicleId), from, to}));
}

RequestHandle ScoringService::fetchAggregateScoresByVehicle(
    std::string vehicleId, Date from, Date to, Completion<ScoringAggregate> then) const {
  return fetchAggregateScoresByVehicle(std::move(vehicleId), from, to).start(std::move(then));
}

Operation<ScoringAverage> ScoringService::fetchAverageScoresByVehicle(std::string vehicleId,
                                                                      Date from, Date to) const {
  return get<ScoringAverage>(*this,
                             ByVehicle(ByVehicle::AverageScoring{std::move(vehicleId), from, to}));
}

RequestHandle ScoringService::fetchAverageScoresByVehicle(std::string vehicleId, Date from, Date to,
                                                          Completion<ScoringAverage> then) const {
  return fetchAverageScoresByVehicle(std::move(vehicleId), from, to).start(std::move(then));
}

Operation<ScoringAggregate> ScoringService::fetchLastNDaysAggregateScoresByVehicle(
    std::string vehicleId, std::uint64_t days) const {
  const ClosedRange<Date> dates = lastDaysOrStop(days);
  return fetchAggregateScoresByVehicle(std::move(vehicleId), dates.lowerBound(),
                                       dates.upperBound());
}

RequestHandle ScoringService::fetchLastNDaysAggregateScoresByVehicle(
    std::string vehicleId, std::uint64_t days, Completion<ScoringAggregate> then) const {
  return fetchLastNDaysAggregateScoresByVehicle(std::move(vehicleId), days).start(std::move(then));
}

Operation<ScoringAverage> ScoringService::fetchLastNDaysAverageScores(
    std::optional<std::string> vehicleId, std::uint64_t days) const {
  const ClosedRange<Date> dates = lastDaysOrStop(days);
  const Date from = dates.lowerBound();
  const Date to = dates.upperBound();
  if (!vehicleId || vehicleId->empty()) return custom(from, to);
  return fetchAverageScoresByVehicle(*std::move(vehicleId), from, to);
}

RequestHandle ScoringService::fetchLastNDaysAverageScores(std::optional<std::string> vehicleId,
                                                          std::uint64_t days,
                                                          Completion<ScoringAverage> then) const {
  return fetchLastNDaysAverageScores(std::move(vehicleId), days).start(std::move(then));
}

}  // namespace orvane
