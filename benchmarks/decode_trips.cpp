// SPDX-License-Identifier: Apache-2.0
// Decoding a page of 100 trips with their events and routes: into records, beside the bare parses
// of the same text and the usual hand-written way with nlohmann/json. Then the routes themselves.
#include "benchmarks/TripsPage.h"
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Orvane.h>

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <simdjson.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace {

using orvane::Trip;

void reportSpeed(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(page().size()));
}

// What the decoded trips occupy, beside the text of their routes.
void reportMemory(benchmark::State& state) {
  const auto occupied = [] { return static_cast<double>(mallinfo2().uordblks); };
  (void)orvane::decode<std::vector<Trip>>(page());  // what the thread keeps for itself
  const double before = occupied();
  const auto trips = orvane::decode<std::vector<Trip>>(page());
  const double all = occupied() - before;
  double routes = 0;
  for (const Trip& trip : *trips.value()) {
    routes += static_cast<double>(trip.polyline->encodedString().size());
  }
  state.counters["bytes/trip"] = all / tripsOnAPage;
  state.counters["bytes/trip without route"] = (all - routes) / tripsOnAPage;
  state.counters["sizeof(Trip)"] = sizeof(Trip);
  state.counters["sizeof(Event)"] = sizeof(orvane::Event);
}

// As a service does: in the buffer that the answer was received in.
void decodeTrips(benchmark::State& state) {
  std::string received = page();
  for (auto _ : state) {
    auto trips = orvane::decodeInPlace<std::vector<Trip>>(received);
    if (!trips || trips.value()->size() != tripsOnAPage) state.SkipWithError("not decoded");
    benchmark::DoNotOptimize(trips);
  }
  reportSpeed(state);
  reportMemory(state);
}
BENCHMARK(decodeTrips);

void parseTripsWithSimdjson(benchmark::State& state) {
  const simdjson::padded_string text(page());
  simdjson::dom::parser parser;
  for (auto _ : state) {
    simdjson::dom::element root;
    if (parser.parse(text).get(root) != simdjson::SUCCESS) state.SkipWithError("not parsed");
    benchmark::DoNotOptimize(root);
  }
  reportSpeed(state);
}
BENCHMARK(parseTripsWithSimdjson);

void parseTripsWithRapidJSON(benchmark::State& state) {
  for (auto _ : state) {
    rapidjson::Document document;
    document.Parse(page().c_str(), page().size());
    if (document.HasParseError()) state.SkipWithError("not parsed");
    benchmark::DoNotOptimize(document);
  }
  reportSpeed(state);
}
BENCHMARK(parseTripsWithRapidJSON);

// What an application writes by hand: the parse, and a line or two per member.
template <class T>
std::optional<T> member(const nlohmann::json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return std::nullopt;
  return found->get<T>();
}

std::optional<orvane::Date> date(const nlohmann::json& object, const char* key) {
  const auto milliseconds = member<std::int64_t>(object, key);
  if (!milliseconds) return std::nullopt;
  return orvane::dateFromMilliseconds(*milliseconds);
}

std::optional<Polyline> polyline(const nlohmann::json& object, const char* key) {
  const auto text = member<std::string>(object, key);
  return text ? Polyline::make(*text) : std::nullopt;
}

orvane::TransportMode mode(const nlohmann::json& object) {
  return orvane::fromWireText<orvane::TransportMode>(
             object.at("transportMode").get_ref<const std::string&>())
      .value_or(orvane::TransportMode::unknown);
}

orvane::Event eventOf(const nlohmann::json& object) {
  orvane::Event event;
  event.latitude = object.at("latitude").get<double>();
  event.longitude = object.at("longitude").get<double>();
  event.date = date(object, "timeStamp");
  if (const auto level = member<std::int64_t>(object, "level")) {
    event.severity = orvane::fromRawValue<orvane::Event::Severity>(*level);
  }
  event.speed = member<double>(object, "kmPerHour");
  event.averageSpeed = member<double>(object, "averageKmPerHour");
  event.polyline = polyline(object, "geometry");
  event.duration = member<double>(object, "secondsOfDriving");
  event.speedLimit = member<double>(object, "kmSpeedLimit");
  event.transportMode = mode(object);
  return event;
}

Trip tripOf(const nlohmann::json& object) {
  Trip trip;
  trip.id = object.at("tripId").get<std::string>();
  trip.dateStarted = date(object, "tripStartTimestampUtc");
  trip.dateEnded = date(object, "tripEndTimestampUtc");
  trip.dateProcessed = date(object, "tripProcessingEndTimestampUtc");
  trip.distance = member<double>(object, "kilometers");
  trip.averageSpeed = member<double>(object, "avgKilometersPerHour");
  trip.maximumSpeed = member<double>(object, "maxKilometersPerHour");
  trip.duration = member<double>(object, "seconds");
  trip.transportMode = mode(object);
  trip.polyline = polyline(object, "geometry");
  trip.score = member<double>(object, "tripScore");
  trip.vehicleId = member<std::string>(object, "vehicleId");
  for (const auto& [type, list] : object.at("events").items()) {
    auto& events = trip.events.emplace()[orvane::Event::EventType::fromWireText(type)];
    for (const auto& entry : list) events.push_back(eventOf(entry));
  }
  return trip;
}

void decodeTripsWithNlohmann(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<Trip> trips;
    for (const auto& object : nlohmann::json::parse(page())) trips.push_back(tripOf(object));
    benchmark::DoNotOptimize(trips);
  }
  reportSpeed(state);
}
BENCHMARK(decodeTripsWithNlohmann);

const Polyline& route() {
  static const Polyline polyline = *Polyline::encode(Drive(1).next(pointsOfATrip));
  return polyline;
}

void reportPoints(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * pointsOfATrip);
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(route().encodedString().size()));
}

void decodePolyline(benchmark::State& state) {
  for (auto _ : state) {
    auto coordinates = route().decode();
    benchmark::DoNotOptimize(coordinates);
  }
  reportPoints(state);
}
BENCHMARK(decodePolyline);

// The algorithm as it is usually written down.
void decodePolylineStraightforwardly(benchmark::State& state) {
  for (auto _ : state) {
    const std::string_view text = route().encodedString();
    std::vector<CLLocationCoordinate2D> coordinates;
    std::size_t index = 0;
    std::int64_t latitude = 0;
    std::int64_t longitude = 0;
    const auto next = [&] {
      std::int64_t result = 0;
      int shift = 0;
      int byte = 0;
      do {
        byte = text.at(index++) - 63;
        result |= static_cast<std::int64_t>(byte & 0x1F) << shift;
        shift += 5;
      } while (byte >= 0x20);
      return (result & 1) != 0 ? ~(result >> 1) : result >> 1;
    };
    while (index < text.size()) {
      latitude += next();
      longitude += next();
      coordinates.push_back(
          {static_cast<double>(latitude) * 1e-6, static_cast<double>(longitude) * 1e-6});
    }
    benchmark::DoNotOptimize(coordinates);
  }
  reportPoints(state);
}
BENCHMARK(decodePolylineStraightforwardly);

void encodePolyline(benchmark::State& state) {
  const auto coordinates = route().decode();
  for (auto _ : state) {
    auto polyline = Polyline::encode(coordinates);
    benchmark::DoNotOptimize(polyline);
  }
  reportPoints(state);
}
BENCHMARK(encodePolyline);

}  // namespace
