// SPDX-License-Identifier: Apache-2.0
// A trip as a drawing: its route and what happened on it.
#pragma once

#include "TripShape.h"
#include <Orvane/Models/Trip.h>

#include <span>
#include <string>

namespace orvane::cli {

/// A rectangle of the earth in the Mercator projection (of the sphere, as web maps have it), in
/// pixels. North is up, and all directions and shapes are right.
class MapView {
 public:
  struct Point {
    double x;
    double y;
  };

  /// Shows all of `places`, whose longitudes may go beyond 180 degrees, in a frame as wide as
  /// `width`, with `margin` around them. Its height follows from their extent, between `least` and
  /// `most`.
  MapView(std::span<const CLLocationCoordinate2D> places, double width, double least, double most,
          double margin);

  /// From the frame's upper left corner.
  [[nodiscard]] Point at(CLLocationCoordinate2D place) const;
  /// The place that `at` leads to `point`.
  [[nodiscard]] CLLocationCoordinate2D placeAt(Point point) const;
  [[nodiscard]] double height() const noexcept { return height_; }
  /// On the ground, in the middle of the frame.
  [[nodiscard]] double metresPerPixel() const noexcept { return metresPerPixel_; }

 private:
  double scale_ = 1;  // pixels per radian at the equator
  double height_;
  double metresPerPixel_;
  Point origin_{};
};

/// The line without jumps: each longitude within half a round of the one before it, the first of
/// `reference`.
[[nodiscard]] Places unwrapped(const Places& line, double reference);

/// The largest of 1, 2 and 5 times a power of ten that is at most `most`, which is above 0.
[[nodiscard]] double roundLength(double most);

/// The drawing as an SVG document. A `Failure` for a trip that can't be drawn.
[[nodiscard]] std::string mapOf(const Trip& trip);

}  // namespace orvane::cli
