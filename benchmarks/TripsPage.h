// SPDX-License-Identifier: Apache-2.0
// A page of 100 trips with their events and routes, as text.
#pragma once

#include <Orvane/Models/Polyline.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using orvane::CLLocationCoordinate2D;
using orvane::Polyline;

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
      for (int k = 0; k < 6; ++k) list.push_back(event(drive, start + k * 60'000LL));
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

}  // namespace
