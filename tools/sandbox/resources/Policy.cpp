// SPDX-License-Identifier: Apache-2.0
//
// The insurance side: "users/{id}/subscriptions" and "namedDrivers".
#include "JsonWriter.h"
#include "resources/People.h"
#include "resources/Resources.h"

namespace orvane::sandbox {

namespace {

Reply listSubscriptions(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  JsonWriter json;
  json.beginArray();
  Rows subscriptions = call.database.query(
      "SELECT enrollment_id, type, start_ms, length_ms, trial_ms FROM subscriptions"
      " WHERE user_id = ? ORDER BY enrollment_id",
      userId);
  while (subscriptions.next()) {
    const std::int64_t start = subscriptions.integer(2);
    json.beginObject()
        .member("startTimestamp", start)
        .member("endTimestamp", start + subscriptions.integer(3))
        .member("telematicSubscriptionEnrollmentId", subscriptions.integer(0))
        .member("telematicSubscriptionType", subscriptions.text(1))
        .member("subscriptionLengthMillis", subscriptions.integer(3));
    if (const auto trial = subscriptions.optionalInteger(4)) {
      json.member("trialLengthMillis", *trial).member("trialEndTimestamp", start + *trial);
    }
    json.endObject();
  }
  return jsonReply(json.endArray().take());
}

const std::string driverColumns =
    "SELECT user_id, user_profile_id, first_name, last_name, email, phone, activated, activated_ms"
    " FROM named_drivers WHERE policy_holder_id = ?";

/// Unlike everywhere else, the user id is a number here.
void writeNamedDriver(JsonWriter& json, const Rows& driver) {
  json.beginObject()
      .member("userId", driver.integer(0))
      .member("userProfileId", driver.text(1))
      .member("firstName", driver.text(2))
      .member("lastName", driver.text(3))
      .member("email", driver.optionalText(4))
      .member("phone", driver.optionalText(5))
      .member("activated", driver.boolean(6))
      .member("activatedDate", driver.optionalInteger(7))
      .endObject();
}

Reply listNamedDrivers(Call& call) {
  JsonWriter json;
  json.beginArray();
  Rows drivers = call.database.query(driverColumns + " ORDER BY user_id", call.callerId);
  while (drivers.next()) writeNamedDriver(json, drivers);
  return jsonReply(json.endArray().take());
}

Reply updateNamedDriver(Call& call) {
  const auto userId = parseInteger(call.capture(0));
  if (!userId) throw badRequest("the named driver's id is not a number");
  const auto email = call.query.text("namedDriverEmail");
  const auto phone = call.query.text("namedDriverPhone");
  if (!email || !phone) {
    throw badRequest("\"namedDriverEmail\" or \"namedDriverPhone\" is missing");
  }
  if (!email->empty() && email->find('@') == std::string::npos) {
    throw badRequest("\"namedDriverEmail\" is no e-mail address");
  }
  if (call.database.execute("UPDATE named_drivers SET email = nullif(?, ''),"
                            " phone = nullif(?, '') WHERE policy_holder_id = ? AND user_id = ?",
                            *email, *phone, call.callerId, *userId) == 0) {
    throw notFound("the caller's policy names no such driver");
  }
  Rows driver = call.database.query(driverColumns + " AND user_id = ?", call.callerId, *userId);
  JsonWriter json;
  if (driver.next()) writeNamedDriver(json, driver);
  return jsonReply(json.take());
}

}  // namespace

void addPolicy(Router& router) {
  router.add({.method = "GET", .path = "users/{user}/subscriptions", .handle = listSubscriptions});
  router.add({.method = "GET", .path = "namedDrivers", .handle = listNamedDrivers});
  router.add({.method = "PUT",
              .path = "namedDrivers/{driver}",
              .handle = updateNamedDriver,
              .query = {"namedDriverEmail", "namedDriverPhone"}});
}

}  // namespace orvane::sandbox
