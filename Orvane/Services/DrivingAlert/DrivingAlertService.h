// SPDX-License-Identifier: Apache-2.0
// The application's entry to which driving raises an alert.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/OneOf.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// From which severity on harsh driving raises an alert.
enum class DrivingEventSeverity : std::uint8_t { off = 0, low = 1, medium = 2, high = 3 };

template <>
struct EnumerationTable<DrivingEventSeverity> {
  using enum DrivingEventSeverity;
  static constexpr EnumerationCase<DrivingEventSeverity> cases[] = {
      {off, "0"}, {low, "1"}, {medium, "2"}, {high, "3"}};
};

namespace alert {
/// Harsh acceleration raises an alert.
struct Acceleration {
  std::string driverId;                       ///< Whose driving.
  DrivingEventSeverity accelerationSeverity;  ///< From which severity on; `off` for none.
  friend bool operator==(const Acceleration&, const Acceleration&) = default;
};
/// Harsh braking raises an alert.
struct Braking {
  std::string driverId;                  ///< Whose driving.
  DrivingEventSeverity brakingSeverity;  ///< From which severity on; `off` for none.
  friend bool operator==(const Braking&, const Braking&) = default;
};
/// Driving at night raises an alert.
struct LateNight {
  std::string driverId;  ///< Whose driving.
  bool enableAlert;      ///< Whether it does.
  /// From and to a time of day by the device's clock; sent when both are there. A date that has
  /// none (it is not finite, say) leaves both out, with a warning in the log.
  std::optional<Date> startTime;
  std::optional<Date> endTime;  ///< See `startTime`.
  friend bool operator==(const LateNight&, const LateNight&) = default;
};
/// Driving too fast raises an alert.
struct Speeding {
  std::string driverId;        ///< Whose driving.
  std::string speedThreshold;  ///< From which speed on, in the backend's words.
  friend bool operator==(const Speeding&, const Speeding&) = default;
};
}  // namespace alert

/// One setting: which driving of which driver raises an alert. Nothing is checked here.
class DrivingAlertType
    : public OneOf<alert::Acceleration, alert::Braking, alert::LateNight, alert::Speeding> {
 public:
  using OneOf::OneOf;
  /// Harsh acceleration from `severity` on.
  [[nodiscard]] static DrivingAlertType acceleration(std::string driverId,
                                                     DrivingEventSeverity severity) {
    return alert::Acceleration{std::move(driverId), severity};
  }
  /// Harsh braking from `severity` on.
  [[nodiscard]] static DrivingAlertType braking(std::string driverId,
                                                DrivingEventSeverity severity) {
    return alert::Braking{std::move(driverId), severity};
  }
  /// Of the two times only the time of day counts, in the device's time zone; they are sent when
  /// both are there and finite.
  [[nodiscard]] static DrivingAlertType lateNight(std::string driverId, bool enableAlert,
                                                  std::optional<Date> startTime = {},
                                                  std::optional<Date> endTime = {}) {
    return alert::LateNight{std::move(driverId), enableAlert, startTime, endTime};
  }
  /// The threshold is sent as it stands.
  [[nodiscard]] static DrivingAlertType speeding(std::string driverId, std::string speedThreshold) {
    return alert::Speeding{std::move(driverId), std::move(speedThreshold)};
  }
};

/// Chooses which driving raises an alert.
class ORVANE_EXPORT DrivingAlertService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit DrivingAlertService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Registers one setting.
  Operation<Unit> registerAlertSetting(DrivingAlertType setting) const;
  RequestHandle registerAlertSetting(DrivingAlertType setting, Completion<Unit> then) const;
};

}  // namespace orvane
