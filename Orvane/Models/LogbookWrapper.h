// SPDX-License-Identifier: Apache-2.0
// The page in which a logbook arrives.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Models/Trip.h>
#include <Orvane/Platform/Export.h>

#include <optional>
#include <vector>

namespace orvane {

/// A page of a user's logbook.
struct ORVANE_EXPORT LogbookWrapper {
  /// An entry of the logbook.
  struct ORVANE_EXPORT TripWrapper {
    std::optional<Trip> trip{};  ///< The trip of the entry.

    ORVANE_EXPORT bool operator==(const TripWrapper& other) const noexcept;
  };

  std::optional<std::vector<TripWrapper>> tripWrappers{};  ///< The entries, in the backend's order.

  ORVANE_EXPORT bool operator==(const LogbookWrapper& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<LogbookWrapper::TripWrapper> = true;
template <>
inline constexpr bool hasCoding<LogbookWrapper> = true;

}  // namespace orvane
