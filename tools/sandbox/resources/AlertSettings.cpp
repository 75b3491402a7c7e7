// SPDX-License-Identifier: Apache-2.0
//
// "users/{id}/settings": which driving behaviour raises an alert. One setting arrives at a time.
#include "resources/AlertSettings.h"

#include "resources/People.h"
#include "resources/Resources.h"

#include <nlohmann/json.hpp>

namespace orvane::sandbox {

namespace {

constexpr const char* acceleration = "eventAlertAcceleration";
constexpr const char* braking = "eventAlertBraking";
constexpr const char* speeding = "thresholdAlertSpeeding";
constexpr const char* lateNight = "enableLateNightDrivingAlert";
constexpr const char* nightStart = "lateNightDrivingAlertStart";
constexpr const char* nightEnd = "lateNightDrivingAlertEnd";

/// Hours without a leading zero and two digits of minutes, as in 605 and 2230.
bool isTimeOfDay(std::string_view text) {
  const auto number = parseInteger(text);
  return number && *number >= 0 && text.size() >= 3 && text.size() <= 4 && *number / 100 < 24 &&
         *number % 100 < 60;
}

/// A speed in km/h.
bool isThreshold(std::string_view text) {
  const auto number = nlohmann::json::parse(text, nullptr, false);
  return number.is_number() && number.get<double>() >= 0;
}

using Values = std::vector<std::pair<const char*, std::string>>;

Values valuesOf(const Query& query) {
  Values values;
  for (const char* name : {acceleration, braking}) {
    if (const auto severity = query.integer(name, 0, 3)) {
      values.emplace_back(name, std::to_string(*severity));
    }
  }
  if (const auto threshold = query.text(speeding)) {
    if (!isThreshold(*threshold)) throw badRequest("the speeding threshold is not a number");
    values.emplace_back(speeding, *threshold);
  }
  if (const auto enabled = query.boolean(lateNight)) {
    values.emplace_back(lateNight, *enabled ? "true" : "false");
  }
  if (values.size() != 1) throw badRequest("exactly one alert must be set");

  const auto start = query.text(nightStart);
  const auto end = query.text(nightEnd);
  if (!start && !end) return values;
  if (!start || !end || values.front().first != std::string_view{lateNight} ||
      !isTimeOfDay(*start) || !isTimeOfDay(*end)) {
    throw badRequest("the night's start and end are not a pair of times");
  }
  values.emplace_back(nightStart, *start);
  values.emplace_back(nightEnd, *end);
  return values;
}

Reply writeSettings(Call& call, const std::string& userId) {
  JsonWriter json;
  json.beginObject().member("targetId", userId).member("targetType", "USER");
  Rows settings = call.database.query(
      "SELECT name, value FROM alert_settings WHERE user_id = ? ORDER BY name", userId);
  while (settings.next()) json.member(settings.text(0), settings.text(1));
  return jsonReply(json.endObject().take());
}

Reply readSettings(Call& call) { return writeSettings(call, readableUser(call, call.capture(0))); }

/// A driver's own setting, or one made on behalf of a driver of the same account.
Reply changeSetting(Call& call) {
  ownUser(call, call.capture(0));
  const std::string target = call.query.requiredText("targetId");
  if (call.query.requiredText("targetType") != "USER") {
    throw badRequest("\"targetType\" is not USER");
  }
  readableUser(call, target);
  const Values values = valuesOf(call.query);
  Transaction transaction{call.database};
  for (const auto& [name, value] : values) {
    call.database.execute("INSERT OR REPLACE INTO alert_settings VALUES (?, ?, ?)", target, name,
                          value);
  }
  transaction.commit();
  return jsonReply("");
}

/// Which setting watches over an event type; null for none.
const char* settingFor(std::string_view eventType) {
  if (eventType == "MultiLevelAccelerationViolation") return acceleration;
  if (eventType == "MultiLevelBrakingViolation") return braking;
  if (eventType == "MultiLevelSpeedViolation") return speeding;
  return nullptr;
}

bool raisesAlert(std::string_view setting, std::string_view value, const nlohmann::json& event) {
  if (setting == speeding) {
    return event.value("averageKmPerHour", 0.0) > nlohmann::json::parse(value).get<double>();
  }
  const std::int64_t severity = parseInteger(value).value_or(0);  // low, medium, high: 1, 2, 3
  return severity > 0 && event.value("level", 0) > severity;
}

}  // namespace

void writeAlerts(JsonWriter& json, DatabaseConnection& database, std::string_view userId,
                 std::string_view events) {
  json.beginArray();
  const auto parsed = nlohmann::json::parse(events);
  Rows settings =
      database.query("SELECT name, value FROM alert_settings WHERE user_id = ?", userId);
  while (settings.next()) {
    for (const auto& [type, list] : parsed.items()) {
      const char* watching = settingFor(type);
      if (watching == nullptr || settings.text(0) != watching) continue;
      for (const auto& event : list) {
        if (!raisesAlert(watching, settings.text(1), event)) continue;
        json.beginObject()
            .member("type", watching)
            .member("timeStamp", event["timeStamp"].get<std::int64_t>())
            .member("latitude", event["latitude"].get<double>())
            .member("longitude", event["longitude"].get<double>())
            .endObject();
      }
    }
  }
  json.endArray();
}

void addAlertSettings(Router& router) {
  router.add({.method = "GET", .path = "users/{user}/settings", .handle = readSettings});
  router.add({.method = "POST",
              .path = "users/{user}/settings",
              .handle = changeSetting,
              .query = {"targetId", "targetType", acceleration, braking, speeding, lateNight,
                        nightStart, nightEnd}});
}

}  // namespace orvane::sandbox
