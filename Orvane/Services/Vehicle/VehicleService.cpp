// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Vehicle/VehicleComposer.h>
#include <Orvane/Services/Vehicle/VehicleService.h>

namespace orvane {

RequestHandle VehicleService::getAllVehicles(std::set<Expansion> expansions,
                                             Completion<std::vector<Vehicle>> then) const {
  return get(*this, VehicleComposer(VehicleComposer::Vehicles{}, std::move(expansions)),
             std::move(then));
}

RequestHandle VehicleService::getVehicleFor(std::string vehicleIdentity,
                                            std::set<Expansion> expansions,
                                            std::optional<std::string> plate,
                                            Completion<Vehicle> then) const {
  VehicleComposer::OneVehicle vehicle{std::move(vehicleIdentity)};
  return get(*this, VehicleComposer(std::move(vehicle), std::move(expansions), std::move(plate)),
             std::move(then));
}

}  // namespace orvane
