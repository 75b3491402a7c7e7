// SPDX-License-Identifier: Apache-2.0
//
// Points on the earth, lines through them and their encoded text.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::sandbox {

struct Position {
  double latitude = 0;
  double longitude = 0;
};

/// The encoded-polyline text with six decimal places.
[[nodiscard]] std::string encodePolyline(std::span<const Position> line);

/// What an encoded-polyline text holds; what is cut off or no such text ends it.
[[nodiscard]] std::vector<Position> decodePolyline(std::string_view text);

[[nodiscard]] double metresBetween(const Position& from, const Position& to);

/// A point on a flat map, in metres. Good to a few parts in ten thousand within a region.
struct Point {
  double x = 0;  // east
  double y = 0;  // north

  friend Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
  friend Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
  friend Point operator*(Point a, double factor) { return {a.x * factor, a.y * factor}; }
};

[[nodiscard]] double length(Point vector);

/// The flat map around a position.
class Projection {
 public:
  explicit Projection(const Position& origin);
  [[nodiscard]] Point toMap(const Position& position) const;
  [[nodiscard]] Position toEarth(Point point) const;

 private:
  Position origin_;
  double metresPerLongitude_;
};

/// A curve through all the points, without corners, sampled about every `step` metres (a
/// centripetal Catmull-Rom spline, which neither loops nor overshoots).
[[nodiscard]] std::vector<Point> curveThrough(std::span<const Point> points, double step);

/// The line with points exactly `step` metres apart, and its last point.
[[nodiscard]] std::vector<Point> resample(std::span<const Point> line, double step);

/// Each point replaced by the mean of its neighbours: corners become bends. The ends stay.
[[nodiscard]] std::vector<Point> smooth(std::span<const Point> line, int neighbours);

/// 1 / radius of the circle through three points.
[[nodiscard]] double curvature(Point before, Point at, Point after);

}  // namespace orvane::sandbox
