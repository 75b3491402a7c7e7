// SPDX-License-Identifier: Apache-2.0
//
// "users/{id}/devices": which phone collects driving data and which push token reaches it.
#include "JsonWriter.h"
#include "resources/DeviceRecord.h"
#include "resources/People.h"
#include "resources/Resources.h"

namespace orvane::sandbox {

namespace {

constexpr std::size_t longestIdentifier = 200;
constexpr std::int64_t mostApps = 1'000'000;

const std::string columns =
    "SELECT identifier, device_type, enrollment_device_id, serial_number, push_token, active"
    " FROM devices WHERE user_id = ?";

void writeDevice(JsonWriter& json, const Rows& device) {
  json.beginObject()
      .member("identifier", device.text(0))
      .member("deviceType", device.text(1))
      .member("enrollmentDeviceId", device.text(2))
      .member("serialNumber", device.optionalText(3))
      .member("pushNotificationToken", device.optionalText(4))
      .member("enablePushNotifications", !device.isNull(4))
      .member("activeForDataCollection", device.boolean(5))
      .endObject();
}

/// Adds the device unless the user has it.
void addDevice(DatabaseConnection& database, const std::string& userId,
               const std::string& identifier) {
  database.execute(
      "INSERT OR IGNORE INTO devices (user_id, identifier, device_type, enrollment_device_id,"
      " active) SELECT ?1, ?2, 'MOBILE', ?1 || '-' || count(*), 0 FROM devices WHERE user_id = ?1",
      userId, identifier);
}

Reply listDevices(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  JsonWriter json;
  json.beginArray();
  Rows devices = call.database.query(columns + " ORDER BY enrollment_device_id", userId);
  while (devices.next()) writeDevice(json, devices);
  return jsonReply(json.endArray().take());
}

Reply readDevice(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  Rows device = call.database.query(columns + " AND identifier = ?", userId, call.capture(1));
  if (!device.next()) throw notFound("the user has no such device");
  JsonWriter json;
  writeDevice(json, device);
  return jsonReply(json.take());
}

/// An empty token ends push notifications.
void setToken(Call& call, const std::string& userId, const std::string& identifier) {
  const auto appId = call.query.integer("appId", 0, mostApps);
  if (!appId) throw badRequest("\"appId\" is missing");
  const std::string token = call.query.text("deviceToken").value_or("");
  addDevice(call.database, userId, identifier);
  call.database.execute(
      "UPDATE devices SET push_token = nullif(?, ''), app_id = ?"
      " WHERE user_id = ? AND identifier = ?",
      token, *appId, userId, identifier);
}

Reply changeDevice(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  const std::string& identifier = call.capture(1);
  if (identifier.size() > longestIdentifier) throw badRequest("the identifier is too long");
  const auto action = call.query.oneOf("action", {"activateLimitOne", "deactivate"});
  const bool hasToken = call.query.text("deviceToken").has_value();
  if (action.has_value() == hasToken || (action && call.query.text("appId"))) {
    throw badRequest("either \"action\" or \"deviceToken\" with \"appId\" must be given");
  }
  Transaction transaction{call.database};
  if (hasToken) {
    setToken(call, userId, identifier);
  } else if (*action == "activateLimitOne") {
    activateDevice(call.database, userId, identifier);
  } else {
    call.database.execute("UPDATE devices SET active = 0 WHERE user_id = ? AND identifier = ?",
                          userId, identifier);
  }
  transaction.commit();
  return readDevice(call);
}

}  // namespace

void activateDevice(DatabaseConnection& database, const std::string& userId,
                    const std::string& identifier) {
  addDevice(database, userId, identifier);
  database.execute("UPDATE devices SET active = identifier = ? WHERE user_id = ?", identifier,
                   userId);
}

void addDevices(Router& router) {
  router.add({.method = "GET", .path = "users/{user}/devices", .handle = listDevices});
  router.add({.method = "GET", .path = "users/{user}/devices/{device}", .handle = readDevice});
  router.add({.method = "POST",
              .path = "users/{user}/devices/{device}",
              .handle = changeDevice,
              .query = {"action", "deviceToken", "appId"}});
}

}  // namespace orvane::sandbox
