// SPDX-License-Identifier: Apache-2.0
//
// "leaderboards": drivers ranked by their scores of the four weeks up to a day, and who takes part.
#include "Backend.h"
#include "resources/People.h"
#include "resources/Resources.h"
#include "resources/ScoreTotals.h"

#include <algorithm>
#include <cmath>

namespace orvane::sandbox {

namespace {

constexpr std::int64_t rankedDays = 28;
constexpr std::int64_t tripsToRank = 3;
constexpr std::size_t topPositions = 10;
constexpr std::int64_t oldestAge = 150;

struct Filter {
  std::optional<std::string> gender;
  std::optional<std::string> location;
  std::int64_t youngest = 0;
  std::int64_t oldest = oldestAge;
};

Filter filterOf(const Call& call) {
  Filter filter{call.query.text("gender"), call.query.text("location"),
                call.query.integer("age_lower", 0, oldestAge).value_or(0),
                call.query.integer("age_upper", 0, oldestAge).value_or(oldestAge)};
  if (filter.youngest > filter.oldest) throw badRequest("\"age_lower\" is above \"age_upper\"");
  return filter;
}

bool isOptedIn(Call& call, const std::string& userId) {
  Rows user = call.database.query("SELECT opted_in FROM users WHERE user_id = ?", userId);
  return user.next() && user.boolean(0);
}

struct Ranked {
  std::string userId;
  std::int64_t points;
};

std::vector<std::string> candidates(Call& call, const Filter& filter, Day day) {
  std::vector<std::string> ids;
  Rows users = call.database.query(
      "SELECT user_id, date_of_birth FROM users WHERE opted_in AND activated"
      " AND (?1 IS NULL OR gender = ?1) AND (?2 IS NULL OR postalcode = ?2)",
      filter.gender, filter.location);
  while (users.next()) {
    const auto birth = parseDay(users.text(1));
    const int years = birth ? age(*birth, day) : -1;
    if (years >= filter.youngest && years <= filter.oldest) ids.emplace_back(users.text(0));
  }
  return ids;
}

std::vector<Ranked> rank(Call& call, const Filter& filter, Day day) {
  std::vector<Ranked> ranking;
  for (std::string& userId : candidates(call, filter, day)) {
    const ScoreTotals totals =
        totalsOf(call.database, {ScoreSubject::Kind::user, userId}, daysUpTo(day, rankedDays));
    if (totals.trips < tripsToRank) continue;
    const double score = totals.average(ScoreKind::overall).value_or(0);
    ranking.push_back({std::move(userId), std::llround(score * 10)});
  }
  std::ranges::stable_sort(ranking, std::ranges::greater{}, &Ranked::points);
  return ranking;
}

/// Numbers travel as texts here.
void writeEntry(JsonWriter& json, Call& call, const Ranked& ranked, std::size_t position, Day day) {
  json.beginObject()
      .member("leaderboardEntryId", "LB-" + formatDay(day) + "-" + ranked.userId)
      .member("position", std::to_string(position))
      .member("points", std::to_string(ranked.points))
      .key("publicUserResource");
  Rows user =
      call.database.query("SELECT " + userColumns + " FROM users WHERE user_id = ?", ranked.userId);
  user.next() ? writePublicUser(json, user) : static_cast<void>(json.null());
  json.endObject();
}

Reply readLeaderboard(Call& call) {
  const std::string userId = call.query.requiredText("userId");
  ownUser(call, userId);
  const auto day = call.query.day("localDate");
  if (!day) throw badRequest("\"localDate\" is missing");
  const auto ranking = rank(call, filterOf(call), *day);
  const auto own = std::ranges::find(ranking, userId, &Ranked::userId);
  const bool isIn = own != ranking.end();

  JsonWriter json;
  json.beginObject()
      .member("optedIn", isOptedIn(call, userId))
      .member("inLeaderboard", isIn)
      .member("inTop", isIn && own - ranking.begin() < static_cast<std::ptrdiff_t>(topPositions))
      .key("leaderboardEntries")
      .beginArray();
  std::size_t position = 0;
  for (const Ranked& ranked : ranking) writeEntry(json, call, ranked, ++position, *day);
  return jsonReply(json.endArray().endObject().take());
}

Reply changeParticipation(Call& call) {
  const std::string userId = call.query.requiredText("userId");
  ownUser(call, userId);
  const auto action = call.query.oneOf("action", {"optin", "optout"});
  if (!action) throw badRequest("\"action\" is missing");
  call.database.execute("UPDATE users SET opted_in = ? WHERE user_id = ?", *action == "optin",
                        userId);
  return jsonReply("");
}

}  // namespace

void addLeaderboards(Router& router) {
  router.add({.method = "GET",
              .path = "leaderboards",
              .handle = readLeaderboard,
              .query = {"userId", "localDate", "gender", "age_lower", "age_upper", "location"}});
  router.add({.method = "POST",
              .path = "leaderboards",
              .handle = changeParticipation,
              .query = {"userId", "action"}});
}

}  // namespace orvane::sandbox
