// SPDX-License-Identifier: Apache-2.0
// The application's entry to driving scores.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Scoring.h>
#include <Orvane/Platform/ClosedRange.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Why there is no period of the last so many days.
struct ORVANE_EXPORT LastDaysError {
  /// What is wrong with the number of days.
  enum class Case : std::uint8_t {
    tooManyDays,    ///< More than the largest signed 64-bit integer.
    notInCalendar,  ///< The device's calendar does not reach back so far.
  };

  Case kind;  ///< What is wrong with it.

  [[nodiscard]] std::string message() const;
  friend bool operator==(const LastDaysError&, const LastDaysError&) = default;
};

/// Fetches the scores of the current user or of a vehicle: day by day as a `ScoringAggregate`, or
/// averaged as a `ScoringAverage`.
///
/// The backend receives days, formatted in the device's calendar, time zone and locale. There are
/// two ways to count back, and around a daylight-saving change they can differ by a day:
/// `last7Days` and its like count days of 86,400 seconds back from the device clock; the operations
/// on the last N days count calendar days back from `currentDate()`. Dates of which the calendar
/// can't form days (not finite, or millions of years away) send a request without any query: what
/// it answers is up to the backend.
class ORVANE_EXPORT ScoringService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit ScoringService(Identity identity) : SerializableService(std::move(identity)) {}

  /// @name The current user's scores, day by day
  /// @{
  /// From the day of `from` to that of `to`.
  Operation<ScoringAggregate> dateRange(Date from, Date to) const;
  RequestHandle dateRange(Date from, Date to, Completion<ScoringAggregate> then) const;
  /// From 7 days of 86,400 seconds ago to today.
  Operation<ScoringAggregate> last7Days() const;
  RequestHandle last7Days(Completion<ScoringAggregate> completionHandler) const;
  /// The same as `last7Days`.
  Operation<ScoringAggregate> lastWeek() const;
  RequestHandle lastWeek(Completion<ScoringAggregate> completionHandler) const;
  /// From 30 days of 86,400 seconds ago to today.
  Operation<ScoringAggregate> last30Days() const;
  RequestHandle last30Days(Completion<ScoringAggregate> completionHandler) const;
  /// The same as `last30Days`.
  Operation<ScoringAggregate> lastMonth() const;
  RequestHandle lastMonth(Completion<ScoringAggregate> completionHandler) const;
  /// From 90 days of 86,400 seconds ago to today.
  Operation<ScoringAggregate> last90Days() const;
  RequestHandle last90Days(Completion<ScoringAggregate> completionHandler) const;
  /// From 365 days of 86,400 seconds ago to today.
  Operation<ScoringAggregate> lastYear() const;
  RequestHandle lastYear(Completion<ScoringAggregate> completionHandler) const;
  /// Today alone.
  Operation<ScoringAggregate> today() const;
  RequestHandle today(Completion<ScoringAggregate> completionHandler) const;
  /// @}

  /// @name The current user's average scores
  /// @{
  /// The averages from the day of `from` to that of `to`.
  Operation<ScoringAverage> custom(Date from, Date to) const;
  RequestHandle custom(Date from, Date to, Completion<ScoringAverage> then) const;
  /// The week goes by the backend's own count.
  Operation<ScoringAverage> fetchWeek(std::uint64_t weekNumber) const;
  RequestHandle fetchWeek(std::uint64_t weekNumber, Completion<ScoringAverage> then) const;
  /// @}

  /// @name The scores of a vehicle
  /// @{
  /// From the day of `from` to that of `to`.
  Operation<ScoringAggregate> fetchAggregateScoresByVehicle(std::string vehicleId, Date from,
                                                            Date to) const;
  RequestHandle fetchAggregateScoresByVehicle(std::string vehicleId, Date from, Date to,
                                              Completion<ScoringAggregate> then) const;
  /// The averages from the day of `from` to that of `to`.
  Operation<ScoringAverage> fetchAverageScoresByVehicle(std::string vehicleId, Date from,
                                                        Date to) const;
  RequestHandle fetchAverageScoresByVehicle(std::string vehicleId, Date from, Date to,
                                            Completion<ScoringAverage> then) const;
  /// @}

  /// @name The last so many calendar days
  /// A number of days that `lastDays` refuses is a programming fault that stops the process: ask it
  /// first when the number comes from outside.
  /// @{

  /// `fetchAggregateScoresByVehicle` from `days` calendar days ago to now.
  Operation<ScoringAggregate> fetchLastNDaysAggregateScoresByVehicle(std::string vehicleId,
                                                                     std::uint64_t days) const;
  RequestHandle fetchLastNDaysAggregateScoresByVehicle(std::string vehicleId, std::uint64_t days,
                                                       Completion<ScoringAggregate> then) const;
  /// `fetchAverageScoresByVehicle` from `days` calendar days ago to now; `custom` with the same
  /// dates when the vehicle is absent or empty.
  Operation<ScoringAverage> fetchLastNDaysAverageScores(std::optional<std::string> vehicleId,
                                                        std::uint64_t days) const;
  RequestHandle fetchLastNDaysAverageScores(std::optional<std::string> vehicleId,
                                            std::uint64_t days,
                                            Completion<ScoringAverage> then) const;

  /// From `days` calendar days ago, the time of day kept, to `currentDate()`. Fails with a
  /// `LastDaysError`. Any thread.
  [[nodiscard]] static Result<ClosedRange<Date>> lastDays(std::uint64_t days);
  /// @}
};

}  // namespace orvane
