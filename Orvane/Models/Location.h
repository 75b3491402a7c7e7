// SPDX-License-Identifier: Apache-2.0
// Where a phone or vehicle was last.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/CLLocation.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Export.h>

#include <optional>

namespace orvane {

/// The last known position of a user's phone or vehicle.
struct ORVANE_EXPORT Location {
  std::optional<double> latitude{};   ///< Degrees, north positive.
  std::optional<double> longitude{};  ///< Degrees, east positive.
  std::optional<Date> date{};         ///< When the position was taken.

  /// The position as the platform's record, height and accuracies being 0. A member that is absent
  /// (none is after decoding) is a programming fault that stops the process.
  [[nodiscard]] CLLocation location() const;

  ORVANE_EXPORT bool operator==(const Location& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<Location> = true;

}  // namespace orvane
