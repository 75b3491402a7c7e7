// SPDX-License-Identifier: Apache-2.0
// The application's entry to the current user's vehicles.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Vehicle.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/SetOf.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

/// Fetches the vehicles that are enrolled for the current user.
class ORVANE_EXPORT VehicleService : public SerializableService {
 public:
  /// What the backend is asked to embed in a vehicle.
  enum class Expansion : std::uint8_t { usersByRole, health, devices };

  /// A service for the person who is signed in. A missing registration stops the process.
  explicit VehicleService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the current user's vehicles.
  Operation<std::vector<Vehicle>> getAllVehicles(SetOf<Expansion> expansions = {}) const;
  RequestHandle getAllVehicles(std::set<Expansion> expansions,
                               Completion<std::vector<Vehicle>> then) const;

  /// Fetches one of the current user's vehicles, by its `Vehicle::vehicleId`. A plate is sent
  /// besides, as it stands.
  Operation<Vehicle> getVehicleFor(std::string vehicleIdentity, SetOf<Expansion> expansions = {},
                                   std::optional<std::string> plate = {}) const;
  RequestHandle getVehicleFor(std::string vehicleIdentity, std::set<Expansion> expansions,
                              std::optional<std::string> plate, Completion<Vehicle> then) const;
};

template <>
struct EnumerationTable<VehicleService::Expansion> {
  using enum VehicleService::Expansion;
  static constexpr EnumerationCase<VehicleService::Expansion> cases[] = {
      {usersByRole, "usersByRole"}, {health, "health"}, {devices, "devices"}};
};

}  // namespace orvane
