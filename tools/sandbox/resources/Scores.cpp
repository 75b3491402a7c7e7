// SPDX-License-Identifier: Apache-2.0
//
// "statisticScores" and "averageScores" of users and vehicles, from the trips of the asked period.
#include "Backend.h"
#include "JsonWriter.h"
#include "resources/People.h"
#include "resources/Resources.h"
#include "resources/ScoreTotals.h"
#include "resources/VehicleRecord.h"

#include <algorithm>
#include <array>
#include <span>

namespace orvane::sandbox {

namespace {

constexpr std::int64_t mostPeriodsBack = 1200;
constexpr int scoreType = 1;

/// A component of the score: its name per day, its name in an average, and what it is the mean of.
struct Component {
  const char* dailyName;
  const char* averageName;
  std::array<ScoreKind, 3> kinds;
  std::size_t kindCount;
};

constexpr std::array<Component, 8> imsComponents{{
    {"harshAcceleration", "harsh.acceleration", {ScoreKind::acceleration}, 1},
    {"harshBraking", "harsh.braking", {ScoreKind::braking}, 1},
    {"harshCornering", "harsh.cornering", {ScoreKind::cornering}, 1},
    {"overSpeeding", "over.speeding", {ScoreKind::overSpeeding}, 1},
    {"speeding", "speeding", {ScoreKind::speeding}, 1},
    {"distractedDriving", "distracted.driving", {ScoreKind::distraction}, 1},
    {"mileage", "mileage", {ScoreKind::usage}, 1},
    {"payd", "payd", {ScoreKind::usage}, 1},
}};

constexpr std::array<Component, 4> wtwComponents{{
    {"abc_subscore",
     "abc_subscore",
     {ScoreKind::acceleration, ScoreKind::braking, ScoreKind::cornering},
     3},
    {"speed_subscore", "speed_subscore", {ScoreKind::speeding, ScoreKind::overSpeeding}, 2},
    {"usage_subscore", "usage_subscore", {ScoreKind::usage}, 1},
    {"distracted_driving", "distracted_driving", {ScoreKind::distraction}, 1},
}};

/// How a subject is scored, and with what it is tracked.
struct Scheme {
  std::span<const Component> components;
  std::string trackingType;
};

Scheme schemeOf(Call& call, const ScoreSubject& subject) {
  if (subject.kind == ScoreSubject::Kind::vehicle) return {imsComponents, "OBD"};
  Rows user = call.database.query(
      "SELECT scoring_type, data_collection_type FROM users WHERE user_id = ?", subject.id);
  if (!user.next()) return {imsComponents, "MOBILE"};
  const bool wtw = user.text(0) == "WTW";
  return {wtw ? std::span<const Component>{wtwComponents} : imsComponents,
          std::string{user.text(1)}};
}

double scoreOf(const ScoreTotals& totals, const Component& component) {
  double sum = 0;
  for (std::size_t i = 0; i < component.kindCount; ++i) {
    sum += totals.average(component.kinds[i]).value_or(0);
  }
  return roundedTo(sum / static_cast<double>(component.kindCount), 2);
}

ScoreSubject userSubject(Call& call) {
  return {ScoreSubject::Kind::user, readableUser(call, call.capture(0))};
}

ScoreSubject vehicleSubject(Call& call) {
  requireVehicle(call, call.capture(0));
  return {ScoreSubject::Kind::vehicle, call.capture(0)};
}

Period requiredPeriod(const Call& call) {
  const Period period = call.query.period();
  if (!period.first || !period.last) throw badRequest("\"startDate\" or \"endDate\" is missing");
  return period;
}

void writeDay(JsonWriter& json, const DayTotals& day, const ScoreTotals& soFar,
              const Scheme& scheme) {
  json.beginObject()
      .member("score", day.totals.average(ScoreKind::overall))
      .member("averageScore", soFar.average(ScoreKind::overall))
      .member("date", startOf(day.day))
      .member("trackingType", scheme.trackingType)
      .member("secondsOfDriving", roundedTo(day.totals.seconds, 1))
      .member("scoreType", scoreType)
      .key("componentScores")
      .beginObject();
  for (const Component& component : scheme.components) {
    json.key(component.dailyName)
        .beginObject()
        .member("score", scoreOf(day.totals, component))
        .member("averageScore", scoreOf(soFar, component))
        .member("trackingType", scheme.trackingType)
        .endObject();
  }
  json.endObject().endObject();
}

/// A day's average is that of the period up to and with the day, so the last one is the period's.
Reply statistic(Call& call, const ScoreSubject& subject) {
  const Period period = requiredPeriod(call);
  if (!call.query.oneOf("reportingPeriodType",
                        {"CUSTOM", "last7Days", "last30Days", "last90Days", "lastYear", "today"})) {
    throw badRequest("\"reportingPeriodType\" is missing");
  }
  const Scheme scheme = schemeOf(call, subject);
  std::optional<double> highest;
  ScoreTotals soFar;
  JsonWriter days;
  days.beginArray();
  for (const DayTotals& day : dailyTotalsOf(call.database, subject, period)) {
    soFar.add(day.totals);
    highest = std::max(highest, day.totals.average(ScoreKind::overall));
    writeDay(days, day, soFar, scheme);
  }
  days.endArray();
  JsonWriter json;
  json.beginObject()
      .member("highestScore", highest)
      .member("averageScore", soFar.average(ScoreKind::overall))
      .rawMember("tripScoringDailyAggregate", days.text())
      .endObject();
  return jsonReply(json.take());
}

Reply userStatistic(Call& call) { return statistic(call, userSubject(call)); }
Reply vehicleStatistic(Call& call) { return statistic(call, vehicleSubject(call)); }

/// Week 0 is the one that today lies in, 1 the one before it.
Period weekPeriod(Day today, std::int64_t weeksBack) {
  const Day monday = startOfWeek(today) - std::chrono::days{7 * weeksBack};
  return {monday, monday + std::chrono::days{6}};
}

/// The last months, today's included.
Period monthsPeriod(Day today, std::int64_t count) {
  Day first = startOfMonth(today);
  for (std::int64_t i = 1; i < count; ++i) first = startOfMonth(first - std::chrono::days{1});
  return {first, today};
}

Period averagePeriod(const Call& call) {
  const Day today = dayOf(call.backend.now());
  const auto week = call.query.integer("userScoreWeek", 0, mostPeriodsBack);
  const auto type = call.query.oneOf("reportingPeriodType", {"CUSTOM", "DAY", "MONTH"});
  const auto count = call.query.integer("reportingPeriodCount", 1, mostPeriodsBack);
  const bool hasDates = call.query.text("startDate") || call.query.text("endDate");
  if (week) {
    if (type || count || hasDates) throw badRequest("\"userScoreWeek\" stands alone");
    return weekPeriod(today, *week);
  }
  if (!type) throw badRequest("\"reportingPeriodType\" or \"userScoreWeek\" is missing");
  if (*type == "CUSTOM") return requiredPeriod(call);
  if (hasDates) throw badRequest("only CUSTOM takes dates");
  if (*type == "MONTH") return monthsPeriod(today, count.value_or(1));
  return daysUpTo(today, count.value_or(1));
}

Reply average(Call& call, const ScoreSubject& subject) {
  const Period period = averagePeriod(call);
  const Scheme scheme = schemeOf(call, subject);
  const ScoreTotals totals = totalsOf(call.database, subject, period);
  JsonWriter json;
  json.beginObject()
      .member("highestScore", totals.highest)
      .member("lowestScore", totals.lowest)
      .member("periodStartDate", startOf(*period.first))
      .member("periodEndDate", startOf(*period.last) + millisPerDay - 1)
      .member("averageScore", totals.average(ScoreKind::overall));
  if (totals.trips > 0) {
    json.key("tripScoringAverage")
        .beginObject()
        .member("date", startOf(*period.last))
        .member("trackingType", scheme.trackingType)
        .key("componentScores")
        .beginObject();
    for (const Component& component : scheme.components) {
      json.member(component.averageName, scoreOf(totals, component));
    }
    json.endObject().endObject();
  }
  return jsonReply(json.endObject().take());
}

Reply userAverage(Call& call) { return average(call, userSubject(call)); }
Reply vehicleAverage(Call& call) { return average(call, vehicleSubject(call)); }

}  // namespace

void addScores(Router& router) {
  const std::vector<std::string_view> statisticQuery{"startDate", "endDate", "reportingPeriodType"};
  const std::vector<std::string_view> averageQuery{"startDate", "endDate", "reportingPeriodType",
                                                   "reportingPeriodCount", "userScoreWeek"};
  router.add({.method = "GET",
              .path = "users/{user}/statisticScores",
              .handle = userStatistic,
              .query = statisticQuery});
  router.add({.method = "GET",
              .path = "users/{user}/averageScores",
              .handle = userAverage,
              .query = averageQuery});
  router.add({.method = "GET",
              .path = "vehicles/{vehicle}/statisticScores",
              .handle = vehicleStatistic,
              .query = statisticQuery});
  router.add({.method = "GET",
              .path = "vehicles/{vehicle}/averageScores",
              .handle = vehicleAverage,
              .query = averageQuery});
}

}  // namespace orvane::sandbox
