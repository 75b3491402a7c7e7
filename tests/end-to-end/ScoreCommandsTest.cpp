// SPDX-License-Identifier: Apache-2.0
// The commands around scores and what they earn: what they send, print, draw and refuse.
#include "CommandLine.h"

#include <algorithm>
#include <chrono>

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSubsetOf;
using testing::Lt;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

using nlohmann::json;

// The backend and the device agree on a day: 2025-06-18, at noon by UTC.
class ScoreCommandsTest : public testing::Test {
 protected:
  ScoreCommandsTest() {
    using namespace std::chrono;
    const auto noon = sys_days(year(2025) / 6 / 18) + hours(12);
    const auto offset = duration_cast<seconds>(noon - system_clock::now());
    environment_ =
        with(settingsOf(sandbox_), {{"ORVANE_CLOCK_OFFSET", std::to_string(offset.count())},
                                    {"ORVANE_TOKEN", sandbox_.developmentToken()}});
  }

  [[nodiscard]] json jsonOf(const std::string& line) const {
    return test::jsonOf(line, environment_);
  }

  SandboxProcess sandbox_{{"--weeks", "5", "--now", "2025-06-18T12:00:00Z"}};
  Environment environment_;
};

TEST_F(ScoreCommandsTest, SendsWhatTheOperationsSend) {
  struct Row {
    const char* line;
    std::string request;
    const char* zone = "UTC";
  };
  const std::string user = "GET users/1001/";
  const std::string vehicle = "GET vehicles/3001/";
  const auto aggregate = [](const std::string& from, const std::string& to,
                            const std::string& type) {
    return "statisticScores?startDate=" + from + "&endDate=" + to + "&reportingPeriodType=" + type;
  };
  const auto average = [](const std::string& from, const std::string& to) {
    return "averageScores?reportingPeriodType=CUSTOM&startDate=" + from + "&endDate=" + to;
  };
  const std::string today = "2025-06-18";
  const Row rows[] = {
      {"scores aggregate today", user + aggregate(today, today, "today")},
      {"scores aggregate last-7-days", user + aggregate("2025-06-11", today, "last7Days")},
      {"scores aggregate last-week", user + aggregate("2025-06-11", today, "last7Days")},
      {"scores aggregate last-30-days", user + aggregate("2025-05-19", today, "last30Days")},
      {"scores aggregate last-month", user + aggregate("2025-05-19", today, "last30Days")},
      {"scores aggregate last-90-days", user + aggregate("2025-03-20", today, "last90Days")},
      {"scores aggregate last-year", user + aggregate("2024-06-18", today, "lastYear")},
      {"scores aggregate --days 7", user + aggregate("2025-06-11", today, "CUSTOM")},
      {"scores aggregate --days 0 --vehicle 3001", vehicle + aggregate(today, today, "CUSTOM")},
      {"scores aggregate --from 2025-06-01 --to 2025-06-01 --vehicle 3001",
       vehicle + aggregate("2025-06-01", "2025-06-01", "CUSTOM")},
      {"scores aggregate --from 2025-06-01", user + aggregate("2025-06-01", today, "CUSTOM")},
      {"scores average --days 7", user + average("2025-06-11", today)},
      {"scores average --days 31 --vehicle 3001", vehicle + average("2025-05-18", today)},
      {"scores average --from 2024-02-29 --to 2025-06-17",
       user + average("2024-02-29", "2025-06-17")},
      {"scores average --week 3", user + "averageScores?userScoreWeek=3"},
      {"leaderboard show", "GET leaderboards?userId=1001&localDate=2025-06-18"},
      // Where it is tomorrow already, and where it is still early.
      {"scores aggregate today", user + aggregate("2025-06-19", "2025-06-19", "today"),
       "Pacific/Kiritimati"},
      {"scores average --days 1", user + average("2025-06-18", "2025-06-19"), "Pacific/Kiritimati"},
      {"scores aggregate --from 2025-06-17 --to 2025-06-18",
       user + aggregate("2025-06-17", "2025-06-18", "CUSTOM"), "Pacific/Pago_Pago"},
      {"leaderboard show", "GET leaderboards?userId=1001&localDate=2025-06-19",
       "Pacific/Kiritimati"},
      {"leaderboard show --day 2025-06-01 --location 68300 --age 18-25 --gender non-binary",
       "GET leaderboards?userId=1001&localDate=2025-06-01&age_lower=18&age_upper=25"
       "&gender=non-binary&location=68300"},
      {"leaderboard opt-out", "POST leaderboards?userId=1001&action=optout"},
      {"leaderboard opt-in", "POST leaderboards?userId=1001&action=optin"},
      {"discount show --expand scores", "GET users/1001/discount?expand=scores"},
      {"discount scheme", "GET discountMetadata"},
      {"rewards token", "GET jwtgenerator"},
  };
  for (const Row& row : rows) {
    check({prints(row.line, testing::_)}, with(environment_, {{"ORVANE_TIME_ZONE", row.zone}}));
    EXPECT_EQ(sandbox_.lastRequest(), row.request) << row.line;
  }
}

// Every way to the scores of the same days comes to what the trips of these days say.
TEST_F(ScoreCommandsTest, ScoresAndTripsAgree) {
  const std::string days = " --from 2025-05-19 --to 2025-06-18";
  // The list rounds to a tenth of a point and of a kilometre.
  std::vector<Words> trips =
      cellsOf(orvane("trips list --all --expand scores" + days, environment_).output);
  const Words titles = trips.at(0);
  trips.erase(trips.begin());
  const auto column = [&](const char* title) {
    return static_cast<std::size_t>(std::ranges::find(titles, title) - titles.begin());
  };
  double sum = 0;
  double kilometres = 0;
  for (const Words& trip : trips) {
    const std::string& score = trip.at(column("score"));
    const std::string& distance = trip.at(column("distance"));
    if (score.empty()) continue;
    sum += std::stod(score) * std::stod(distance);
    kilometres += std::stod(distance);
  }
  ASSERT_GT(kilometres, 0);
  const json average = jsonOf("scores average" + days);
  const json aggregate = jsonOf("scores aggregate" + days);
  EXPECT_NEAR(average["averageScore"].get<double>(), sum / kilometres, 0.1);
  EXPECT_EQ(aggregate["averageScore"], average["averageScore"]);
  EXPECT_EQ(aggregate, jsonOf("scores aggregate last-30-days"));
  EXPECT_EQ(average, jsonOf("scores average --days 30"));
  const json ofVehicle = jsonOf("scores aggregate --vehicle 3001" + days);
  EXPECT_EQ(ofVehicle, jsonOf("scores aggregate --vehicle 3001 --days 30"));
  EXPECT_EQ(ofVehicle["averageScore"],
            jsonOf("scores average --vehicle 3001" + days)["averageScore"]);
}

TEST_F(ScoreCommandsTest, ShowsDaysAndTheirChart) {
  const auto chart = HasSubstr("\n\nScore per day, 2025-06-11 to 2025-06-18\n");
  const auto blocks = has("┤", "█");
  const auto ascii = AllOf(has(" ++--", "#"), Not(HasSubstr("█")));
  check({prints("scores aggregate last-week",
                AllOf(ContainsRegex(
                          "^average score\t[0-9.]+\nhighest score\t[0-9.]+\ndays with a score\t"
                          "[1-8]\n\ndays\nday\tscore\taverage\tdriving\trecorded by\n"
                          "2025-06-1[1-8]\t[0-9.]+\t[0-9.]+\t[^\t]+\tMOBILE\n"),
                      Not(HasSubstr("Score per day")))),
         prints("scores average --days 7",
                AllOf(ContainsRegex(
                          "^average score\t[0-9.]+\nhighest score\t[0-9.]+\nlowest score\t"
                          "[0-9.]+\nfrom\t2025-06-11\nto\t2025-06-18\nrecorded by\tMOBILE\n"),
                      ContainsRegex("\ncomponents: harsh braking\t[0-9.]+\n"))),
         prints("scores aggregate --from 2020-01-01 --to 2020-01-31 --format table",
                "days with a score  0\n"),
         prints("scores aggregate last-week --format table", AllOf(chart, ascii))},
        environment_);
  const std::pair<Environment, testing::Matcher<std::string>> locales[] = {
      {{{"LANG", "de_CH.UTF-8"}}, blocks},
      {{{"LANG", "C"}, {"LC_ALL", "en_US.utf8@currency"}}, blocks},
      {{{"LC_ALL", ""}, {"LC_CTYPE", "C"}, {"LANG", "C.UTF-8"}}, ascii},
      {{{"LANG", "de_CH.ISO-8859-1"}}, ascii},
  };
  for (const auto& [locale, drawn] : locales) {
    SCOPED_TRACE(testing::PrintToString(locale));
    check({prints("scores aggregate last-week --format table", AllOf(chart, drawn))},
          with(environment_, locale));
  }
}

TEST_F(ScoreCommandsTest, DrawsIntoAFile) {
  const TemporaryFolder folder;
  const std::string file = folder / "scores.svg";
  const std::string draw = "scores aggregate --days 30 --vehicle 3001 --svg ";
  check({prints(draw + file, StartsWith("average score\t"))}, environment_);
  const std::string document = contentsOf(file);
  EXPECT_THAT(document, has("<?xml", ">Score per day of vehicle 3001</title>",
                            "2025-05-19 to 2025-06-18", "<title>2025-06-"));
  check({prints(draw + "-", document),
         prints(draw + file + " --json", StartsWith("{\n  \"highestScore\"")),
         fails(draw + "/nowhere/scores.svg", 74, "/nowhere/scores.svg"),
         fails(draw + "''", 64, "a path")},
        environment_);
}

TEST_F(ScoreCommandsTest, SayWhatDoesNotGoTogether) {
  const std::string vehicles = "--vehicle goes with --days, or --from and --to";
  check(
      {
          fails("scores aggregate", 64, "which days?"),
          fails("scores aggregate --vehicle 3001", 64, "which days?"),
          fails("scores average", 64, "which days? Give --week"),
          fails("scores aggregate last-week --vehicle 3001", 64, vehicles),
          fails("scores average --week 1 --vehicle 3001", 64, vehicles),
          fails("scores aggregate today --days 7", 64, "does not go with --days"),
          fails("scores aggregate today --to 2025-06-01", 64, "does not go with"),
          fails("scores average --week 1 --days 7", 64, "does not go with"),
          fails("scores average --days 7 --from 2025-06-01", 64, "--days does not go with --from"),
          fails("scores average --to 2025-06-01", 64, "--to needs --from"),
          fails("scores average --from 2025-06-02 --to 2025-06-01", 64, "before"),
          fails("scores average last-week", 64, "last-week"),
          fails("scores aggregate last-decade", 64, "'last-decade' is not one of"),
          fails("scores aggregate --days -1", 64, "a whole number from 0 up"),
          fails("scores aggregate --days 18446744073709551616", 64, "a whole number"),
          fails("scores aggregate --days 18446744073709551615", 64,
                "exceeds the largest signed 64-bit integer"),
          fails("scores average --days 9223372036854775807", 64, "the calendar can't"),
          fails("scores average --days 7 --vehicle ''", 64, "an identifier"),
          fails("scores average --days 7 --vehicle 3003", 43, "does not allow"),
          fails("scores average --days 7 --vehicle none", 44, "does not know"),
          fails("scores average --week 18446744073709551615", 40, "(400)"),
          fails("leaderboard show --age 25-18", 64, "as 18-25"),
          fails("leaderboard show --age 25", 64, "as 18-25"),
          fails("leaderboard show --age 18--5", 64, "as 18-25"),
          fails("leaderboard show --age 18-99999999999999999999", 64, "as 18-25"),
          fails("leaderboard show --age 18-200", 40, "(400)"),
          fails("leaderboard show --day 2025-02-29", 64, "a day, as YYYY-MM-DD"),
          fails("discount show --expand trips", 64, "'trips' is not one of"),
      },
      environment_);
  // Records that are none.
  const std::pair<json, int> spoilt[] = {{"empty", 22}, {"wrongType", 21}, {"null", 21}};
  for (const auto& [body, code] : spoilt) {
    sandbox_.behave();
    sandbox_.misbehave({{"path", "Scores|leaderboards|iscount|jwt"}, {"body", body}});
    check({fails("scores aggregate today", code), fails("scores average --week 0", code),
           fails("leaderboard show", code), fails("discount show", code),
           fails("discount scheme", code), fails("rewards token", code)},
          environment_);
  }
}

TEST_F(ScoreCommandsTest, LeaderboardsFollowTheirFiltersAndWhoOptsOut) {
  const auto drivers = [&](const std::string& filters) {
    Words ids;
    const json board = jsonOf("leaderboard show " + filters);
    for (const json& entry : board["leaderboardEntries"]) {
      ids.push_back(entry["publicUserResource"]["userId"]);
    }
    return ids;
  };
  const std::size_t everybody = drivers("").size();
  EXPECT_THAT(drivers("--gender non-binary"), testing::ElementsAre("1006"));
  EXPECT_THAT(
      drivers("--age 18-25"),
      AllOf(SizeIs(testing::Gt(1U)), IsSubsetOf({"1003", "1006", "1102", "1103", "1108", "1113"})));
  EXPECT_EQ(drivers("--age 0-150").size(), everybody);
  EXPECT_THAT(drivers("--location 68300"), SizeIs(Lt(everybody / 2)));
  EXPECT_THAT(drivers("--location nowhere"), IsEmpty());
  EXPECT_THAT(drivers("--day 2015-06-18"), IsEmpty());

  const auto anna = HasSubstr("\t1001\n");
  const auto board = [](const char* participates) {
    return StartsWith("taking part\t" + std::string(participates) + "\nranked\t" + participates +
                      "\namong the best\t");
  };
  check({prints("leaderboard show",
                AllOf(board("yes"), anna, HasSubstr("\nplace\tpoints\tdriver\tcity\tid\n1\t"))),
         prints("leaderboard opt-out", "Leaderboards don't show you any more.\n"),
         prints("leaderboard show", AllOf(board("no"), Not(anna))),
         prints("leaderboard opt-out --json", ""), prints("leaderboard show", board("no")),
         prints("leaderboard opt-in", "Leaderboards show you.\n"),
         prints("leaderboard show", AllOf(board("yes"), anna))},
        environment_);
}

TEST_F(ScoreCommandsTest, ShowsWhatDrivingEarns) {
  check(
      {prints("discount show",
              MatchesRegex("current\t[0-9]+\nprojected\t[0-9]+\nprojected, at least\t[0-9]+\n"
                           "projected, at most\t[0-9]+\npossible, from\t0\npossible, up to\t25\n")),
       prints("discount scheme",
              "distance needed\t250 km\n\ndiscounts\nscore from\tup to\tdiscount\n95\t\t25\n"
              "90\t95\t20\n85\t90\t15\n78\t85\t10\n70\t78\t5\n0\t70\t0\n"),
       prints("rewards token", MatchesRegex("[A-Za-z0-9_-]+(\\.[A-Za-z0-9_-]+){2}\n"))},
      environment_);
  EXPECT_TRUE(jsonOf("rewards token").is_string());

  // The discount is that of the score of the last 90 days.
  const double score = jsonOf("scores average --days 90")["averageScore"];
  double earned = -1;
  const json scheme = jsonOf("discount scheme");
  for (const json& step : scheme["discountsForScores"]) {
    const bool isReached = score >= step["minimumScoreRequired"].get<double>();
    if (isReached) earned = std::max(earned, step["projectDiscount"].get<double>());
  }
  EXPECT_EQ(jsonOf("discount show")["projectedDiscount"], earned);
}

}  // namespace
}  // namespace orvane::test
