// SPDX-License-Identifier: Apache-2.0
#include "GeoJSON.h"

#include "Text.h"
#include "TripShape.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace orvane::cli {
namespace {

// Members in the order in which they are set.
using JSON = nlohmann::ordered_json;

constexpr std::string_view routeColour = "#0969da";

// Six decimals are what a polyline holds, and a tenth of a metre (RFC 7946, section 11.2).
double rounded(double degrees) {
  constexpr double steps = 1e6;
  return std::round(degrees * steps) / steps;
}

// Longitude first (RFC 7946, section 3.1.1).
JSON positionOf(CLLocationCoordinate2D place) {
  return JSON::array({rounded(place.longitude), rounded(place.latitude)});
}

// The parts of a line between its crossings of the 180th meridian (RFC 7946, section 3.1.9).
std::vector<Places> partsOf(const Places& line) {
  std::vector<Places> parts{{}};
  for (const CLLocationCoordinate2D place : line) {
    if (parts.back().empty()) {
      parts.back().push_back(place);
      continue;
    }
    const CLLocationCoordinate2D former = parts.back().back();
    const double longitude = nearestTurn(place.longitude, former.longitude);
    if (std::abs(longitude) > 180) {
      const double edge = std::copysign(180.0, longitude);
      const double share = (edge - former.longitude) / (longitude - former.longitude);
      const double latitude = former.latitude + share * (place.latitude - former.latitude);
      parts.back().push_back({latitude, edge});
      parts.push_back({{latitude, -edge}});
    }
    parts.back().push_back(place);
  }
  return parts;
}

JSON positionsOf(const Places& line) {
  JSON positions = JSON::array();
  for (const CLLocationCoordinate2D place : line) positions.push_back(positionOf(place));
  return positions;
}

JSON geometryOf(const Places& line) {
  // A feature without a place is one all the same (RFC 7946, section 3.2).
  if (line.empty()) return nullptr;
  if (line.size() == 1) return {{"type", "Point"}, {"coordinates", positionOf(line.front())}};
  const std::vector<Places> parts = partsOf(line);
  if (parts.size() == 1) return {{"type", "LineString"}, {"coordinates", positionsOf(line)}};
  JSON lines = JSON::array();
  for (const Places& part : parts) lines.push_back(positionsOf(part));
  return {{"type", "MultiLineString"}, {"coordinates", std::move(lines)}};
}

JSON feature(JSON geometry, JSON properties) {
  return {{"type", "Feature"},
          {"geometry", std::move(geometry)},
          {"properties", std::move(properties)}};
}

template <class T, class Convert>
void set(JSON& properties, const char* name, const std::optional<T>& value, Convert convert) {
  if (value) properties[name] = convert(*value);
}

void setTime(JSON& properties, const char* name, const std::optional<Date>& date,
             const std::optional<TimeZone>& zone) {
  if (!date) return;
  if (const auto text = internetTime(*date, zone)) properties[name] = *text;
}

double oneDecimal(double value) { return std::round(value * 10) / 10; }
double kilometresPerHour(double metresPerSecond) { return oneDecimal(metresPerSecond * 3.6); }

JSON propertiesOf(const Trip& trip) {
  JSON properties{{"kind", "route"}};
  set(properties, "tripId", trip.id, [](const std::string& id) { return id; });
  setTime(properties, "started", trip.dateStarted, trip.timeZone);
  setTime(properties, "ended", trip.dateEnded, trip.timeZone);
  set(properties, "kilometres", trip.distance,
      [](double metres) { return std::round(metres) / 1000; });
  set(properties, "seconds", trip.duration, [](double seconds) { return seconds; });
  set(properties, "transportMode", trip.transportMode, [](auto mode) { return toText(mode); });
  set(properties, "purpose", trip.purpose, [](auto purpose) { return toText(purpose); });
  properties["stroke"] = routeColour;
  properties["stroke-width"] = 4;
  return properties;
}

JSON propertiesOf(const TripShape::Mark& mark, const std::optional<TimeZone>& zone) {
  const Event& event = *mark.what.event;
  const std::string type = toText(*mark.what.type);
  const std::string severity = event.severity ? toText(*event.severity) : std::string();
  JSON properties{{"kind", "event"}, {"type", type}};
  if (event.severity) properties["severity"] = severity;
  setTime(properties, "time", event.date, zone);
  set(properties, "kilometresPerHour", event.speed, kilometresPerHour);
  set(properties, "kilometresPerHourAllowed", event.speedLimit, kilometresPerHour);
  set(properties, "seconds", event.duration, [](double seconds) { return seconds; });
  properties["title"] = severity.empty() ? type : type + ", " + severity;
  properties["marker-color"] = colourOf(event.severity).light;
  return properties;
}

}  // namespace

std::string geoJSONOf(const Trip& trip) {
  const TripShape shape = shapeOf(trip);
  std::vector<JSON> features{feature(geometryOf(shape.route), propertiesOf(trip))};
  if (!shape.reconstructedStart.empty()) {
    features.push_back(
        feature(geometryOf(shape.reconstructedStart), {{"kind", "reconstructed start"},
                                                       {"stroke", routeColour},
                                                       {"stroke-width", 4},
                                                       {"stroke-opacity", 0.5}}));
  }
  for (const TripShape::Mark& mark : shape.marks) {
    features.push_back(feature({{"type", "Point"}, {"coordinates", positionOf(mark.place)}},
                               propertiesOf(mark, trip.timeZone)));
  }
  std::string text = R"({"type":"FeatureCollection","features":[)";
  for (const JSON& each : features) {
    text += &each == &features.front() ? "\n" : ",\n";
    text += each.dump(-1, ' ', false, JSON::error_handler_t::replace);
  }
  return text + "\n]}\n";
}

}  // namespace orvane::cli
