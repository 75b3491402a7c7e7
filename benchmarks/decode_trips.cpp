// SPDX-License-Identifier: Apache-2.0
// Decoding a page of 100 trips with their events and routes: into records, beside the bare parses
// of the same text and the usual hand-written way with nlohmann/json. Then the routes themselves.
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Orvane.h>

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <simdjson.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using orvane::CLLocationCoordinate2D;
using orvane::Polyline;
using orvane::Trip;

constexpr int tripsOnAPage = 100;
constexpr int pointsOfATrip = 1900;  // half an hour, a point a second
constexpr int pointsOfAnEvent = 12;

// A road: 14 m/s on average, bending all the time.
class Drive {
 public:
  explicit Drive(std::uint64_t seed) : random_(seed) {}

  std::vector<CLLocationCoordinate2D> next(int points) {
    std::vector<CLLocationCoordinate2D> route;
    for (int i = 0; i < points; ++i) {
      heading_ += bend_(random_);
      speed_ = std::clamp(speed_ + acceleration_(random_), 0.0, 36.0);
      here_.latitude += speed_ * std::cos(heading_) * degreesPerMetre;
      here_.longitude += speed_ * std::sin(heading_) * degreesPerMetre * 1.5;
      route.push_back(here_);
    }
    return route;
  }

 private:
  static constexpr double degreesPerMetre = 1 / 111'000.0;
  std::mt19937_64 random_;
  std::normal_distribution<double> bend_{0, 0.05};
  std::normal_distribution<double> acceleration_{0, 1};
  CLLocationCoordinate2D here_{47.37, 8.54};
  double heading_ = 0;
  double speed_ = 14;
};

nlohmann::ordered_json event(Drive& drive, std::int64_t time) {
  const auto road = drive.next(pointsOfAnEvent);
  return {{"latitude", road.front().latitude},
          {"longitude", road.front().longitude},
          {"timeStamp", time},
          {"level", 1 + time % 5},
          {"kmPerHour", 52.25},
          {"averageKmPerHour", 48.5},
          {"geometry", Polyline::encode(road)->encodedString()},
          {"secondsOfDriving", 12},
          {"kmSpeedLimit", 50},
          {"transportMode", "DRIVER"}};
}

std::string pageOfTrips() {
  constexpr const char* types[] = {"MultiLevelBrakingViolation", "MultiLevelAccelerationViolation",
                                   "MultiLevelCorneringViolation", "PostedSpeedLimitViolation"};
  nlohmann::ordered_json page = nlohmann::ordered_json::array();
  for (int i = 0; i < tripsOnAPage; ++i) {
    Drive drive(static_cast<std::uint64_t>(i));
    const std::int64_t start = 1'700'000'000'008 + i * 86'400'000LL;
    nlohmann::ordered_json events = nlohmann::ordered_json::object();
    for (const char* type : types) {
      nlohmann::ordered_json list = nlohmann::ordered_json::array();
      for (int k = 0; k < 6; ++k) list.push_back(event(drive, start + k * 60'000));
      events[type] = std::move(list);
    }
    page.push_back({
        {"tripId", "6b1f0c5e-0000-4000-8000-0000000" + std::to_string(10'000 + i)},
        {"tripStartTimestampUtc", start},
        {"tripEndTimestampUtc", start + 1'900'000},
        {"tripProcessingEndTimestampUtc", start + 1'960'123},
        {"kilometers", 26.6 + i * 0.125},
        {"avgKilometersPerHour", 50.4},
        {"maxKilometersPerHour", 118.75},
        {"seconds", 1900},
        {"timeZoneOffsetMillis", 3'600'000},
        {"tripStatus", "FINISHED"},
        {"transportMode", "DRIVER"},
        {"geometry", Polyline::encode(drive.next(pointsOfATrip))->encodedString()},
        {"events", std::move(events)},
        {"tripScore", 81.5},
        {"tripScores",
         {{"scores", {{"overall", 81.5}, {"harsh.braking", 70}, {"harsh.acceleration", 90}}}}},
        {"purpose", i % 3 == 0 ? "BUSINESS" : "PERSONAL"},
        {"vehicleId", "V" + std::to_string(i % 2)},
    });
  }
  return page.dump();
}

const std::string& page() {
  static const std::string text = pageOfTrips();
  return text;
}

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
