// SPDX-License-Identifier: Apache-2.0
// The vehicles of the programme.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Models/Device.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// A vehicle that is enrolled. Every member is absent where the backend did not tell it.
struct ORVANE_EXPORT Vehicle {
  std::optional<std::string> vehicleId{};  ///< The backend's identifier of the vehicle.
  std::optional<std::string> make{};       ///< Who made it.
  std::optional<std::string> model{};      ///< What its maker calls it.
  std::optional<std::string> nickName{};   ///< What its owner calls it.
  std::optional<std::int64_t> year{};      ///< The model year.
  std::optional<std::string> vin{};        ///< Vehicle identification number (ISO 3779).
  std::optional<std::string> plate{};      ///< The registration plate.
  /// The zone that the vehicle is at home in, as the backend names it.
  std::optional<std::string> timeZoneName{};
  std::optional<std::string> timeZoneOffset{};  ///< A text, as the backend words it.
  /// When it was enrolled, as the number that the backend sends.
  std::optional<double> enrollmentDate{};
  /// There when a request asked for it.
  std::optional<UsersByRole> usersByRole{};
  std::optional<bool> backgroundImageEnabled{};  ///< Whether a background image goes with it.
  /// There when a request asked for them.
  std::optional<std::vector<Device>> devices{};
  /// Whether the programme asks for a snapshot of the odometer.
  std::optional<bool> requireOdometerSnapshot{};

  /// True when all members are equal, not `vehicleId` alone.
  [[nodiscard]] bool isIdentical(const Vehicle& other) const;

  /// Compares `vehicleId` alone: equal when both are absent, or present and the same text. See
  /// `isIdentical` for the whole record.
  friend bool operator==(const Vehicle& left, const Vehicle& right) {
    return left.vehicleId == right.vehicleId;
  }
};

template <>
inline constexpr bool hasCoding<Vehicle> = true;

}  // namespace orvane
