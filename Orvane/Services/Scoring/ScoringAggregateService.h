// SPDX-License-Identifier: Apache-2.0
// A smaller entry to driving scores: the current user's, day by day.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Scoring.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Services/Scoring/ScoringService.h>

#include <utility>

namespace orvane {

/// Fetches the current user's scores, day by day. Every operation is that of the same name of its
/// own `ScoringService`.
class ORVANE_EXPORT ScoringAggregateService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit ScoringAggregateService(Identity identity)
      : SerializableService(identity), scoringService_(std::move(identity)) {}

  /// The service that sends everything.
  [[nodiscard]] const ScoringService& scoringService() const noexcept { return scoringService_; }

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

 private:
  ScoringService scoringService_;
};

}  // namespace orvane
