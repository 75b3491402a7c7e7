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

constexpr std::chrono::days kAssessedDays{90};
constexpr std::int64_t kRewardTokenSeconds = 600;
constexpr double kUncertainty = 4;  // points that the score may still move

Reply readDiscount(Call& call) {
  const std::string& userId = readableUser(call, call.capture(0));
  const auto expansions = call.query.expansions({"scores"});
  const Day today = dayOf(call.backend.now());
  const ScoreTotals totals =
      totalsOf(call.database, {ScoreSubject::Kind::user, userId}, {today - kAssessedDays, today});
  const auto score = totals.average(kOverall);
  const double projected = discountFor(score);
  JsonWriter json;
  json.beginObject()
      .member("currentDiscount", totals.kilometres >= kMinimumKilometres ? projected : 0.0)
      .member("projectedDiscount", projected)
      .member("discountRangeMin", 0.0)
      .member("discountRangeMax", kMaximumDiscount)
      .member("projectedDiscountMinimum", discountFor(score.value_or(0) - kUncertainty))
      .member("projectedDiscountMaximum", discountFor(score.value_or(0) + kUncertainty));
  if (expansions.contains("scores")) {
    json.key("scores")
        .beginObject()
        .member("overall", score)
        .member("harsh.acceleration", totals.average(kAcceleration))
        .member("harsh.braking", totals.average(kBraking))
        .member("harsh.cornering", totals.average(kCornering))
        .member("speeding", totals.average(kSpeeding))
        .member("over.speeding", totals.average(kOverSpeeding))
        .endObject();
  }
  return jsonReply(json.endObject().take());
}

Reply readDiscountMetadata(Call&) {
  JsonWriter json;
  json.beginObject().key("discountsForScores").beginArray();
  for (const auto& [minimumScore, discount] : kDiscountSteps) {
    json.beginObject()
        .member("minimumScoreRequired", minimumScore)
        .member("projectDiscount", discount)
        .endObject();
  }
  json.endArray().member("minimumKmRequired", kMinimumKilometres).endObject();
  return jsonReply(json.take());
}

/// The whole answer is one JSON string.
Reply makeRewardToken(Call& call) {
  const std::int64_t now = call.backend.clock().now() / kMillisPerSecond;
  JsonWriter json;
  json.value(call.backend.signingKey().sign({{"sub", call.callerId}, {"aud", "rewards"}},
                                            {{"iat", now}, {"exp", now + kRewardTokenSeconds}}));
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
