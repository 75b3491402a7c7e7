// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/DateRangeItems.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryListComposer.h>

namespace orvane {

std::string DrivingSummaryListComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/drivingSummaryList"});
}

std::optional<std::string> DrivingSummaryListComposer::query() const {
  QueryItems items;
  for (const DrivingSummaryService::Filter& filter : filters) {
    addDateRange(items, *filter.as<DateRange>(),
                 "Services/Driving Summary/DrivingSummaryListComposer");
  }
  if (aggregateBy) items.add("aggregateBy", *aggregateBy);
  return std::move(items).joined();
}

}  // namespace orvane
