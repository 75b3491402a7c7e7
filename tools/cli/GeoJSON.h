// SPDX-License-Identifier: Apache-2.0
// Trips as GeoJSON (RFC 7946), for any map that can show it.
#pragma once

#include <Orvane/Models/Trip.h>

#include <string>

namespace orvane::cli {

/// A collection of features, one to a line: the route, its reconstructed start where there is one,
/// and a point for every event. Styled with the names of simplestyle 1.1, which most viewers know.
/// A line that crosses the 180th meridian is cut there. A `Failure` for a trip that can't be drawn.
[[nodiscard]] std::string geoJSONOf(const Trip& trip);

}  // namespace orvane::cli
