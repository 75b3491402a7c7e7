// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/DateRangeItems.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryComposer.h>

namespace orvane {

std::string DrivingSummaryComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/drivingSummary"});
}

std::optional<std::string> DrivingSummaryComposer::query() const {
  QueryItems items;
  for (const DrivingSummaryService::Expansion expansion : expansions) {
    items.add("expand", wireText(expansion));
  }
  for (const DrivingSummaryService::Filter& filter : filters) {
    addDateRange(items, *filter.as<DateRange>(), "Services/Driving Summary/DrivingSummaryComposer");
  }
  return std::move(items).joined();
}

}  // namespace orvane
