// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryComposer.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryListComposer.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryService.h>

namespace orvane {

Operation<DrivingSummary> DrivingSummaryService::fetch(SetOf<Filter> filters,
                                                       SetOf<Expansion> expansions) const {
  return get<DrivingSummary>(*this, DrivingSummaryComposer(std::move(expansions).elements(),
                                                           std::move(filters).elements()));
}

RequestHandle DrivingSummaryService::fetch(std::set<Filter> filters, std::set<Expansion> expansions,
                                           Completion<DrivingSummary> then) const {
  return fetch(std::move(filters), std::move(expansions)).start(std::move(then));
}

Operation<std::vector<DrivingSummaryResult>> DrivingSummaryService::fetchList(
    SetOf<Filter> filters, std::optional<std::string> aggregateBy) const {
  return get<std::vector<DrivingSummaryResult>>(
      *this, DrivingSummaryListComposer(std::move(filters).elements(), std::move(aggregateBy)));
}

RequestHandle DrivingSummaryService::fetchList(
    std::set<Filter> filters, std::optional<std::string> aggregateBy,
    Completion<std::vector<DrivingSummaryResult>> then) const {
  return fetchList(std::move(filters), std::move(aggregateBy)).start(std::move(then));
}

}  // namespace orvane
