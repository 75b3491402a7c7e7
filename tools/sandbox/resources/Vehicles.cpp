// SPDX-License-Identifier: Apache-2.0
//
// "users/{id}/vehicles/" and "users/{id}/vehicles/{vehicle}". The list's slash is part of its name.
#include "resources/People.h"
#include "resources/Resources.h"
#include "resources/VehicleRecord.h"

namespace orvane::sandbox {

namespace {

std::set<std::string> expansionsOf(const Call& call) {
  return call.query.expansions({"usersByRole", "health", "devices"});
}

Reply listVehicles(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  const auto expansions = expansionsOf(call);
  const auto plate = call.query.text("plate");
  JsonWriter json;
  json.beginArray();
  Rows vehicles = call.database.query(
      "SELECT " + vehicleColumns +
          " FROM vehicles JOIN vehicle_users USING (vehicle_id)"
          " WHERE user_id = ?1 AND (?2 IS NULL OR plate = ?2) ORDER BY vehicle_id",
      userId, plate);
  while (vehicles.next()) writeVehicle(json, call.database, vehicles, expansions);
  return jsonReply(json.endArray().take());
}

Reply readVehicle(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  const auto expansions = expansionsOf(call);
  Rows vehicle = call.database.query(
      "SELECT " + vehicleColumns +
          " FROM vehicles JOIN vehicle_users USING (vehicle_id)"
          " WHERE user_id = ?1 AND vehicle_id = ?2 AND (?3 IS NULL OR plate = ?3)",
      userId, call.capture(1), call.query.text("plate"));
  if (!vehicle.next()) throw notFound("the user has no such vehicle");
  JsonWriter json;
  writeVehicle(json, call.database, vehicle, expansions);
  return jsonReply(json.take());
}

}  // namespace

void addVehicles(Router& router) {
  router.add({.method = "GET",
              .path = "users/{user}/vehicles/",
              .handle = listVehicles,
              .query = {"expand", "plate"}});
  router.add({.method = "GET",
              .path = "users/{user}/vehicles/{vehicle}",
              .handle = readVehicle,
              .query = {"expand", "plate"}});
}

}  // namespace orvane::sandbox
