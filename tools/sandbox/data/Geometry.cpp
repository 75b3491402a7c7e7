// SPDX-License-Identifier: Apache-2.0
#include "data/Geometry.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>

namespace orvane::sandbox {

namespace {

constexpr double earthRadius = 6'371'008.8;
constexpr double radians = std::numbers::pi / 180;
constexpr double metresPerLatitude = earthRadius * radians;

void encodeValue(std::string& text, std::int64_t value) {
  auto bits = static_cast<std::uint64_t>(value) << 1U;
  if (value < 0) bits = ~bits;
  while (bits >= 0x20) {
    text.push_back(static_cast<char>((0x20U | (bits & 0x1FU)) + 63U));
    bits >>= 5U;
  }
  text.push_back(static_cast<char>(bits + 63U));
}

/// Takes a value off the front of the text.
std::optional<std::int64_t> decodeValue(std::string_view& text) {
  constexpr unsigned highest = 60;  // bits in front of the last five
  std::uint64_t bits = 0;
  for (unsigned shift = 0; shift <= highest && !text.empty(); shift += 5) {
    const auto piece = static_cast<unsigned char>(text.front()) - 63U;
    text.remove_prefix(1);
    bits |= static_cast<std::uint64_t>(piece & 0x1FU) << shift;
    if (piece >= 0x20U) continue;
    const auto value = static_cast<std::int64_t>(bits >> 1U);
    return (bits & 1U) != 0 ? ~value : value;
  }
  return std::nullopt;
}

Point blend(Point a, Point b, double from, double to, double at) {
  return a * ((to - at) / (to - from)) + b * ((at - from) / (to - from));
}

/// One span of the spline, between `b` and `c`, sampled without its end.
void appendSpan(std::vector<Point>& curve, Point a, Point b, Point c, Point d, double step) {
  const auto knot = [](Point from, Point to) {
    return std::max(std::sqrt(length(to - from)), 1e-6);
  };
  const double t1 = knot(a, b);
  const double t2 = t1 + knot(b, c);
  const double t3 = t2 + knot(c, d);
  const int pieces = std::max(1, static_cast<int>(length(c - b) / step));
  for (int i = 0; i < pieces; ++i) {
    const double t = t1 + (t2 - t1) * i / pieces;
    const Point ab = blend(a, b, 0, t1, t);
    const Point bc = blend(b, c, t1, t2, t);
    const Point cd = blend(c, d, t2, t3, t);
    curve.push_back(blend(blend(ab, bc, 0, t2, t), blend(bc, cd, t1, t3, t), t1, t2, t));
  }
}

}  // namespace

std::string encodePolyline(std::span<const Position> line) {
  std::string text;
  text.reserve(line.size() * 6);
  std::int64_t latitude = 0;
  std::int64_t longitude = 0;
  for (const Position& position : line) {
    const auto nextLatitude = std::llround(position.latitude * 1e6);
    const auto nextLongitude = std::llround(position.longitude * 1e6);
    encodeValue(text, nextLatitude - latitude);
    encodeValue(text, nextLongitude - longitude);
    latitude = nextLatitude;
    longitude = nextLongitude;
  }
  return text;
}

std::vector<Position> decodePolyline(std::string_view text) {
  std::vector<Position> line;
  std::int64_t latitude = 0;
  std::int64_t longitude = 0;
  while (!text.empty()) {
    const auto latitudeStep = decodeValue(text);
    const auto longitudeStep = decodeValue(text);
    if (!latitudeStep || !longitudeStep) break;
    latitude += *latitudeStep;
    longitude += *longitudeStep;
    line.push_back({static_cast<double>(latitude) / 1e6, static_cast<double>(longitude) / 1e6});
  }
  return line;
}

double metresBetween(const Position& from, const Position& to) {
  const double sinLatitude = std::sin((to.latitude - from.latitude) * radians / 2);
  const double sinLongitude = std::sin((to.longitude - from.longitude) * radians / 2);
  const double h = sinLatitude * sinLatitude + std::cos(from.latitude * radians) *
                                                   std::cos(to.latitude * radians) * sinLongitude *
                                                   sinLongitude;
  return 2 * earthRadius * std::asin(std::min(1.0, std::sqrt(h)));
}

double length(Point vector) { return std::hypot(vector.x, vector.y); }

Projection::Projection(const Position& origin)
    : origin_(origin),
      metresPerLongitude_(metresPerLatitude * std::cos(origin.latitude * radians)) {}

Point Projection::toMap(const Position& position) const {
  return {(position.longitude - origin_.longitude) * metresPerLongitude_,
          (position.latitude - origin_.latitude) * metresPerLatitude};
}

Position Projection::toEarth(Point point) const {
  return {origin_.latitude + point.y / metresPerLatitude,
          origin_.longitude + point.x / metresPerLongitude_};
}

std::vector<Point> curveThrough(std::span<const Point> points, double step) {
  if (points.size() < 2) return {points.begin(), points.end()};
  std::vector<Point> curve;
  for (std::size_t i = 0; i + 1 < points.size(); ++i) {
    const Point b = points[i];
    const Point c = points[i + 1];
    const Point a = i > 0 ? points[i - 1] : b + (b - c);
    const Point d = i + 2 < points.size() ? points[i + 2] : c + (c - b);
    appendSpan(curve, a, b, c, d, step);
  }
  curve.push_back(points.back());
  return curve;
}

std::vector<Point> resample(std::span<const Point> line, double step) {
  std::vector<Point> even;
  if (line.empty()) return even;
  even.push_back(line.front());
  double untilNext = step;
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    const double piece = length(line[i + 1] - line[i]);
    const int count = piece < untilNext ? 0 : static_cast<int>((piece - untilNext) / step) + 1;
    for (int k = 0; k < count; ++k) {
      even.push_back(line[i] + (line[i + 1] - line[i]) * ((untilNext + k * step) / piece));
    }
    untilNext += count * step - piece;
  }
  if (length(line.back() - even.back()) > step / 10) even.push_back(line.back());
  return even;
}

std::vector<Point> smooth(std::span<const Point> line, int neighbours) {
  std::vector<Point> result;
  result.reserve(line.size());
  const int size = static_cast<int>(line.size());
  for (int i = 0; i < size; ++i) {
    // The window shrinks towards the ends so that it stays centred.
    const int reach = std::min({neighbours, i, size - 1 - i});
    Point sum;
    for (int k = i - reach; k <= i + reach; ++k) sum = sum + line[static_cast<std::size_t>(k)];
    result.push_back(sum * (1.0 / (2 * reach + 1)));
  }
  return result;
}

double curvature(Point before, Point at, Point after) {
  const Point in = at - before;
  const Point out = after - at;
  const double sides = length(in) * length(out) * length(after - before);
  return sides > 1e-9 ? 2 * std::abs(in.x * out.y - in.y * out.x) / sides : 0;
}

}  // namespace orvane::sandbox
