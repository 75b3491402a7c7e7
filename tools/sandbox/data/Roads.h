// SPDX-License-Identifier: Apache-2.0
//
// A hand-made map: the places of two cities, the roads between them and the quickest way from one
// to the other.
#pragma once

#include "data/Geometry.h"

#include <span>
#include <string_view>
#include <vector>

namespace orvane::sandbox {

/// A stretch of road or track as driven: points five metres apart.
struct Route {
  static constexpr double step = 5;  // metres

  std::vector<Point> line;
  std::vector<double> speedLimit;      // km/h, per point
  std::vector<std::size_t> junctions;  // indexes of the points where roads meet

  [[nodiscard]] double metres() const {
    return line.empty() ? 0 : static_cast<double>(line.size() - 1) * step;
  }
};

class RoadMap {
 public:
  struct Place {
    const char* name;
    Position position;
  };

  /// A road between two places. Bends are points at even distances along it that lie beside the
  /// straight line: to the left by that share of the road's length.
  struct Road {
    const char* from;
    const char* to;
    double speedLimit;  // km/h
    std::vector<double> bends;
  };

  RoadMap(std::span<const Place> places, std::span<const Road> roads);

  /// The two cities. Made on first use.
  static const RoadMap& basel();
  static const RoadMap& mumbai();

  [[nodiscard]] const Projection& projection() const { return projection_; }

  /// The quickest route by road. The places must be on the map and differ.
  [[nodiscard]] Route route(std::string_view from, std::string_view to) const;

  /// A road as it lies on the earth.
  struct Line {
    double speedLimit;  // km/h
    std::vector<Position> points;
  };
  [[nodiscard]] std::vector<Line> lines() const;

  /// A line of one's own, over water, rails or through the air.
  [[nodiscard]] Route track(std::span<const Position> line, double speedLimit) const;

 private:
  struct Edge {
    std::size_t to;
    double seconds;
    double speedLimit;
    std::vector<Point> line;  // from end to end
  };

  [[nodiscard]] std::size_t indexOf(std::string_view name) const;
  [[nodiscard]] std::vector<const Edge*> quickestPath(std::size_t from, std::size_t to) const;

  std::vector<std::string_view> names_;
  Projection projection_;
  std::vector<Point> points_;
  std::vector<std::vector<Edge>> edges_;
};

/// Tracks that no road follows.
[[nodiscard]] std::span<const Position> railway();  // Basel to Olten
[[nodiscard]] std::span<const Position> rhine();    // Kleinhüningen up to Kaiseraugst
[[nodiscard]] std::span<const Position> flightToBerlin();

}  // namespace orvane::sandbox
