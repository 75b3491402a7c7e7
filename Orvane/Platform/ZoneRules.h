// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The rules of time zones, in the form in which ICU's calendars ask for them.
#pragma once

#include <unicode/timezone.h>

#include <memory>
#include <string_view>

namespace orvane {

/// The zone `name` of the IANA database by the machine's rules ("TZDIR" or its usual folder of TZif
/// files, RFC 9636), which are as new as its last update; by ICU's own where the machine has no
/// such zone. Null for a name that neither knows. Any thread; the object itself is for one.
[[nodiscard]] std::unique_ptr<icu::TimeZone> zoneRules(std::string_view name);

}  // namespace orvane
