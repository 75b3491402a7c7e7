// SPDX-License-Identifier: Apache-2.0
// Where a trip went and what happened where, checked before anything is drawn of it.
#pragma once

#include <Orvane/Models/Trip.h>
#include <Orvane/Platform/CLLocation.h>

#include <optional>
#include <string_view>
#include <vector>

namespace orvane::cli {

using Places = std::vector<CLLocationCoordinate2D>;

/// An event of a trip, which has to outlive it.
struct TripEvent {
  const Event::EventType* type;
  const Event* event;
};

/// Every event, the earliest first.
[[nodiscard]] std::vector<TripEvent> inOrder(const Trip::Events& events);

/// What can be drawn of a trip, which has to outlive it. Every place is one on earth.
struct TripShape {
  struct Mark {
    TripEvent what;
    CLLocationCoordinate2D place;
    Places stretch;  ///< Of the road, where it took longer than a moment.
  };

  Places route;
  Places reconstructedStart;
  std::vector<Mark> marks;  ///< The events, the earliest first.
};

/// A `Failure` for a geometry that is no list of coordinates, and for places that are not on earth.
[[nodiscard]] TripShape shapeOf(const Trip& trip);

/// The colour that stands for a severity on light ground and on dark, or for its absence.
struct SeverityColour {
  std::optional<Event::Severity> severity;
  std::string_view light;
  std::string_view dark;
};
[[nodiscard]] const SeverityColour& colourOf(const std::optional<Event::Severity>& severity);

/// `longitude` turned by whole rounds to within half a round of `reference`.
[[nodiscard]] double nearestTurn(double longitude, double reference);

}  // namespace orvane::cli
