// SPDX-License-Identifier: Apache-2.0
// Places on the earth: a pair of coordinates, and a located position.
#pragma once

#include <Orvane/Platform/Date.h>

namespace orvane {

/// Latitude and longitude in degrees (WGS 84), north and east positive.
struct CLLocationCoordinate2D {
  double latitude = 0;   ///< Degrees, north positive.
  double longitude = 0;  ///< Degrees, east positive.

  friend constexpr bool operator==(const CLLocationCoordinate2D&,
                                   const CLLocationCoordinate2D&) = default;
};

/// A position at a time.
struct CLLocation {
  CLLocationCoordinate2D coordinate{};  ///< Where.
  double altitude = 0;                  ///< Metres above sea level.
  double horizontalAccuracy = 0;        ///< Metres.
  double verticalAccuracy = 0;          ///< Metres.
  Date timestamp{};                     ///< When.

  friend constexpr bool operator==(const CLLocation&, const CLLocation&) = default;
};

}  // namespace orvane
