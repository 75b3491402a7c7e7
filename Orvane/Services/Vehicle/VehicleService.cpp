// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Vehicle/VehicleComposer.h>
#include <Orvane/Services/Vehicle/VehicleService.h>

namespace orvane {

Operation<std::vector<Vehicle>> VehicleService::getAllVehicles(SetOf<Expansion> expansions) const {
  return get<std::vector<Vehicle>>(
      *this, VehicleComposer(VehicleComposer::Vehicles{}, std::move(expansions).elements()));
}

RequestHandle VehicleService::getAllVehicles(std::set<Expansion> expansions,
                                             Completion<std::vector<Vehicle>> then) const {
  return getAllVehicles(std::move(expansions)).start(std::move(then));
}

Operation<Vehicle> VehicleService::getVehicleFor(std::string vehicleIdentity,
                                                 SetOf<Expansion> expansions,
                                                 std::optional<std::string> plate) const {
  VehicleComposer::OneVehicle vehicle{std::move(vehicleIdentity)};
  return get<Vehicle>(*this, VehicleComposer(std::move(vehicle), std::move(expansions).elements(),
                                             std::move(plate)));
}

RequestHandle VehicleService::getVehicleFor(std::string vehicleIdentity,
                                            std::set<Expansion> expansions,
                                            std::optional<std::string> plate,
                                            Completion<Vehicle> then) const {
  return getVehicleFor(std::move(vehicleIdentity), std::move(expansions), std::move(plate))
      .start(std::move(then));
}

}  // namespace orvane
