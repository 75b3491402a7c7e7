// SPDX-License-Identifier: Apache-2.0
//
// What careful driving earns: "users/{id}/discount", "discountMetadata" and "jwtgenerator".
#include "Backend.h"
#include "JsonWriter.h"
#include "resources/DiscountScheme.h"
#include "resources/People.h"
#include "resources/Resources.h"
#include "resources/ScoreTotals.h"

namespace orvane::sandbox {

namespace {

constexpr std::int64_t assessedDays = 90;
constexpr std::int64_t rewardTokenSeconds = 600;
constexpr double uncertainty = 4;  // points that the score may still move

Reply readDiscount(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  const auto expansions = call.query.expansions({"scores"});
  const Day today = dayOf(call.backend.now());
  const ScoreTotals totals =
      totalsOf(call.database, {ScoreSubject::Kind::user, userId}, daysUpTo(today, assessedDays));
  const auto score = totals.average(ScoreKind::overall);
  const double projected = discountFor(score);
  JsonWriter json;
  json.beginObject()
      .member("currentDiscount", totals.kilometres >= minimumKilometres ? projected : 0.0)
      .member("projectedDiscount", projected)
      .member("discountRangeMin", 0.0)
      .member("discountRangeMax", maximumDiscount)
      .member("projectedDiscountMinimum", discountFor(score.value_or(0) - uncertainty))
      .member("projectedDiscountMaximum", discountFor(score.value_or(0) + uncertainty));
  if (expansions.contains("scores")) {
    json.key("scores")
        .beginObject()
        .member("overall", score)
        .member("harsh.acceleration", totals.average(ScoreKind::acceleration))
        .member("harsh.braking", totals.average(ScoreKind::braking))
        .member("harsh.cornering", totals.average(ScoreKind::cornering))
        .member("speeding", totals.average(ScoreKind::speeding))
        .member("over.speeding", totals.average(ScoreKind::overSpeeding))
        .endObject();
  }
  return jsonReply(json.endObject().take());
}

Reply readDiscountMetadata(Call&) {
  JsonWriter json;
  json.beginObject().key("discountsForScores").beginArray();
  for (const auto& [minimumScore, discount] : discountSteps) {
    json.beginObject()
        .member("minimumScoreRequired", minimumScore)
        .member("projectDiscount", discount)
        .endObject();
  }
  json.endArray().member("minimumKmRequired", minimumKilometres).endObject();
  return jsonReply(json.take());
}

/// The whole answer is one JSON string.
Reply makeRewardToken(Call& call) {
  const std::int64_t now = call.backend.clock().now() / millisPerSecond;
  JsonWriter json;
  json.value(call.backend.signingKey().sign({{"sub", call.callerId}, {"aud", "rewards"}},
                                            {{"iat", now}, {"exp", now + rewardTokenSeconds}}));
  return jsonReply(json.take());
}

}  // namespace

void addRewards(Router& router) {
  router.add({.method = "GET",
              .path = "users/{user}/discount",
              .handle = readDiscount,
              .query = {"expand"}});
  router.add({.method = "GET", .path = "discountMetadata", .handle = readDiscountMetadata});
  router.add({.method = "GET", .path = "jwtgenerator", .handle = makeRewardToken});
}

}  // namespace orvane::sandbox
