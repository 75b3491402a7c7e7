// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Times as HTTP writes them.
#pragma once

#include <Orvane/Platform/Date.h>

#include <optional>
#include <string_view>

namespace orvane {

/// The time that a header such as "Date" tells, in one of the three forms of RFC 9110, section
/// 5.6.7; absent for anything else, and for a day or a time of day that does not exist. `now`
/// decides which century two digits of a year belong to.
[[nodiscard]] std::optional<Date> dateFromHTTP(std::string_view text, Date now);

/// The pause that "Retry-After" asks for (RFC 9110, section 10.2.3): a number of seconds, or the
/// time until a date, none once that has passed.
[[nodiscard]] std::optional<Seconds> pauseFromHTTP(std::string_view text, Date now);

}  // namespace orvane
