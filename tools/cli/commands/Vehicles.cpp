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
  Table table{"id", "display name", "first name", "last name", "e-mail"};
  for (const User& user : users) {
    table.row(user.id, user.displayName, user.firstName, user.lastName, user.email);
  }
  return table;
}

Table tableOf(const std::vector<Device>& devices) {
  Table table{"id", "serial number", "enrolment id", "records trips", "notifications"};
  for (const Device& device : devices) {
    table.row(device.identifier, device.serialNumber, device.enrollmentDeviceId,
              device.dataCollectionIsActive, device.pushNotificationsAreEnabled);
  }
  return table;
}

struct ListVehicles {
  using Answer = Vehicles;
  static constexpr std::string_view name = "list";
  static constexpr std::string_view summary = "List the vehicles of the person who is signed in";
  static constexpr Example examples[] = {
      {"vehicles list", "what there is to drive"},
      {"vehicles list --expand usersByRole --json", "with everybody who drives them"},
  };

  Expansions expansions;

  void declare(Options& options) {
    options.option("--expand", expansions, "What to embed in the vehicles");
  }

  RequestHandle start(const Identity& identity, Completion<Vehicles> then) const {
    return VehicleService(identity).getAllVehicles(expansions, std::move(then));
  }

  static void print(const Vehicles& vehicles, Output& output) {
    Table table{"id", "name", "make", "model", {"year", Table::Alignment::right}, "plate", "VIN"};
    for (const Vehicle& vehicle : vehicles) {
      table.row(vehicle.vehicleId, vehicle.nickName, vehicle.make, vehicle.model, vehicle.year,
                vehicle.plate, vehicle.vin);
    }
    output.table(table);
  }
};

struct ShowVehicle {
  using Answer = Vehicle;
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show a vehicle";
  static constexpr Example examples[] = {
      {"vehicles show 3001 --expand usersByRole,devices", "with its drivers and devices"},
  };

  Identifier id;
  Expansions expansions;
  std::optional<std::string> plate;

  void declare(Options& options) {
    options.positional("ID", id, "The vehicle");
    options.option("--expand", expansions, "What to embed in the vehicle");
    options.option("--plate", plate, "The number plate that it has to have");
  }

  RequestHandle start(const Identity& identity, Completion<Vehicle> then) const {
    return VehicleService(identity).getVehicleFor(id.text, expansions, plate, std::move(then));
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
