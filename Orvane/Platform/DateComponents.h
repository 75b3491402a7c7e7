// SPDX-License-Identifier: Apache-2.0
// A calendar day by its parts.
#pragma once

#include <cstdint>
#include <optional>

namespace orvane {

/// Year, month and day in the device's calendar, each of them possibly not set. A day needs a year;
/// a month or day that is not set counts as 1.
struct DateComponents {
  std::optional<std::int64_t> year{};   ///< Without one there is no day.
  std::optional<std::int64_t> month{};  ///< 1 to 12 (13 in some calendars).
  std::optional<std::int64_t> day{};    ///< 1 to 31.

  friend bool operator==(const DateComponents&, const DateComponents&) = default;
};

}  // namespace orvane
