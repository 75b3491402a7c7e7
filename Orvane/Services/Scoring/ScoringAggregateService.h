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

  RequestHandle dateRange(Date from, Date to, Completion<ScoringAggregate> then) const {
    return scoringService_.dateRange(from, to, std::move(then));
  }
  RequestHandle last7Days(Completion<ScoringAggregate> completionHandler) const {
    return scoringService_.last7Days(std::move(completionHandler));
  }
  RequestHandle lastWeek(Completion<ScoringAggregate> completionHandler) const {
    return scoringService_.lastWeek(std::move(completionHandler));
  }
  RequestHandle last30Days(Completion<ScoringAggregate> completionHandler) const {
    return scoringService_.last30Days(std::move(completionHandler));
  }
  RequestHandle lastMonth(Completion<ScoringAggregate> completionHandler) const {
    return scoringService_.lastMonth(std::move(completionHandler));
  }
  RequestHandle last90Days(Completion<ScoringAggregate> completionHandler) const {
    return scoringService_.last90Days(std::move(completionHandler));
  }
  RequestHandle lastYear(Completion<ScoringAggregate> completionHandler) const {
    return scoringService_.lastYear(std::move(completionHandler));
  }
  RequestHandle today(Completion<ScoringAggregate> completionHandler) const {
    return scoringService_.today(std::move(completionHandler));
  }

 private:
  ScoringService scoringService_;
};

}  // namespace orvane
