// SPDX-License-Identifier: Apache-2.0
#include "TripShape.h"

#include "ExitCode.h"
#include "Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace orvane::cli {
namespace {

// From grey through yellow and red to what is beyond red.
constexpr std::array<SeverityColour, 6> colours{{
    {std::nullopt, "#59636e", "#9198a1"},
    {Event::Severity::veryLow, "#6e7781", "#8b949e"},
    {Event::Severity::low, "#9a6700", "#d29922"},
    {Event::Severity::medium, "#d4570d", "#f0883e"},
    {Event::Severity::high, "#cf222e", "#f85149"},
    {Event::Severity::veryHigh, "#b4136d", "#ff6ac1"},
}};

[[noreturn]] void fail(const std::string& what, const std::string& why) {
  throw Failure(ExitCode::invalidData, what + " can't be drawn: " + why);
}

void check(CLLocationCoordinate2D place, const std::string& what) {
  // Also false for what is not a number.
  const bool isOnEarth = std::abs(place.latitude) <= 90 && std::abs(place.longitude) <= 180;
  if (isOnEarth) return;
  const std::string numbers = decimal(place.latitude, 6) + ", " + decimal(place.longitude, 6);
  fail(what, numbers + " is no place on earth");
}

Places placesOf(const std::optional<Polyline>& polyline, const std::string& what) {
  if (!polyline) return {};
  auto places = polyline->decodeChecked();
  if (!places) fail(what, places.errorOr(PolylineError{}).message());
  for (const CLLocationCoordinate2D place : *places.value()) check(place, what);
  return *std::move(places).value();
}

}  // namespace

std::vector<TripEvent> inOrder(const Trip::Events& events) {
  std::vector<TripEvent> all;
  for (const auto& [type, list] : events) {
    for (const Event& event : list) all.push_back({&type, &event});
  }
  std::ranges::stable_sort(all, {}, [](const TripEvent& row) { return row.event->date; });
  return all;
}

TripShape shapeOf(const Trip& trip) {
  TripShape shape;
  shape.route = placesOf(trip.polyline, "the trip's route");
  shape.reconstructedStart = placesOf(trip.startPolyline, "the trip's reconstructed start");
  if (!trip.events) return shape;
  for (const TripEvent& row : inOrder(*trip.events)) {
    const Event& event = *row.event;
    if (!event.latitude || !event.longitude) continue;
    const std::string what = "an event (" + toText(*row.type) + ")";
    const CLLocationCoordinate2D place{*event.latitude, *event.longitude};
    check(place, what);
    shape.marks.push_back({row, place, placesOf(event.polyline, what)});
  }
  return shape;
}

const SeverityColour& colourOf(const std::optional<Event::Severity>& severity) {
  const auto* const found = std::ranges::find(colours, severity, &SeverityColour::severity);
  return found == colours.end() ? colours.front() : *found;
}

double nearestTurn(double longitude, double reference) {
  constexpr double round = 360;
  return longitude - round * std::round((longitude - reference) / round);
}

}  // namespace orvane::cli
