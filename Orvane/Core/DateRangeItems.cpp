// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>
#include <Orvane/Core/DateRangeItems.h>
#include <Orvane/Platform/Calendar.h>

namespace orvane {
namespace {

// "YYYY", the year of the week, and not `dayPattern`'s "yyyy": what the backend goes by.
constexpr std::string_view weekYearDayPattern = "YYYY-MM-dd";

}  // namespace

void addDateRange(QueryItems& items, const DateRange& range, std::string_view composer,
                  const SourceLocation& place) {
  if (range.end < range.start) {
    log.w("Not filtering by date because start > end.", composer, place.functionName(),
          place.line());
    return;
  }
  const auto days = formatDates(range.start, range.end, weekYearDayPattern);
  if (!days) {
    log.w("Not filtering by date because start or end is on no day of the calendar.", composer,
          place.functionName(), place.line());
    return;
  }
  items.add("startDate", days->first).add("endDate", days->second);
}

}  // namespace orvane
