// SPDX-License-Identifier: Apache-2.0
//
// Scores, leaderboards, discounts and reward tokens, held against the trips they come from.
#include "Fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace orvane::sandbox::test {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

constexpr const char* period = "startDate=2025-06-05&endDate=2025-06-17";

class Scores : public SandboxTest {
 protected:
  struct Expected {
    double average = 0;
    double highest = 0;
    double lowest = 100;
  };

  Expected fromTrips(const std::string& path) {
    Expected expected;
    double kilometres = 0;
    for (const json& trip : read(path)) {
      if (!trip.contains("tripScore")) continue;
      const double score = trip["tripScore"];
      kilometres += trip["kilometers"].get<double>();
      expected.average += score * trip["kilometers"].get<double>();
      expected.highest = std::max(expected.highest, score);
      expected.lowest = std::min(expected.lowest, score);
    }
    expected.average /= kilometres;
    return expected;
  }
};

TEST_F(Scores, AverageAndStatisticAgreeWithTheTripsOfThePeriod) {
  const std::string query = std::string{"?"} + period;
  const std::pair<std::string, std::string> rows[] = {
      {"users/1002", "users/1002/trips" + query + "&expand=scores"},
      {"vehicles/3001", "vehicles/3001/trips" + query + "&user=&expand=scores"}};
  for (const auto& [subject, tripsPath] : rows) {
    const Expected expected = fromTrips(tripsPath);
    const json average = read(subject + "/averageScores?reportingPeriodType=CUSTOM&" + period);
    EXPECT_NEAR(average["averageScore"].get<double>(), expected.average, 0.006);
    EXPECT_EQ(average["highestScore"], expected.highest);
    EXPECT_EQ(average["lowestScore"], expected.lowest);
    EXPECT_TRUE(average["tripScoringAverage"]["trackingType"].is_string());

    const json statistic =
        read(subject + "/statisticScores?" + period + "&reportingPeriodType=CUSTOM");
    EXPECT_EQ(statistic["averageScore"], average["averageScore"]);
    EXPECT_EQ(statistic["tripScoringDailyAggregate"].back()["averageScore"],
              average["averageScore"]);
  }
}

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
    return std::pair{formatDay(dayOf(average["periodStartDate"].get<std::int64_t>())),
                     formatDay(dayOf(average["periodEndDate"].get<std::int64_t>()))};
  };
  using Days = std::pair<std::string, std::string>;
  EXPECT_EQ(days("userScoreWeek=0"), (Days{"2025-06-16", "2025-06-22"}));
  EXPECT_EQ(days("userScoreWeek=25"), (Days{"2024-12-23", "2024-12-29"}));
  EXPECT_EQ(days("reportingPeriodType=DAY"), (Days{"2025-06-18", "2025-06-18"}));
  EXPECT_EQ(days("reportingPeriodType=DAY&reportingPeriodCount=3"),
            (Days{"2025-06-16", "2025-06-18"}));
  EXPECT_EQ(days("reportingPeriodType=MONTH&reportingPeriodCount=7"),
            (Days{"2024-12-01", "2025-06-18"}));
}

TEST_F(Scores, APeriodWithoutTripsHasNoScore) {
  const json average = read(
      "users/1001/"
      "averageScores?reportingPeriodType=CUSTOM&startDate=2567-01-01&endDate=2567-02-01");
  EXPECT_FALSE(average.contains("averageScore"));
  EXPECT_FALSE(average.contains("tripScoringAverage"));
  EXPECT_EQ(read("users/1001/statisticScores?startDate=2567-01-01&endDate=2567-01-01"
                 "&reportingPeriodType=today"),
            json({{"tripScoringDailyAggregate", json::array()}}));
}

TEST_F(Scores, MalformedQueriesAreRefused) {
  for (const char* query :
       {"averageScores", "averageScores?userScoreWeek=-1", "averageScores?userScoreWeek=x",
        "averageScores?userScoreWeek=1&reportingPeriodType=DAY",
        "averageScores?reportingPeriodType=CUSTOM",
        "averageScores?reportingPeriodType=CUSTOM&startDate=2025-06-01",
        "averageScores?reportingPeriodType=day",
        "averageScores?reportingPeriodType=DAY&startDate=2025-06-01",
        "averageScores?reportingPeriodType=DAY&reportingPeriodCount=0",
        "statisticScores?startDate=2025-06-01&endDate=2025-06-02",
        "statisticScores?startDate=2025-06-01&endDate=2025-06-02&reportingPeriodType=DAY"}) {
    EXPECT_EQ(get(std::string{"users/1001/"} + query).status, 400) << query;
  }
  EXPECT_EQ(get("vehicles/3003/averageScores?userScoreWeek=0").status, 403);
}

class Leaderboards : public SandboxTest {
 protected:
  json board(const std::string& filters = "") {
    return read("leaderboards?userId=1001&localDate=2025-06-18" + filters);
  }
};

TEST_F(Leaderboards, EntriesAreRankedAndNumbersTravelAsTexts) {
  const json all = board();
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

TEST_F(Leaderboards, FiltersKeepThoseTheyName) {
  const auto everyone = [this](const std::string& filter, auto&& holds) {
    const json found = board(filter)["leaderboardEntries"];
    EXPECT_FALSE(found.empty()) << filter;
    for (const json& entry : found) EXPECT_TRUE(holds(entry["publicUserResource"])) << filter;
    return found.size();
  };
  const auto women =
      everyone("&gender=female", [](const json& user) { return user["gender"] == "female"; });
  EXPECT_LT(women, board()["leaderboardEntries"].size());
  everyone("&gender=non-binary", [](const json& user) { return user["userId"] == "1006"; });
  everyone("&location=68300", [](const json& user) { return user["city"] == "Saint-Louis"; });
  const std::set<std::string> young{"1003", "1006", "1102", "1103", "1108", "1113"};
  everyone("&age_lower=18&age_upper=25",
           [&](const json& user) { return young.contains(user["userId"]); });
  EXPECT_TRUE(board("&age_lower=0&age_upper=10")["leaderboardEntries"].empty());

  for (const char* query :
       {"leaderboards", "leaderboards?userId=1001", "leaderboards?userId=1001&localDate=2025-6-1",
        "leaderboards?userId=1001&localDate=2025-06-18&age_lower=x",
        "leaderboards?userId=1001&localDate=2025-06-18&age_lower=9&age_upper=8"}) {
    EXPECT_EQ(get(query).status, 400) << query;
  }
  EXPECT_EQ(get("leaderboards?userId=1002&localDate=2025-06-18").status, 403);
}

TEST_F(Leaderboards, WhoOptsOutDisappears) {
  EXPECT_EQ(board()["optedIn"], true);
  EXPECT_EQ(board()["inLeaderboard"], true);
  EXPECT_EQ(post("leaderboards?userId=1001&action=optout").status, 200);
  start();  // as long as its data lives
  EXPECT_EQ(board()["optedIn"], false);
  EXPECT_EQ(board()["inLeaderboard"], false);
  EXPECT_EQ(post("leaderboards?userId=1001&action=optin").status, 200);
  EXPECT_EQ(board()["inLeaderboard"], true);
  EXPECT_EQ(post("leaderboards?userId=1001").status, 400);
  EXPECT_EQ(post("leaderboards?userId=1002&action=optin").status, 403);
}

class Rewards : public SandboxTest {};

TEST_F(Rewards, TheDiscountFollowsTheSchemeThatIsPublished) {
  const json scheme = read("discountMetadata");
  const json discount = read("users/1002/discount?expand=scores");
  double earned = 0;
  for (const json& step : scheme["discountsForScores"]) {
    if (discount["scores"]["overall"] >= step["minimumScoreRequired"]) {
      earned = std::max(earned, step["projectDiscount"].get<double>());
    }
  }
  EXPECT_EQ(discount["projectedDiscount"], earned);
  EXPECT_GE(discount["projectedDiscountMaximum"], discount["projectedDiscountMinimum"]);
  EXPECT_FALSE(read("users/1002/discount").contains("scores"));
}

TEST_F(Rewards, TheTokenIsOneJsonString) {
  const json token = read("jwtgenerator");
  ASSERT_TRUE(token.is_string());
  EXPECT_EQ(sandbox().backend().signingKey().verify(token.get<std::string>(), ServerClock{0}.now()),
            "1001");
}

}  // namespace
}  // namespace orvane::sandbox::test
