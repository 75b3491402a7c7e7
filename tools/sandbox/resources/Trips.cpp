// SPDX-License-Identifier: Apache-2.0
//
// Trips: one by its id, a user's, the logbook, a vehicle's, and the correction of mode and purpose.
#include "resources/AlertSettings.h"
#include "resources/People.h"
#include "resources/Resources.h"
#include "resources/ScoreTotals.h"
#include "resources/VehicleRecord.h"

#include <array>

namespace orvane::sandbox {

namespace {

constexpr std::int64_t noLimit = -1;
constexpr std::int64_t most = 1'000'000'000;

const std::string columns =
    "trips.trip_id, trips.user_id, vehicle_id, start_ms, end_ms, processed_ms,"
    " time_zone_offset_ms, kilometers, average_kmh, maximum_kmh, seconds, status,"
    " trips.transport_mode, purpose, overall, acceleration, braking, cornering, speeding,"
    " over_speeding, distraction, usage,"
    " (SELECT scoring_type FROM users WHERE users.user_id = trips.user_id)";
constexpr int columnCount = 23;
const std::string detailColumns = ", geometry, reconstructed_start_geometry, events, pois";

struct Component {
  const char* name;
  int column;
};

// The two scoring algorithms call distraction by different names.
constexpr std::array<Component, 6> imsComponents{{{"harsh.acceleration", 15},
                                                  {"harsh.braking", 16},
                                                  {"harsh.cornering", 17},
                                                  {"speeding", 18},
                                                  {"over.speeding", 19},
                                                  {"distracted.driving", 20}}};

double mean(std::initializer_list<double> values) {
  double sum = 0;
  for (const double value : values) sum += value;
  return sum / static_cast<double>(values.size());
}

std::vector<std::pair<const char*, double>> componentsOf(const Rows& trip) {
  std::vector<std::pair<const char*, double>> components;
  if (trip.text(22) == "WTW") {
    components = {{"abc_subscore", mean({trip.real(15), trip.real(16), trip.real(17)})},
                  {"speed_subscore", mean({trip.real(18), trip.real(19)})},
                  {"usage_subscore", trip.real(21)},
                  {"distracted_driving", trip.real(20)}};
  } else {
    for (const auto& [name, column] : imsComponents) {
      components.emplace_back(name, trip.real(column));
    }
  }
  return components;
}

void writeScores(JsonWriter& json, const Rows& trip) {
  if (trip.isNull(14) || trip.text(12) != "DRIVER") return;
  const auto components = componentsOf(trip);
  json.member("tripScore", trip.real(14))
      .key("tripScores")
      .beginObject()
      .key("scores")
      .beginObject();
  json.member("overall", trip.real(14));
  for (const auto& [name, score] : components) json.member(name, score);
  json.key("mileage").null().endObject().endObject();

  json.key("scoring")
      .beginObject()
      .member("scoreAlgorithmProvider", trip.text(22))
      .member("scoreUnit", "POINTS")
      .member("overallScore", trip.real(14))
      .key("individualComponentScores")
      .beginArray();
  for (const auto& [name, score] : components) {
    json.beginObject().member("component", name).member("componentScore", score).endObject();
  }
  json.endArray().endObject();
}

/// What to embed, whatever the request calls it.
struct Embedded {
  bool events = false;
  bool scores = false;
  bool geometry = false;
  bool user = false;
  bool pois = false;
  bool vehicle = false;
  bool alerts = false;

  [[nodiscard]] bool needsDetails() const { return events || geometry || pois || alerts; }
};

Embedded embeddedIn(const Call& call) {
  const auto expansions = call.query.expansions(
      {"events", "scores", "geometry", "user", "pois", "points", "vehicles", "alerts"});
  return {.events = expansions.contains("events"),
          .scores = expansions.contains("scores"),
          .geometry = expansions.contains("geometry") || expansions.contains("points"),
          .user = expansions.contains("user"),
          .pois = expansions.contains("pois"),
          .vehicle = expansions.contains("vehicles"),
          .alerts = expansions.contains("alerts")};
}

std::string selection(const Embedded& embedded) {
  return "SELECT " + columns +
         (embedded.needsDetails() ? detailColumns + " FROM trips JOIN trip_details USING (trip_id)"
                                  : std::string{" FROM trips"});
}

void writeUserMember(JsonWriter& json, DatabaseConnection& database, std::string_view userId) {
  Rows user = database.query("SELECT " + userColumns + " FROM users WHERE user_id = ?", userId);
  if (!user.next()) return;
  json.key("user").beginObject();
  writeUserMembers(json, user);
  json.endObject();
}

void writeTrip(JsonWriter& json, Call& call, const Rows& trip, const Embedded& embedded) {
  json.beginObject()
      .member("tripId", trip.text(0))
      .member("tripStartTimestampUtc", trip.integer(3))
      .member("tripEndTimestampUtc", trip.optionalInteger(4))
      .member("tripProcessingEndTimestampUtc", trip.optionalInteger(5))
      .member("kilometers", trip.real(7))
      .member("avgKilometersPerHour", trip.real(8))
      .member("maxKilometersPerHour", trip.real(9))
      .member("seconds", trip.real(10))
      .member("timeZoneOffsetMillis", trip.integer(6))
      .member("tripStatus", trip.text(11))
      .member("transportMode", trip.text(12))
      .member("purpose", trip.text(13))
      .member("vehicleId", trip.optionalText(2));
  if (embedded.scores) writeScores(json, trip);
  if (embedded.geometry) {
    json.member("geometry", trip.text(columnCount))
        .member("reconstructedStartGeometry", trip.optionalText(columnCount + 1));
  }
  if (embedded.events) json.rawMember("events", trip.text(columnCount + 2));
  if (embedded.pois) json.rawMember("pois", trip.text(columnCount + 3));
  if (embedded.user) writeUserMember(json, call.database, trip.text(1));
  if (embedded.vehicle && !trip.isNull(2)) {
    json.key("vehicle");
    writeVehicle(json, call.database, trip.text(2), {});
  }
  if (embedded.alerts) {
    json.key("alerts");
    writeAlerts(json, call.database, trip.text(1), trip.text(columnCount + 2));
  }
  json.endObject();
}

Reply readTripById(Call& call, const std::string& tripId, const Embedded& embedded) {
  Rows trip = call.database.query(selection(embedded) + " WHERE trips.trip_id = ?", tripId);
  if (!trip.next()) throw notFound("there is no such trip");
  readableUser(call, std::string{trip.text(1)});
  JsonWriter json;
  writeTrip(json, call, trip, embedded);
  return jsonReply(json.take());
}

Reply readTrip(Call& call) { return readTripById(call, call.capture(0), embeddedIn(call)); }

Reply correctTrip(Call& call) {
  const auto mode = call.query.oneOf(
      "transportMode", {"", "DRIVER", "CAR_PASSENGER", "TRAIN", "BUS", "AIRPLANE", "TAXI",
                        "MOTORCYCLE", "BOAT", "WALK", "BICYCLE", "PUBLIC_TRANSPORTATION", "OTHER"});
  const auto purpose = call.query.oneOf("purpose", {"UNKNOWN", "PERSONAL", "BUSINESS"});
  if (!mode && !purpose) throw badRequest("neither \"transportMode\" nor \"purpose\" is given");
  const std::string& tripId = call.capture(0);
  {
    Rows trip = call.database.query("SELECT user_id FROM trips WHERE trip_id = ?", tripId);
    if (!trip.next()) throw notFound("there is no such trip");
    ownUser(call, std::string{trip.text(0)});
  }
  call.database.execute(
      "UPDATE trips SET transport_mode = coalesce(?2, transport_mode),"
      " purpose = coalesce(?3, purpose) WHERE trip_id = ?1",
      tripId, mode, purpose);
  return readTripById(call, tripId, {});
}

struct Bounds {
  std::string firstDay;
  std::string lastDay;
  std::int64_t limit = noLimit;
  std::int64_t offset = 0;
};

Bounds boundsOf(const Call& call) {
  const Period period = call.query.period();
  return {firstDayOf(period), lastDayOf(period),
          call.query.integer("limit", 1, most).value_or(noLimit),
          call.query.integer("offset", 0, most).value_or(0)};
}

constexpr const char* ofUser =
    " WHERE trips.user_id = ? AND day BETWEEN ? AND ? ORDER BY start_ms DESC LIMIT ? OFFSET ?";

Reply listTrips(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  const Embedded embedded = embeddedIn(call);
  const Bounds bounds = boundsOf(call);
  JsonWriter json;
  json.beginArray();
  Rows trips = call.database.query(selection(embedded) + ofUser, userId, bounds.firstDay,
                                   bounds.lastDay, bounds.limit, bounds.offset);
  while (trips.next()) writeTrip(json, call, trips, embedded);
  return jsonReply(json.endArray().take());
}

bool hasTrips(Call& call, const std::string& userId) {
  return call.database.query("SELECT 1 FROM trips WHERE user_id = ? LIMIT 1", userId).next();
}

Reply readLogbook(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  const Embedded embedded = embeddedIn(call);
  const Bounds bounds = boundsOf(call);
  // Whoever has never made a trip has no logbook, and the answer nothing in it.
  if (!hasTrips(call, userId)) return jsonReply("");
  JsonWriter json;
  json.beginObject().key("items").beginArray();
  Rows trips = call.database.query(selection(embedded) + ofUser, userId, bounds.firstDay,
                                   bounds.lastDay, bounds.limit, bounds.offset);
  while (trips.next()) {
    json.beginObject().key("trip");
    writeTrip(json, call, trips, embedded);
    json.endObject();
  }
  return jsonReply(json.endArray().endObject().take());
}

Reply listVehicleTrips(Call& call) {
  const std::string& vehicleId = call.capture(0);
  requireVehicle(call, vehicleId);
  const Embedded embedded = embeddedIn(call);
  const Bounds bounds = boundsOf(call);
  const std::string role = call.query.oneOf("role", {"", "OWNER", "OPERATOR"}).value_or("");
  const std::string user = call.query.text("user").value_or("");
  JsonWriter json;
  json.beginArray();
  Rows trips = call.database.query(
      selection(embedded) +
          " WHERE vehicle_id = ?1 AND day BETWEEN ?2 AND ?3 AND (?6 = '' OR trips.user_id = ?6)"
          " AND (?7 = '' OR EXISTS (SELECT 1 FROM vehicle_users AS link WHERE link.vehicle_id = ?1"
          " AND link.user_id = trips.user_id AND link.role = ?7))"
          " ORDER BY start_ms DESC LIMIT ?4 OFFSET ?5",
      vehicleId, bounds.firstDay, bounds.lastDay, bounds.limit, bounds.offset, user, role);
  while (trips.next()) writeTrip(json, call, trips, embedded);
  return jsonReply(json.endArray().take());
}

}  // namespace

void addTrips(Router& router) {
  router.add({.method = "GET", .path = "trips/{trip}", .handle = readTrip, .query = {"expand"}});
  router.add({.method = "POST",
              .path = "trips/{trip}",
              .handle = correctTrip,
              .query = {"transportMode", "purpose"}});
  router.add({.method = "GET",
              .path = "users/{user}/trips",
              .handle = listTrips,
              .query = {"expand", "limit", "offset", "startDate", "endDate"}});
  router.add({.method = "GET",
              .path = "users/{user}/logbook/trips",
              .handle = readLogbook,
              .query = {"expand", "limit", "offset", "startDate", "endDate"}});
  router.add({.method = "GET",
              .path = "vehicles/{vehicle}/trips",
              .handle = listVehicleTrips,
              .query = {"expand", "limit", "offset", "startDate", "endDate", "role", "user"}});
}

}  // namespace orvane::sandbox
