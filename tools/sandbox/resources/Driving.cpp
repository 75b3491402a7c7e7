// SPDX-License-Identifier: Apache-2.0
//
// What a user's trips add up to: the driving summary, statistics per period, the last position.
#include "Backend.h"
#include "JsonWriter.h"
#include "resources/DiscountScheme.h"
#include "resources/People.h"
#include "resources/Resources.h"
#include "resources/ScoreTotals.h"

#include <algorithm>
#include <cmath>

namespace orvane::sandbox {

namespace {

constexpr std::int64_t tripsToTrain = 40;
constexpr double declaredMileage = 12'000;
constexpr std::size_t mostPeriods = 800;

std::int64_t numberOf(const std::string& userId) { return parseInteger(userId).value_or(0); }

Period withDefaults(Call& call, const std::string& userId) {
  Period period = call.query.period();
  if (!period.first) {
    Rows row = call.database.query("SELECT min(day) FROM trips WHERE user_id = ?", userId);
    period.first = row.next() ? parseDay(row.text(0)) : std::nullopt;
  }
  const Day today = dayOf(call.backend.now());
  if (!period.last) period.last = std::max(today, period.first.value_or(today));
  if (!period.first) period.first = *period.last;
  return period;
}

/// The model learns from the trips that a user really drove.
void writeTraining(JsonWriter& json, Call& call, const std::string& userId) {
  Rows row = call.database.query(
      "SELECT count(*) FROM trips WHERE user_id = ? AND transport_mode = 'DRIVER'", userId);
  const std::int64_t trips = row.next() ? row.integer(0) : 0;
  json.key("driverPassengerDetectionStatus")
      .beginObject()
      .member("status", trips >= tripsToTrain ? "DETECTION" : "TRAINING")
      .member("numberOfDriverTrips", trips)
      .member("minimumNumberOfDriverTrips", tripsToTrain)
      .endObject();
}

Reply readSummary(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  const auto expansions = call.query.expansions({"userTrainingStatus"});
  const Period period = withDefaults(call, userId);
  const ScoreTotals totals = totalsOf(call.database, {ScoreSubject::Kind::user, userId}, period);
  const double projected = discountFor(totals.average(ScoreKind::overall));
  JsonWriter json;
  json.beginObject()
      .member("id", numberOf(userId) * 10 + 1)
      .member("userId", numberOf(userId))
      .member("assessmentPeriodStartUtc", startOf(*period.first))
      .member("maximumDiscountAvailable", maximumDiscount)
      .member("kmOfDeclaredMileage", declaredMileage)
      .member("kmOfDriving", roundedTo(totals.kilometres, 3))
      .member("numberOfTrips", totals.trips)
      .member("currentDiscount",
              static_cast<std::int64_t>(totals.kilometres >= minimumKilometres ? projected : 0))
      .member("projectedDiscount", static_cast<std::int64_t>(projected))
      .member("overallScore", totals.average(ScoreKind::overall));
  if (expansions.contains("userTrainingStatus")) writeTraining(json, call, userId);
  return jsonReply(json.endObject().take());
}

/// The first day of the period that comes after the one which the day lies in.
Day nextPeriod(Day day, const std::string& aggregateBy) {
  if (aggregateBy == "DAY") return day + std::chrono::days{1};
  if (aggregateBy == "WEEK") return startOfWeek(day) + std::chrono::days{7};
  return startOfMonth(startOfMonth(day) + std::chrono::days{31});
}

std::vector<Period> periodsOf(const Period& whole, const std::optional<std::string>& aggregateBy) {
  if (!aggregateBy) return {whole};
  std::vector<Period> periods;
  for (Day first = *whole.first; first <= *whole.last;) {
    const Day next = nextPeriod(first, *aggregateBy);
    periods.push_back({first, std::min(next - std::chrono::days{1}, *whole.last)});
    if (periods.size() > mostPeriods) throw badRequest("the date range has too many periods");
    first = next;
  }
  return periods;
}

Reply listSummaries(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  const auto aggregateBy = call.query.oneOf("aggregateBy", {"DAY", "WEEK", "MONTH"});
  const Period whole = withDefaults(call, userId);
  JsonWriter json;
  json.beginArray();
  for (const Period& period : periodsOf(whole, aggregateBy)) {
    Rows row = call.database.query(
        "SELECT total(seconds), total(idle_seconds), total(kilometers), total(litres), count(*)"
        " FROM trips WHERE user_id = ? AND day BETWEEN ? AND ? AND overall IS NOT NULL"
        " AND transport_mode = 'DRIVER'",
        userId, firstDayOf(period), lastDayOf(period));
    if (!row.next()) continue;
    const double seconds = row.real(0);
    json.beginObject()
        .member("startDate", startOf(*period.first))
        .member("endDate", startOf(*period.last) + millisPerDay - 1)
        .member("secondsOfDriving", std::llround(seconds))
        .member("secondsOfIdling", std::llround(row.real(1)))
        .member("kmOfDriving", roundedTo(row.real(2), 3))
        .member("litresOfFuel", roundedTo(row.real(3), 3))
        .member("numberOfTrips", row.integer(4))
        .member("avgKmPerHour", seconds > 0 ? roundedTo(row.real(2) / seconds * 3600, 1) : 0.0)
        .member("secondsInMotion", std::llround(seconds - row.real(1)))
        .endObject();
  }
  return jsonReply(json.endArray().take());
}

Reply readLastKnownLocation(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  Rows trip = call.database.query(
      "SELECT last_latitude, last_longitude, coalesce(end_ms, start_ms) FROM trips"
      " WHERE user_id = ? ORDER BY start_ms DESC LIMIT 1",
      userId);
  if (!trip.next()) throw notFound("nobody knows where this user was last");
  JsonWriter json;
  json.beginObject()
      .member("lat", trip.real(0))
      .member("lng", trip.real(1))
      .member("utcDateTime", trip.integer(2))
      .endObject();
  return jsonReply(json.take());
}

}  // namespace

void addDriving(Router& router) {
  router.add({.method = "GET",
              .path = "users/{user}/drivingSummary",
              .handle = readSummary,
              .query = {"expand", "startDate", "endDate"}});
  router.add({.method = "GET",
              .path = "users/{user}/drivingSummaryList",
              .handle = listSummaries,
              .query = {"startDate", "endDate", "aggregateBy"}});
  router.add(
      {.method = "GET", .path = "users/{user}/lastKnownLocation", .handle = readLastKnownLocation});
}

}  // namespace orvane::sandbox
