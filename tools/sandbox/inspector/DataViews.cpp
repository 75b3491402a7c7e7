// SPDX-License-Identifier: Apache-2.0
//
// Who lives in the sandbox, their trips, and the roads they drive on.
#include "data/People.h"
#include "data/Roads.h"
#include "data/Trips.h"
#include "inspector/Views.h"
#include "resources/ScoreTotals.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane::sandbox {

namespace {

std::string optionalTime(const std::optional<std::int64_t>& time) {
  return time ? "\"" + formatTime(*time) + "\"" : "null";
}

void writeVehicles(JsonWriter& json, DatabaseConnection& database, std::string_view userId) {
  json.key("vehicles").beginArray();
  Rows rows = database.query(
      "SELECT vehicle_id, coalesce(nick_name, make || ' ' || model) FROM vehicle_users"
      " JOIN vehicles USING (vehicle_id) WHERE user_id = ? ORDER BY vehicle_id",
      userId);
  while (rows.next()) {
    json.beginObject().member("id", rows.text(0)).member("name", rows.text(1)).endObject();
  }
  json.endArray();
}

/// The program's lines that sign in as this person.
std::string programLines(const Address& address, const std::string& token) {
  const auto text = [](const std::string& value) { return nlohmann::json(value).dump(); };
  std::string lines =
      "const auto runtime = orvane::Runtime::install(\n    {.baseURL = " + text(address.baseUrl) +
      ",\n     .tokens = " + text(token);
  if (!address.certificateAuthority.empty()) {
    lines += ",\n     .transport = {.caFile = " + text(address.certificateAuthority.string()) + "}";
  }
  return lines + "});\nconst orvane::Identity identity{.apiKey = " + text(sampleApiKey) + "};\n";
}

void writeWaysIn(JsonWriter& json, const Backend& backend, const std::string& userId) {
  const Address address = backend.address();
  const std::string token = developmentTokenOf(userId);
  json.member("token", token).key("export").beginArray();
  for (const auto& [name, value] : clientSettings(address, token)) {
    json.value("export " + name + "=" + shellWord(value));
  }
  json.endArray()
      .member("cpp", programLines(address, token))
      .member("command", clientCommand() + " trips list --limit 3");
}

void writePerson(JsonWriter& json, const Backend& backend, DatabaseConnection& database,
                 const Rows& row) {
  const std::string userId{row.text(0)};
  const auto person = std::ranges::find_if(
      people(), [&](const Person& each) { return std::string_view{each.userId} == userId; });
  json.beginObject()
      .member("userId", userId)
      .member("name", row.text(1))
      .member("externalReferenceId", row.text(2))
      .member("accountId", row.text(3))
      .member("note", person != people().end() ? person->note : "")
      .member("trips", row.integer(4))
      .member("invitations", row.integer(5));
  writeVehicles(json, database, userId);
  writeWaysIn(json, backend, userId);
  json.endObject();
}

const char* const tripColumns =
    "SELECT trip_id, user_id, start_ms, end_ms, kilometers, transport_mode, purpose, status,"
    " CASE WHEN transport_mode = 'DRIVER' THEN overall END, day, ";

void writeTripMembers(JsonWriter& json, const Rows& trip) {
  json.member("id", trip.text(0))
      .member("user", trip.text(1))
      .member("start", formatTime(trip.integer(2)))
      .rawMember("end", optionalTime(trip.optionalInteger(3)))
      .member("distance", std::round(trip.real(4) * 1000))
      .member("mode", trip.text(5))
      .member("purpose", trip.text(6))
      .member("status", trip.text(7))
      .member("day", trip.text(9))
      .key("score");
  trip.isNull(8) ? json.null() : json.value(trip.real(8));
}

void writeDays(JsonWriter& json, DatabaseConnection& database, const std::string& userId) {
  Rows days = database.query("SELECT min(day), max(day) FROM trips WHERE user_id = ?", userId);
  json.key("days").beginObject();
  const bool some = days.next() && !days.isNull(0);
  for (const int column : {0, 1}) {
    json.key(column == 0 ? "first" : "last");
    some ? json.value(days.text(column)) : json.null();
  }
  json.endObject();
}

void writeDayScores(JsonWriter& json, DatabaseConnection& database, const std::string& userId,
                    const Period& period) {
  json.key("scores").beginArray();
  for (const auto& [day, totals] :
       dailyTotalsOf(database, {ScoreSubject::Kind::user, userId}, period)) {
    json.beginObject()
        .member("day", formatDay(day))
        .member("score", totals.average(ScoreKind::overall))
        .endObject();
  }
  json.endArray();
}

/// The line, of which the first stretch may stand apart: its last point is then the next one's
/// first.
std::vector<Position> routeOf(std::string_view geometry, std::string_view start) {
  std::vector<Position> line = decodePolyline(start);
  if (!line.empty()) line.pop_back();
  const std::vector<Position> rest = decodePolyline(geometry);
  line.insert(line.end(), rest.begin(), rest.end());
  return line;
}

void writeRoute(JsonWriter& json, const Rows& trip) {
  const std::vector<Position> line = routeOf(trip.text(10), trip.text(11));
  const std::vector<Position> profile = decodePolyline(trip.text(13));
  json.key("route").beginArray();
  for (std::size_t i = 0; i < std::min(line.size(), profile.size()); ++i) {
    json.beginArray()
        .value(line[i].latitude)
        .value(line[i].longitude)
        .value(roundedTo(profile[i].latitude / profileScale, 1))
        .value(roundedTo(profile[i].longitude / profileScale, 1))
        .endArray();
  }
  json.endArray();
}

void writeEvents(JsonWriter& json, const Rows& trip) {
  const Milliseconds start = trip.integer(2);
  const auto events = nlohmann::json::parse(trip.text(12));
  json.key("events").beginArray();
  for (const auto& [type, list] : events.items()) {
    for (const auto& event : list) {
      const auto time = event.at("timeStamp").get<Milliseconds>();
      json.beginObject().member("type", type).key("severity");
      event.contains("level") ? json.value(event["level"].get<int>()) : json.null();
      json.member("lat", event.at("latitude").get<double>())
          .member("lon", event.at("longitude").get<double>())
          .member("time", formatTime(time))
          .member("seconds", static_cast<double>(time - start) / millisPerSecond)
          .key("value");
      const char* speed = event.contains("averageKmPerHour") ? "averageKmPerHour" : "kmPerHour";
      event.contains(speed) ? json.value(event[speed].get<double>()) : json.null();
      json.member("unit", event.contains(speed) ? "km/h" : "").endObject();
    }
  }
  json.endArray();
}

void writeTripScores(JsonWriter& json, const Rows& trip) {
  constexpr int first = 14;
  constexpr std::array<const char*, scoreKinds> names{"overall",     "acceleration", "braking",
                                                      "cornering",   "speeding",     "overSpeeding",
                                                      "distraction", "usage"};
  json.key("scores").beginArray();
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto score = trip.optionalReal(first + static_cast<int>(i));
    if (score && !trip.isNull(8)) {
      json.beginObject().member("name", names[i]).member("value", *score).endObject();
    }
  }
  json.endArray();
}

void writeRoads(JsonWriter& json, const RoadMap& map) {
  constexpr double motorway = 80;  // km/h and more
  constexpr double main = 50;
  for (const auto& [speedLimit, points] : map.lines()) {
    const char* kind = speedLimit >= motorway ? "motorway" : speedLimit >= main ? "main" : "street";
    json.beginObject().member("kind", kind).key("points").beginArray();
    for (const Position& point : points) {
      json.beginArray()
          .value(roundedTo(point.latitude, 6))
          .value(roundedTo(point.longitude, 6))
          .endArray();
    }
    json.endArray().endObject();
  }
}

}  // namespace

std::string peopleAsJson(Backend& backend) {
  const auto database = backend.database().lease();
  JsonWriter json;
  json.beginObject().key("people").beginArray();
  Rows rows = database->query(
      "SELECT user_id, trim(coalesce(first_name, '') || ' ' || coalesce(last_name, '')),"
      " external_reference_id, account_id,"
      " (SELECT count(*) FROM trips WHERE trips.user_id = users.user_id),"
      " (SELECT count(*) FROM invitations WHERE users.user_id IN (from_user_id, to_user_id))"
      " FROM users ORDER BY user_id");
  while (rows.next()) writePerson(json, backend, *database, rows);
  return json.endArray().endObject().take();
}

std::string tripsAsJson(Backend& backend, const std::string& userId, const Period& period) {
  const auto database = backend.database().lease();
  if (!database->query("SELECT 1 FROM users WHERE user_id = ?", userId).next()) {
    throw notFound("there is no such person");
  }
  JsonWriter json;
  json.beginObject().key("trips").beginArray();
  {
    Rows trips = database->query(
        tripColumns +
            std::string{
                " json_extract(pois, '$[0].name'), json_extract(pois, '$[1].name'),"
                " (SELECT coalesce(sum(json_array_length(value)), 0) FROM json_each(events))"
                " FROM trips JOIN trip_details USING (trip_id)"
                " WHERE user_id = ? AND day BETWEEN ? AND ? ORDER BY start_ms DESC"},
        userId, firstDayOf(period), lastDayOf(period));
    while (trips.next()) {
      json.beginObject();
      writeTripMembers(json, trips);
      json.member("startAddress", trips.text(10))
          .member("endAddress", trips.text(11))
          .member("events", trips.integer(12))
          .endObject();
    }
  }
  json.endArray();
  writeDays(json, *database, userId);
  writeDayScores(json, *database, userId, period);
  return json.endObject().take();
}

std::string tripAsJson(Backend& backend, const std::string& tripId) {
  const auto database = backend.database().lease();
  Rows trip = database->query(
      tripColumns +
          std::string{" geometry, reconstructed_start_geometry, events, profile, overall,"
                      " acceleration, braking, cornering, speeding, over_speeding, distraction,"
                      " usage FROM trips JOIN trip_details USING (trip_id) WHERE trip_id = ?"},
      tripId);
  if (!trip.next()) throw notFound("there is no such trip");
  JsonWriter json;
  json.beginObject();
  writeTripMembers(json, trip);
  writeRoute(json, trip);
  writeEvents(json, trip);
  writeTripScores(json, trip);
  return json.endObject().take();
}

const std::string& roadsAsJson() {
  static const std::string text = [] {
    JsonWriter json;
    json.beginObject().key("roads").beginArray();
    writeRoads(json, RoadMap::basel());
    writeRoads(json, RoadMap::mumbai());
    return json.endArray().endObject().take();
  }();
  return text;
}

}  // namespace orvane::sandbox
