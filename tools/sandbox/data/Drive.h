// SPDX-License-Identifier: Apache-2.0
//
// Drives along a route: where the traveller was when, how fast, and what a scoring backend would
// have noticed on the way.
#pragma once

#include "Time.h"
#include "data/Random.h"
#include "data/Roads.h"

#include <vector>

namespace orvane::sandbox {

struct TravelMode {
  const char* wireText;
  double topSpeed;      // km/h
  double acceleration;  // m/s²
  double braking;       // m/s²
  double cornering;     // m/s², sideways
  double stopChance;    // at a junction
  double stopEvery;     // metres between stops of a timetable; 0 without
};

/// One recorded position.
struct Fix {
  Position position;
  Milliseconds time = 0;
  double speed = 0;       // km/h
  double speedLimit = 0;  // km/h
};

struct DrivingEvent {
  const char* type;
  std::size_t fix = 0;      // where it happened
  std::size_t lastFix = 0;  // where it ended; the same for an instant
  int level = 1;            // 1 to 5
};

struct Drive {
  std::vector<Fix> fixes;
  std::vector<DrivingEvent> events;  // in the order of time
  double kilometres = 0;
  double maximumSpeed = 0;  // km/h
  double seconds = 0;
  double idleSeconds = 0;
};

/// `care` is 0 for someone who drives as if chased and 1 for someone who never brakes hard.
[[nodiscard]] Drive drive(const RoadMap& map, const Route& route, const TravelMode& mode,
                          double care, Milliseconds start, Random& random);

/// Scores of one drive, 0 to 100.
struct DriveScores {
  double overall = 0;
  double acceleration = 0;
  double braking = 0;
  double cornering = 0;
  double speeding = 0;
  double overSpeeding = 0;
  double distraction = 0;
  double usage = 0;  // the less driven, the better
};

[[nodiscard]] DriveScores scoreOf(const Drive& drive);

inline constexpr const char* accelerationEvent = "MultiLevelAccelerationViolation";
inline constexpr const char* brakingEvent = "MultiLevelBrakingViolation";
inline constexpr const char* corneringEvent = "MultiLevelCorneringViolation";
inline constexpr const char* speedingEvent = "MultiLevelSpeedViolation";
inline constexpr const char* postedLimitEvent = "PostedSpeedLimitViolation";
inline constexpr const char* phoneEvent = "PhoneHandlingViolation";

}  // namespace orvane::sandbox
