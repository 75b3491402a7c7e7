// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Services/Scoring/ScoringAggregateService.h>

namespace orvane {

Operation<ScoringAggregate> ScoringAggregateService::dateRange(Date from, Date to) const {
  return scoringService_.dateRange(from, to);
}

RequestHandle ScoringAggregateService::dateRange(Date from, Date to,
                                                 Completion<ScoringAggregate> then) const {
  return dateRange(from, to).start(std::move(then));
}

Operation<ScoringAggregate> ScoringAggregateService::last7Days() const {
  return scoringService_.last7Days();
}

RequestHandle ScoringAggregateService::last7Days(
    Completion<ScoringAggregate> completionHandler) const {
  return last7Days().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringAggregateService::lastWeek() const {
  return scoringService_.lastWeek();
}

RequestHandle ScoringAggregateService::lastWeek(
    Completion<ScoringAggregate> completionHandler) const {
  return lastWeek().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringAggregateService::last30Days() const {
  return scoringService_.last30Days();
}

RequestHandle ScoringAggregateService::last30Days(
    Completion<ScoringAggregate> completionHandler) const {
  return last30Days().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringAggregateService::lastMonth() const {
  return scoringService_.lastMonth();
}

RequestHandle ScoringAggregateService::lastMonth(
    Completion<ScoringAggregate> completionHandler) const {
  return lastMonth().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringAggregateService::last90Days() const {
  return scoringService_.last90Days();
}

RequestHandle ScoringAggregateService::last90Days(
    Completion<ScoringAggregate> completionHandler) const {
  return last90Days().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringAggregateService::lastYear() const {
  return scoringService_.lastYear();
}

RequestHandle ScoringAggregateService::lastYear(
    Completion<ScoringAggregate> completionHandler) const {
  return lastYear().start(std::move(completionHandler));
}

Operation<ScoringAggregate> ScoringAggregateService::today() const {
  return scoringService_.today();
}

RequestHandle ScoringAggregateService::today(Completion<ScoringAggregate> completionHandler) const {
  return today().start(std::move(completionHandler));
}

}  // namespace orvane
