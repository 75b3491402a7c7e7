// SPDX-License-Identifier: Apache-2.0
// orvane vehicles: what the person who is signed in drives.
#include "Commands.h"
#include <Orvane/Services/Vehicle/VehicleService.h>

namespace orvane::cli {
namespace {

using Vehicles = std::vector<Vehicle>;
using Expansions = std::set<VehicleService::Expansion>;

Block recordOf(const Vehicle& vehicle) {
  return Block()
      .row("id", vehicle.vehicleId)
      .row("name", vehicle.nickName)
      .row("make", vehicle.make)
      .row("model", vehicle.model)
      .row("year", vehicle.year)
      .row("plate", vehicle.plate)
      .row("VIN", vehicle.vin)
      .row("time zone", vehicle.timeZoneName)
      .row("time zone offset", vehicle.timeZoneOffset)
      .row("enrolled on", vehicle.enrollmentDate, dateOfMilliseconds)
      .row("background image", vehicle.backgroundImageEnabled)
      .row("odometer photo required", vehicle.requireOdometerSnapshot);
}

Table tableOf(const std::vector<User>& users) {
  return {"users",
          users,
          {{"id", &User::id},
           {"display name", &User::displayName},
           {"first name", &User::firstName, 1},
           {"last name", &User::lastName, 1},
           {"e-mail", &User::email, 2}}};
}

Table tableOf(const std::vector<Device>& devices) {
  return {"devices",
          devices,
          {{"id", &Device::identifier},
           {"serial number", &Device::serialNumber, 1},
           {"enrolment id", &Device::enrollmentDeviceId, 3},
           {"collects data", &Device::dataCollectionIsActive, 2},
           {"push notifications", &Device::pushNotificationsAreEnabled, 4}}};
}

// Who has a role: by names, or else by identifiers.
std::string namesOf(const std::optional<std::vector<User>>& users) {
  std::vector<std::string> names;
  if (users) {
    for (const User& user : *users)
      names.push_back(user.displayName.value_or(user.id.value_or("")));
  }
  return joined(names, ", ");
}

std::string ownersOf(const Vehicle& vehicle) {
  return vehicle.usersByRole ? namesOf((*vehicle.usersByRole).OWNER) : std::string();
}
std::string operatorsOf(const Vehicle& vehicle) {
  return vehicle.usersByRole ? namesOf((*vehicle.usersByRole).OPERATOR) : std::string();
}
std::optional<std::int64_t> devicesOf(const Vehicle& vehicle) {
  if (!vehicle.devices) return std::nullopt;
  return static_cast<std::int64_t>(vehicle.devices->size());
}

constexpr const char* embeds =
    "What to embed in it: health is in --json alone, the library does not read it";

struct ListVehicles {
  static constexpr std::string_view name = "list";
  static constexpr std::string_view summary = "List the vehicles of the person who is signed in";
  static constexpr Example examples[] = {
      {"vehicles list", "what there is to drive"},
      {"vehicles list --expand usersByRole --json", "with everybody who drives them"},
  };

  Expansions expansions;

  void declare(Options& options) { options.option("--expand", expansions, embeds); }

  Operation<Vehicles> ask(const VehicleService& service) const {
    return service.getAllVehicles(expansions);
  }

  static void print(const Vehicles& vehicles, Output& output) {
    output.table(Table("vehicles", vehicles,
                       {{"id", &Vehicle::vehicleId},
                        {"name", &Vehicle::nickName},
                        {"make", &Vehicle::make, 3},
                        {"model", &Vehicle::model, 2},
                        {"year", &Vehicle::year, 5},
                        {"plate", &Vehicle::plate, 4},
                        {"VIN", &Vehicle::vin, 6},
                        // What is there only where it was asked for comes first.
                        {"owners", ownersOf, 1},
                        {"operators", operatorsOf, 1},
                        {"devices", devicesOf, 1}}));
  }
};

struct ShowVehicle {
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show a vehicle";
  static constexpr Example examples[] = {
      {"vehicles show 3001 --expand usersByRole,devices", "with its drivers and devices"},
  };

  VehicleID id;
  Expansions expansions;
  std::optional<std::string> plate;

  void declare(Options& options) {
    options.positional("ID", id, "The vehicle");
    options.option("--expand", expansions, embeds);
    options.option("--plate", plate, "The number plate that it has to have");
  }

  Operation<Vehicle> ask(const VehicleService& service) const {
    return service.getVehicleFor(id.text, expansions, plate);
  }

  static void print(const Vehicle& vehicle, Output& output) {
    output.block(recordOf(vehicle));
    if (vehicle.usersByRole) {
      const UsersByRole& users = *vehicle.usersByRole;
      if (users.OWNER) output.section("owners", tableOf(*users.OWNER));
      if (users.OPERATOR) output.section("operators", tableOf(*users.OPERATOR));
    }
    if (vehicle.devices) output.section("devices", tableOf(*vehicle.devices));
  }
};

}  // namespace

Resource vehicleCommands() {
  return Resource("vehicles", "What people drive").add<ListVehicles>().add<ShowVehicle>();
}

}  // namespace orvane::cli
