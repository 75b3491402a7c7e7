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

  [[nodiscard]] const ScoringService& scoringService() const noexcept { return scoringService_; }

  Operation<ScoringAggregate> dateRange(Date from, Date to) const {
    return scoringService_.dateRange(from, to);
  }
  RequestHandle dateRange(Date from, Date to, Completion<ScoringAggregate> then) const {
    return dateRange(from, to).start(std::move(then));
  }
  Operation<ScoringAggregate> last7Days() const { return scoringService_.last7Days(); }
  RequestHandle last7Days(Completion<ScoringAggregate> completionHandler) const {
    return last7Days().start(std::move(completionHandler));
  }
  Operation<ScoringAggregate> lastWeek() const { return scoringService_.lastWeek(); }
  RequestHandle lastWeek(Completion<ScoringAggregate> completionHandler) const {
    return lastWeek().start(std::move(completionHandler));
  }
  Operation<ScoringAggregate> last30Days() const { return scoringService_.last30Days(); }
  RequestHandle last30Days(Completion<ScoringAggregate> completionHandler) const {
    return last30Days().start(std::move(completionHandler));
  }
  Operation<ScoringAggregate> lastMonth() const { return scoringService_.lastMonth(); }
  RequestHandle lastMonth(Completion<ScoringAggregate> completionHandler) const {
    return lastMonth().start(std::move(completionHandler));
  }
  Operation<ScoringAggregate> last90Days() const { return scoringService_.last90Days(); }
  RequestHandle last90Days(Completion<ScoringAggregate> completionHandler) const {
    return last90Days().start(std::move(completionHandler));
  }
  Operation<ScoringAggregate> lastYear() const { return scoringService_.lastYear(); }
  RequestHandle lastYear(Completion<ScoringAggregate> completionHandler) const {
    return lastYear().start(std::move(completionHandler));
  }
  Operation<ScoringAggregate> today() const { return scoringService_.today(); }
  RequestHandle today(Completion<ScoringAggregate> completionHandler) const {
    return today().start(std::move(completionHandler));
  }

 private:
  ScoringService scoringService_;
};

}  // namespace orvane
