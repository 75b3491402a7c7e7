// SPDX-License-Identifier: Apache-2.0
#include "resources/VehicleRecord.h"

#include "resources/People.h"

namespace orvane::sandbox {

namespace {

void writeUsersByRole(JsonWriter& json, DatabaseConnection& database, std::string_view vehicleId) {
  json.key("usersByRole").beginObject();
  for (const char* role : {"OPERATOR", "OWNER"}) {
    json.key(role).beginArray();
    Rows users = database.query("SELECT " + userColumns +
                                    " FROM users JOIN vehicle_users USING (user_id)"
                                    " WHERE vehicle_id = ? AND role = ? ORDER BY user_id",
                                vehicleId, role);
    while (users.next()) {
      json.beginObject();
      writeUserMembers(json, users);
      json.endObject();
    }
    json.endArray();
  }
  json.endObject();
}

}  // namespace

const std::string vehicleColumns =
    "vehicle_id, make, model, nick_name, year, vin, plate, time_zone_name, time_zone_offset,"
    " enrollment_ms, background_image_enabled, require_odometer_snapshot, health, devices";

void writeVehicle(JsonWriter& json, DatabaseConnection& database, const Rows& vehicle,
                  const std::set<std::string>& expansions) {
  json.beginObject()
      .member("vehicleId", vehicle.text(0))
      .member("make", vehicle.text(1))
      .member("model", vehicle.text(2))
      .member("nickName", vehicle.optionalText(3))
      .member("year", vehicle.integer(4))
      .member("vin", vehicle.text(5))
      .member("plate", vehicle.text(6))
      .member("timeZoneName", vehicle.text(7))
      .member("timeZoneOffset", vehicle.text(8))
      .member("enrollmentDate", vehicle.integer(9))
      .member("backgroundImageEnabled", vehicle.boolean(10))
      .member("requireOdometerSnapshot", vehicle.boolean(11));
  if (expansions.contains("usersByRole")) writeUsersByRole(json, database, vehicle.text(0));
  if (expansions.contains("health")) json.rawMember("health", vehicle.text(12));
  if (expansions.contains("devices")) json.rawMember("devices", vehicle.text(13));
  json.endObject();
}

bool writeVehicle(JsonWriter& json, DatabaseConnection& database, std::string_view vehicleId,
                  const std::set<std::string>& expansions) {
  Rows vehicle =
      database.query("SELECT " + vehicleColumns + " FROM vehicles WHERE vehicle_id = ?", vehicleId);
  if (!vehicle.next()) return false;
  writeVehicle(json, database, vehicle, expansions);
  return true;
}

std::string vehicleRole(DatabaseConnection& database, std::string_view vehicleId,
                        std::string_view userId) {
  Rows link = database.query("SELECT role FROM vehicle_users WHERE vehicle_id = ? AND user_id = ?",
                             vehicleId, userId);
  return link.next() ? std::string{link.text(0)} : std::string{};
}

void requireVehicle(Call& call, std::string_view vehicleId) {
  if (!vehicleRole(call.database, vehicleId, call.callerId).empty()) return;
  if (!call.database.query("SELECT 1 FROM vehicles WHERE vehicle_id = ?", vehicleId).next()) {
    throw notFound("there is no such vehicle");
  }
  throw forbidden("this vehicle is not the caller's to see");
}

}  // namespace orvane::sandbox
