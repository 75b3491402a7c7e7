// SPDX-License-Identifier: Apache-2.0
//
// Scores by period and algorithm, leaderboards and reward tokens.
#include "Fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

namespace orvane::sandbox::test {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

constexpr const char* period = "startDate=2025-06-05&endDate=2025-06-17";

class Scores : public SandboxTest {};

TEST_F(Scores, TheTwoAlgorithmsNameTheirComponentsDifferently) {
  const auto names = [this](const std::string& user) {
    const json average =
        read("users/" + user + "/averageScores?reportingPeriodType=CUSTOM&" + period);
    std::vector<std::string> keys;
    for (const auto& [key, score] : average["tripScoringAverage"]["componentScores"].items()) {
      keys.push_back(key);
    }
    return keys;
  };
  EXPECT_THAT(names("1001"), IsSupersetOf({"harsh.acceleration", "distracted.driving", "mileage"}));
  EXPECT_THAT(names("1002"), ElementsAre("abc_subscore", "distracted_driving", "speed_subscore",
                                         "usage_subscore"));
  const json daily = read(std::string{"users/1001/statisticScores?"} + period +
                          "&reportingPeriodType=last30Days")["tripScoringDailyAggregate"][0];
  EXPECT_TRUE(daily["componentScores"].contains("harshAcceleration"));
}

TEST_F(Scores, PeriodsCountBackFromToday) {
  const auto days = [this](const std::string& query) {
    const json average = read("users/1001/averageScores?" + query);
    return formatDay(dayOf(average["periodStartDate"].get<std::int64_t>())) + ".." +
           formatDay(dayOf(average["periodEndDate"].get<std::int64_t>()));
  };
  EXPECT_EQ(days("userScoreWeek=0"), "2025-06-16..2025-06-22");
  EXPECT_EQ(days("userScoreWeek=25"), "2024-12-23..2024-12-29");
  EXPECT_EQ(days("reportingPeriodType=DAY"), "2025-06-18..2025-06-18");
  EXPECT_EQ(days("reportingPeriodType=DAY&reportingPeriodCount=3"), "2025-06-16..2025-06-18");
  EXPECT_EQ(days("reportingPeriodType=MONTH&reportingPeriodCount=7"), "2024-12-01..2025-06-18");
}

TEST_F(Scores, APeriodWithoutTripsHasNoScore) {
  const json average = read(
      "users/1001/averageScores?reportingPeriodType=CUSTOM"
      "&startDate=2567-01-01&endDate=2567-02-01");
  EXPECT_FALSE(average.contains("averageScore"));
  EXPECT_FALSE(average.contains("tripScoringAverage"));
  EXPECT_EQ(read("users/1001/statisticScores?startDate=2567-01-01&endDate=2567-01-01"
                 "&reportingPeriodType=today"),
            json({{"tripScoringDailyAggregate", json::array()}}));
}

TEST_F(Scores, MalformedQueriesAreRefused) {
  const std::string average = "GET users/1001/averageScores";
  const std::string days = "GET users/1001/statisticScores?startDate=2025-06-01&endDate=2025-06-02";
  const std::string board = "GET leaderboards";
  refuses(400, {average, average + "?userScoreWeek=-1", average + "?userScoreWeek=x",
                average + "?userScoreWeek=1&reportingPeriodType=DAY",
                average + "?reportingPeriodType=CUSTOM",
                average + "?reportingPeriodType=CUSTOM&startDate=2025-06-01",
                average + "?reportingPeriodType=day",
                average + "?reportingPeriodType=DAY&startDate=2025-06-01",
                average + "?reportingPeriodType=DAY&reportingPeriodCount=0", days,
                days + "&reportingPeriodType=DAY", board, board + "?userId=1001",
                board + "?userId=1001&localDate=2025-6-1",
                board + "?userId=1001&localDate=2025-06-18&age_lower=x",
                board + "?userId=1001&localDate=2025-06-18&age_lower=9&age_upper=8",
                "POST leaderboards?userId=1001"});
  refuses(403, {"GET vehicles/3003/averageScores?userScoreWeek=0",
                board + "?userId=1002&localDate=2025-06-18",
                "POST leaderboards?userId=1002&action=optin"});
}

class Leaderboards : public SandboxTest {};

TEST_F(Leaderboards, EntriesAreRankedAndNumbersTravelAsTexts) {
  const json all = read("leaderboards?userId=1001&localDate=2025-06-18");
  ASSERT_GT(all["leaderboardEntries"].size(), 12U);
  int position = 0;
  std::int64_t points = 1000;
  for (const json& entry : all["leaderboardEntries"]) {
    EXPECT_EQ(entry["position"], std::to_string(++position));
    const std::int64_t mine = std::stoll(entry["points"].get<std::string>());
    EXPECT_LE(mine, points);
    points = mine;
    EXPECT_TRUE(entry["leaderboardEntryId"].is_string());
    EXPECT_FALSE(entry["publicUserResource"].contains("email")) << "strangers see it";
  }
}

TEST_F(Leaderboards, PointsAreOfTheFourWeeksThatEndWithTheDay) {
  for (int weeksLater = 0; weeksLater < 4; ++weeksLater) {
    const Day last = *parseDay("2025-06-18") + std::chrono::weeks{weeksLater};
    const std::string first = formatDay(last - std::chrono::days{27});
    const json average =
        read("users/1001/averageScores?reportingPeriodType=CUSTOM&startDate=" + first +
             "&endDate=" + formatDay(last));
    const json board = read("leaderboards?userId=1001&localDate=" + formatDay(last));
    const auto own = std::ranges::find_if(board["leaderboardEntries"], [](const json& entry) {
      return entry["publicUserResource"]["userId"] == "1001";
    });
    ASSERT_NE(own, board["leaderboardEntries"].end());
    EXPECT_EQ(own->at("points"),
              std::to_string(std::llround(average["averageScore"].get<double>() * 10)))
        << first;
  }
}

class Rewards : public SandboxTest {};

TEST_F(Rewards, TheTokenIsOneJsonString) {
  const json token = read("jwtgenerator");
  ASSERT_TRUE(token.is_string());
  EXPECT_EQ(sandbox().backend().signingKey().verify(token.get<std::string>(), ServerClock{0}.now()),
            "1001");
}

}  // namespace
}  // namespace orvane::sandbox::test
