// SPDX-License-Identifier: Apache-2.0
#include "data/Drive.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace orvane::sandbox {

namespace {

constexpr double fixInterval = 2;  // seconds
constexpr double mostFixes = 900;
constexpr double creep = 0.6;            // m/s: the slowest that still moves
constexpr double metresPerSecond = 3.6;  // km/h

/// A stretch driven faster than allowed.
struct Stretch {
  std::size_t first;
  std::size_t last;
  double factor;
};

/// How a route is driven, point by point.
struct Profile {
  std::vector<double> speed;  // m/s
  std::vector<double> idle;   // seconds of standing at the point
  std::vector<std::size_t> stops;
  std::vector<Stretch> stretches;
};

std::vector<Stretch> chooseStretches(const Route& route, double care, Random& random) {
  std::vector<Stretch> stretches;
  const double wanted = (1 - care) * route.metres() / 5000;
  auto count = static_cast<int>(wanted) + (random.chance(wanted - std::floor(wanted)) ? 1 : 0);
  for (; count > 0; --count) {
    const auto points = static_cast<std::size_t>(random.between(30, 120));
    if (route.line.size() < points + 60) break;
    const std::size_t first = 30 + random.index(route.line.size() - points - 60);
    stretches.push_back({first, first + points, random.between(1.14, 1.18 + 0.4 * (1 - care))});
  }
  std::ranges::sort(stretches, {}, &Stretch::first);
  const auto overlapping = [](const Stretch& a, const Stretch& b) { return b.first < a.last + 40; };
  stretches.erase(std::unique(stretches.begin(), stretches.end(), overlapping), stretches.end());
  return stretches;
}

std::vector<std::size_t> chooseStops(const Route& route, const TravelMode& mode,
                                     const std::vector<Stretch>& stretches, Random& random) {
  std::vector<std::size_t> stops;
  for (const std::size_t junction : route.junctions) {
    const bool speeding = std::ranges::any_of(stretches, [&](const Stretch& stretch) {
      return junction + 15 > stretch.first && junction < stretch.last + 15;
    });
    if (!speeding && random.chance(mode.stopChance)) stops.push_back(junction);
  }
  if (mode.stopEvery > 0) {
    const auto every = static_cast<std::size_t>(mode.stopEvery / Route::step);
    for (std::size_t i = every; i + every / 2 < route.line.size(); i += every) stops.push_back(i);
  }
  std::ranges::sort(stops);
  return stops;
}

double bendLimit(const Route& route, std::size_t i, double sideways) {
  constexpr std::size_t reach = 3;
  if (i < reach || i + reach >= route.line.size()) return 1e3;
  const double bend = curvature(route.line[i - reach], route.line[i], route.line[i + reach]);
  return std::sqrt(sideways / std::max(bend, 1e-6));
}

Profile profileOf(const Route& route, const TravelMode& mode, double care, Random& random) {
  Profile profile;
  if (mode.wireText == std::string_view{"DRIVER"}) {
    profile.stretches = chooseStretches(route, care, random);
  }
  profile.stops = chooseStops(route, mode, profile.stretches, random);
  const std::size_t size = route.line.size();
  profile.speed.resize(size);
  profile.idle.assign(size, 0);

  double mood = random.between(0.76, 0.92);
  for (std::size_t i = 0; i < size; ++i) {
    if (i % 60 == 0) mood = std::clamp(mood + random.normal() * 0.04, 0.70, 0.98);
    const double allowed = std::min(route.speedLimit[i] * mood, mode.topSpeed);
    profile.speed[i] =
        std::min(allowed / metresPerSecond, bendLimit(route, i, mode.cornering + 1.5 * (1 - care)));
  }
  for (const Stretch& stretch : profile.stretches) {
    for (std::size_t i = stretch.first; i <= stretch.last; ++i) {
      profile.speed[i] = route.speedLimit[i] * stretch.factor / metresPerSecond;
    }
  }
  for (const std::size_t stop : profile.stops) {
    profile.speed[stop] = creep;
    profile.idle[stop] = mode.stopEvery > 0 ? random.between(15, 30) : random.between(6, 60);
  }
  profile.speed.front() = creep;
  profile.speed.back() = creep;
  const double up = 2 * mode.acceleration * Route::step;
  const double down = 2 * mode.braking * Route::step;
  for (std::size_t i = 1; i < size; ++i) {
    const double before = profile.speed[i - 1];
    profile.speed[i] = std::min(profile.speed[i], std::sqrt(before * before + up));
  }
  for (std::size_t i = size - 1; i > 0; --i) {
    const double after = profile.speed[i];
    profile.speed[i - 1] = std::min(profile.speed[i - 1], std::sqrt(after * after + down));
  }
  return profile;
}

/// When the traveller passed each point, in seconds from the start; standing comes before passing.
std::vector<double> timesOf(const Profile& profile) {
  std::vector<double> times{0};
  for (std::size_t i = 1; i < profile.speed.size(); ++i) {
    const double mean = (profile.speed[i - 1] + profile.speed[i]) / 2;
    times.push_back(times.back() + Route::step / mean + profile.idle[i]);
  }
  return times;
}

/// The error of a satellite fix wanders about instead of jumping.
class Wander {
 public:
  Point next(Random& random) {
    error_ = error_ * 0.93 + Point{random.normal(), random.normal()} * 0.6;
    return error_;
  }

 private:
  Point error_;
};

/// Samples the drive at even times and says which fix belongs to which point of the route.
std::vector<std::size_t> recordFixes(Drive& drive, const RoadMap& map, const Route& route,
                                     const Profile& profile, const std::vector<double>& times,
                                     Milliseconds start, Random& random) {
  const double total = times.back();
  const double interval = std::max(fixInterval, total / mostFixes);
  std::vector<std::size_t> fixOfPoint(route.line.size(), 0);
  Wander wander;
  std::size_t point = 0;
  for (double time = 0;; time = std::min(time + interval, total)) {
    while (point + 1 < times.size() && times[point + 1] <= time) {
      fixOfPoint[point] = drive.fixes.size();
      ++point;
    }
    const std::size_t next = std::min(point + 1, times.size() - 1);
    // On the way to a stop the traveller moves first and stands afterwards.
    const double moving = std::max(times[next] - times[point] - profile.idle[next], 1e-9);
    const double share = std::clamp((time - times[point]) / moving, 0.0, 1.0);
    const bool standing = time - times[point] > moving && profile.idle[next] > 0;
    const Point at = route.line[point] + (route.line[next] - route.line[point]) * share;
    const double speed =
        standing ? 0 : profile.speed[point] + (profile.speed[next] - profile.speed[point]) * share;
    drive.fixes.push_back({map.projection().toEarth(at + wander.next(random)),
                           start + static_cast<Milliseconds>(std::lround(time * 1000)),
                           speed * metresPerSecond, route.speedLimit[point]});
    drive.maximumSpeed = std::max(drive.maximumSpeed, speed * metresPerSecond);
    if (time >= total) break;
  }
  for (; point < fixOfPoint.size(); ++point) fixOfPoint[point] = drive.fixes.size() - 1;
  return fixOfPoint;
}

int chooseLevel(double care, Random& random) {
  int level = 1;
  while (level < 5 && random.chance(0.30 + 0.35 * (1 - care))) ++level;
  return level;
}

void addStretchEvents(Drive& drive, const Profile& profile,
                      const std::vector<std::size_t>& fixOfPoint, Random& random) {
  for (const Stretch& stretch : profile.stretches) {
    const auto level = static_cast<int>((stretch.factor - 1.1) / 0.08) + 1;
    drive.events.push_back({random.chance(0.5) ? postedLimitEvent : speedingEvent,
                            fixOfPoint[stretch.first], fixOfPoint[stretch.last],
                            std::clamp(level, 1, 5)});
  }
}

void addInstantEvents(Drive& drive, const Route& route, const Profile& profile,
                      const std::vector<std::size_t>& fixOfPoint, double care, Random& random) {
  const auto add = [&](const char* type, std::size_t point) {
    const std::size_t fix = fixOfPoint[std::min(point, fixOfPoint.size() - 1)];
    drive.events.push_back({type, fix, fix, chooseLevel(care, random)});
  };
  const double readiness = (1 - care) * 0.45;
  for (const std::size_t stop : profile.stops) {
    if (stop > 20 && random.chance(readiness)) add(brakingEvent, stop - 3 - random.index(5));
    if (random.chance(readiness)) add(accelerationEvent, stop + 2 + random.index(5));
  }
  constexpr double tight = 1.0 / 45;  // a radius of 45 metres
  for (std::size_t i = 10; i + 10 < route.line.size(); i += 20) {
    const double bend = curvature(route.line[i - 3], route.line[i], route.line[i + 3]);
    if (bend > tight && random.chance(readiness)) add(corneringEvent, i);
  }
  if (random.chance((1 - care) * 0.3)) add(phoneEvent, random.index(route.line.size()));
}

double penalty(int level) { return 1.5 + 1.6 * level; }

}  // namespace

Drive drive(const RoadMap& map, const Route& route, const TravelMode& mode, double care,
            Milliseconds start, Random& random) {
  Drive drive;
  const Profile profile = profileOf(route, mode, care, random);
  const std::vector<double> times = timesOf(profile);
  const auto fixOfPoint = recordFixes(drive, map, route, profile, times, start, random);
  drive.seconds = std::round(times.back() * 10) / 10;
  for (const double idle : profile.idle) drive.idleSeconds += idle;
  Position previous = map.projection().toEarth(route.line.front());
  double metres = 0;
  for (const Point& point : route.line) {
    const Position position = map.projection().toEarth(point);
    metres += metresBetween(previous, position);
    previous = position;
  }
  drive.kilometres = std::round(metres) / 1000;
  if (mode.wireText == std::string_view{"DRIVER"}) {
    addStretchEvents(drive, profile, fixOfPoint, random);
    addInstantEvents(drive, route, profile, fixOfPoint, care, random);
    std::ranges::stable_sort(drive.events, {}, &DrivingEvent::fix);
  }
  return drive;
}

DriveScores scoreOf(const Drive& drive) {
  const auto component = [&](std::string_view type) {
    double penalties = 0;
    for (const DrivingEvent& event : drive.events) {
      if (event.type == type) penalties += penalty(event.level);
    }
    return std::round(1000 * std::exp(-penalties / (drive.kilometres + 3))) / 10;
  };
  DriveScores scores;
  scores.acceleration = component(accelerationEvent);
  scores.braking = component(brakingEvent);
  scores.cornering = component(corneringEvent);
  scores.speeding = component(speedingEvent);
  scores.overSpeeding = component(postedLimitEvent);
  scores.distraction = component(phoneEvent);
  scores.usage = std::round(1000 * std::exp(-drive.kilometres / 90)) / 10;
  const double mean = 0.22 * scores.acceleration + 0.24 * scores.braking + 0.14 * scores.cornering +
                      0.16 * scores.speeding + 0.14 * scores.overSpeeding +
                      0.10 * scores.distraction;
  scores.overall = std::round(mean * 10) / 10;
  return scores;
}

}  // namespace orvane::sandbox
