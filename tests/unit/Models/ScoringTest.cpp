// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include "tests/support/Values.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Scoring.h>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace orvane {
namespace {

using SubScore = TripScores::SubScore;
using SubScores = TripScores::SubScores;

TEST(TripScoresTest, areReadFromUnderScores) {
  const std::pair<std::string, TripScores> rows[] = {
      {R"({"scores":{}})", {.subScores = SubScores()}},
      {R"({"scores":{"overall":null}})", {.subScores = SubScores()}},
      {R"({"scores":{"overall":80.5},"overall":3})", {.overall = 80.5, .subScores = SubScores()}},
      {R"({"scores":{"harsh.acceleration":1,"harsh.braking":2,"harsh.cornering":3,"speeding":4,
                     "over.speeding":5,"abc_subscore":6,"usage_subscore":7,"speed_subscore":8,
                     "distracted_driving":9}})",
       {.subScores = SubScores{{SubScore::acceleration(), 1},
                               {SubScore::braking(), 2},
                               {SubScore::cornering(), 3},
                               {SubScore::speeding(), 4},
                               {SubScore::postedSpeedLimit(), 5},
                               {SubScore::abcSubscore(), 6},
                               {SubScore::usageSubscore(), 7},
                               {SubScore::speedSubscore(), 8},
                               {SubScore::distractedDriving(), 9}}}},
      {R"({"scores":{"overall":80,"harsh.braking":70,"distracted.driving":50,"calm":null,
                     "Speeding":1,"Overall":2}})",
       {.overall = 80,
        .subScores = SubScores{{SubScore::braking(), 70},
                               {SubScore::other("distracted.driving"), 50},
                               {SubScore::other("calm"), std::nullopt},
                               {SubScore::other("Speeding"), 1},
                               {SubScore::other("Overall"), 2}}}},
      // The later of two entries, and of two objects.
      {R"({"scores":{"overall":1,"speeding":"fast","speeding":2,"overall":null}})",
       {.subScores = SubScores{{SubScore::speeding(), 2}}}},
      {R"({"scores":{"overall":1,"speeding":2},"scores":{"calm":3}})",
       {.subScores = SubScores{{SubScore::other("calm"), 3}}}},
  };
  for (const auto& [json, scores] : rows) EXPECT_EQ(decode<TripScores>(json), scores) << json;

  expectNeeds<TripScores>(R"({"scores":{}})", {"scores"});
  EXPECT_EQ(failure<TripScores>(R"({"scores":[]})"), "typeMismatch scores");
  EXPECT_EQ(failure<TripScores>(R"({"scores":{"overall":"high"}})"), "typeMismatch scores.overall");
  EXPECT_EQ(failure<TripScores>(R"({"scores":{"calm":true}})"), "typeMismatch scores.calm");
  EXPECT_EQ(failure<TripScores>("null"), "valueNotFound");
}

TEST(TripScoresTest, areWrittenFlat) {
  const std::pair<TripScores, std::string> rows[] = {
      {{}, "null"},
      {{.overall = 60}, "null"},
      {{.subScores = SubScores()}, "{}"},
      {{.overall = 60, .subScores = SubScores{{SubScore::braking(), std::nullopt}}},
       R"({"overall":60})"},
      {{.overall = 60,
        .subScores = SubScores{{SubScore::braking(), 70},
                               {SubScore::distractedDriving(), 50},
                               {SubScore::other("calm"), 1},
                               {SubScore::other("gone"), std::nullopt}}},
       R"({"calm":1,"distracted_driving":50,"harsh.braking":70,"overall":60})"},
      // "overall" is the member's, there or not.
      {{.overall = 60, .subScores = SubScores{{SubScore::other("overall"), 1}}},
       R"({"overall":60})"},
      {{.subScores = SubScores{{SubScore::other("overall"), 1}}}, "{}"},
      // Of two entries of one name the later in the map's order counts, and one without a value
      // takes the earlier with it.
      {{.subScores = SubScores{{SubScore::speeding(), 1}, {SubScore::other("speeding"), 2}}},
       R"({"speeding":2})"},
      {{.subScores =
            SubScores{{SubScore::speeding(), 1}, {SubScore::other("speeding"), std::nullopt}}},
       "{}"},
  };
  for (const auto& [scores, json] : rows) {
    EXPECT_EQ(encode(scores), json);
    EXPECT_FALSE(decode<TripScores>(json)) << json;
  }
}

TEST(TripScoresTest, tellTheirSubScoresApart) {
  EXPECT_EQ(std::unordered_set<SubScore>({SubScore::braking(), SubScore::other("harsh.braking"),
                                          SubScore::other("a"), SubScore::other("b"),
                                          SubScore::braking(), SubScore::other("a")})
                .size(),
            4U);
  EXPECT_EQ(SubScore::fromWireText("over.speeding"), SubScore::postedSpeedLimit());
  EXPECT_EQ(SubScore::fromWireText("distracted.driving").wireText(), "distracted.driving");
}

TEST(ScoringTest, readsAndWritesWhatATripsAlgorithmSays) {
  const std::string json =
      R"({"scoreAlgorithmProvider":"ABC","scoreUnit":"PERCENT","overallScore":-1.5,)"
      R"("individualComponentScores":[{"component":"braking","componentScore":101},{}]})";
  const TripScoring scoring{
      .scoreAlgorithmProvider = "ABC",
      .scoreUnit = "PERCENT",
      .overallScore = -1.5,
      .individualComponentScores = {{{.component = "braking", .componentScore = 101}, {}}}};
  expectMirrored(json, scoring);
}

TEST(ScoringTest, readsAndWritesAPeriodDayByDay) {
  const std::string json =
      R"({"highestScore":90,"averageScore":80.5,"tripScoringDailyAggregate":[{"score":70,)"
      R"("averageScore":71,"date":1700000000000.5,"trackingType":"PHONE","secondsOfDriving":60,)"
      R"("componentScores":{"harshAcceleration":{"score":1,"averageScore":2,"trackingType":"x"},)"
      R"("harshBraking":{"score":2},"harshCornering":{"score":3},"overSpeeding":{"score":4},)"
      R"("speeding":{"score":5},"distractedDriving":{"score":6},"mileage":{"score":7},)"
      R"("payd":{"score":8},"abc_subscore":{"score":9},"speed_subscore":{"score":10},)"
      R"("usage_subscore":{"score":11},"distracted_driving":{}},"scoreType":-2},{}]})";
  const auto score = [](double value) { return ScoreComponent{.score = value}; };
  const ScoringAggregate aggregate{
      .highestScore = 90,
      .averageScore = 80.5,
      .tripScoringDailyAggregate = {
          {{.score = 70,
            .averageScore = 71,
            .date = 1700000000000.5,
            .trackingType = "PHONE",
            .secondsOfDriving = 60,
            .componentScores =
                ScoringComponents{
                    .harshAcceleration =
                        ScoreComponent{.score = 1, .averageScore = 2, .trackingType = "x"},
                    .harshBraking = score(2),
                    .harshCornering = score(3),
                    .overSpeeding = score(4),
                    .speeding = score(5),
                    .distractedDriving = score(6),
                    .mileage = score(7),
                    .payd = score(8),
                    .abc_subscore = score(9),
                    .speed_subscore = score(10),
                    .usage_subscore = score(11),
                    .distracted_driving = ScoreComponent{}},
            .scoreType = -2},
           {}}}};
  expectMirrored(json, aggregate);
  EXPECT_EQ(decode<ScoringComponents>(
                R"({"harsh.acceleration":{"score":1},"distracted.driving":{"score":1}})"),
            ScoringComponents{});
  EXPECT_EQ(failure<ScoringAggregate>(
                R"({"tripScoringDailyAggregate":[{},{"componentScores":{"payd":{"score":"1"}}}]})"),
            "typeMismatch tripScoringDailyAggregate[1].componentScores.payd.score");
  EXPECT_EQ(failure<DailyAggregate>(R"({"scoreType":1.5})"), "typeMismatch scoreType");
}

TEST(ScoringTest, readsAndWritesAnAverage) {
  const std::string json =
      R"({"highestScore":90,"lowestScore":10,"periodStartDate":1.5,"periodEndDate":2.5,)"
      R"("averageScore":50,"tripScoringAverage":{"date":3.5,"trackingType":"PHONE",)"
      R"("componentScores":{"harsh.acceleration":1,"harsh.braking":2,"harsh.cornering":3,)"
      R"("over.speeding":4,"speeding":5,"distracted.driving":6,"mileage":7,"payd":8,)"
      R"("abc_subscore":9,"speed_subscore":10,"usage_subscore":11,"distracted_driving":12}}})";
  const ScoringAverage average{
      .highestScore = 90,
      .lowestScore = 10,
      .periodStartDate = 1.5,
      .periodEndDate = 2.5,
      .averageScore = 50,
      .tripScoringAverage = TripScoringAverage{.date = 3.5,
                                               .trackingType = "PHONE",
                                               .componentScores = {.harshAcceleration = 1,
                                                                   .harshBraking = 2,
                                                                   .harshCornering = 3,
                                                                   .overSpeeding = 4,
                                                                   .speeding = 5,
                                                                   .distractedDriving = 6,
                                                                   .mileage = 7,
                                                                   .payd = 8,
                                                                   .abc_subscore = 9,
                                                                   .speed_subscore = 10,
                                                                   .usage_subscore = 11,
                                                                   .distracted_driving = 12}}};
  expectMirrored(json, average);
  EXPECT_EQ(decode<TripScoringComponents>(R"({"harshAcceleration":1,"overSpeeding":2})"),
            TripScoringComponents{});
  EXPECT_EQ(decode<ScoringAverage>(R"({"tripScoringAverage":null})"), ScoringAverage{});
  const std::string zero = R"({"date":0,"trackingType":"","componentScores":{}})";
  expectMirrored(zero, TripScoringAverage{});
  expectNeeds<TripScoringAverage>(zero, {"date", "trackingType", "componentScores"});
}

TEST(ScoringTest, writesNoNumberThatIsNone) {
  for (const double none : {infinity, -infinity, notANumber}) {
    EXPECT_FALSE(encode(TripScores{.overall = none, .subScores = SubScores()}));
    EXPECT_FALSE(encode(TripScores{.subScores = SubScores{{SubScore::braking(), none}}}));
    EXPECT_FALSE(encode(TripScoring{.overallScore = none}));
    EXPECT_FALSE(encode(ScoringAggregate{.tripScoringDailyAggregate = {{{.date = none}}}}));
    EXPECT_FALSE(encode(ScoringComponents{.payd = ScoreComponent{.averageScore = none}}));
    EXPECT_FALSE(encode(ScoringAverage{.tripScoringAverage = TripScoringAverage{.date = none}}));
    EXPECT_FALSE(encode(TripScoringComponents{.mileage = none}));
    // Not written, and so no fault.
    EXPECT_EQ(encode(TripScores{.overall = none}), std::string("null"));
  }
}

}  // namespace
}  // namespace orvane
