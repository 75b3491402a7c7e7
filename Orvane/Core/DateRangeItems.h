// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The date filter of trips and driving summaries.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Platform/DateRange.h>
#include <Orvane/Platform/SourceLocation.h>

#include <string_view>

namespace orvane {

/// Adds "startDate" and "endDate", days in the device's time zone and locale and under the year of
/// their week: the last days of December may count to the next year, the first of January to the
/// one before. A range whose end is before its start, and one with an end that is not a number
/// or leaves the calendar, add nothing and are warned about as `composer`'s "query".
void addDateRange(QueryItems& items, const DateRange& range, std::string_view composer,
                  const SourceLocation& place = SourceLocation::current());

}  // namespace orvane
