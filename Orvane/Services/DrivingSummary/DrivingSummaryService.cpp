// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryComposer.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryListComposer.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryService.h>

namespace orvane {

RequestHandle DrivingSummaryService::fetch(std::set<Filter> filters, std::set<Expansion> expansions,
                                           Completion<DrivingSummary> then) const {
  return get(*this, DrivingSummaryComposer(std::move(expansions), std::move(filters)),
             std::move(then));
}

RequestHandle DrivingSummaryService::fetchList(
    std::set<Filter> filters, std::optional<std::string> aggregateBy,
    Completion<std::vector<DrivingSummaryResult>> then) const {
  return get(*this, DrivingSummaryListComposer(std::move(filters), std::move(aggregateBy)),
             std::move(then));
}

}  // namespace orvane
