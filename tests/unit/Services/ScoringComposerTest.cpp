// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Services/Scoring/ScoringComposer.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/FixedResolvers.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {
namespace {

using Aggregate = ScoringAggregateComposer;
using Average = ScoringAverageComposer;
using ByVehicle = ScoringVehicleComposer;
using namespace std::chrono_literals;

constexpr Date utc(std::chrono::year_month_day day, std::chrono::minutes time = 0min) {
  return std::chrono::sys_days(day) + time;
}

const Date from = utc(2024y / 2 / 28, 12h);
const Date to = utc(2024y / 3 / 9, 12h);

TEST(ScoringComposerTest, pathsAndQueriesReadAsTheBackendExpectsThem) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "UTC"});
  const MovableClock clock(utc(2024y / 3 / 10, 10h));
  struct Row {
    std::string_view path;
    std::optional<std::string> query;
    std::unique_ptr<URLComposer> composer;
  };
  const auto aggregate = [](auto type) { return std::make_unique<Aggregate>(type); };
  const auto average = [](auto type, std::optional<std::int64_t> count = {}) {
    return std::make_unique<Average>(type, count);
  };
  const auto vehicle = [](auto type) { return std::make_unique<ByVehicle>(type); };
  using Last = Aggregate::Period;
  constexpr auto most = std::numeric_limits<std::uint64_t>::max();

  const Row rows[] = {
      {"users/U1/statisticScores",
       "startDate=2024-02-28&endDate=2024-03-09&reportingPeriodType=CUSTOM",
       aggregate(Aggregate::DateRange{from, to})},
      {"users/U1/statisticScores",
       "startDate=2024-03-09&endDate=2024-02-28&reportingPeriodType=CUSTOM",
       aggregate(Aggregate::DateRange{to, from})},
      {"users/U1/statisticScores",
       "startDate=2024-03-03&endDate=2024-03-10&reportingPeriodType=last7Days",
       aggregate(Last::last7Days)},
      {"users/U1/statisticScores",
       "startDate=2024-02-09&endDate=2024-03-10&reportingPeriodType=last30Days",
       aggregate(Last::last30Days)},
      {"users/U1/statisticScores",
       "startDate=2023-12-11&endDate=2024-03-10&reportingPeriodType=last90Days",
       aggregate(Last::last90Days)},
      {"users/U1/statisticScores",
       "startDate=2023-03-11&endDate=2024-03-10&reportingPeriodType=lastYear",
       aggregate(Last::lastYear)},
      {"users/U1/statisticScores",
       "startDate=2024-03-10&endDate=2024-03-10&reportingPeriodType=today", aggregate(Last::today)},

      {"users/U1/averageScores", "userScoreWeek=0", average(Average::WEEK{0})},
      {"users/U1/averageScores", "userScoreWeek=18446744073709551615",
       average(Average::WEEK{most})},
      {"users/U1/averageScores", "userScoreWeek=7", average(Average::WEEK{7}, 3)},
      {"users/U1/averageScores",
       "reportingPeriodType=CUSTOM&startDate=2024-02-28&endDate=2024-03-09",
       average(Average::CUSTOM{from, to})},
      {"users/U1/averageScores",
       "reportingPeriodType=CUSTOM&startDate=2024-02-28&endDate=2024-03-09&reportingPeriodCount=2",
       average(Average::CUSTOM{from, to}, 2)},
      {"users/U1/averageScores", "reportingPeriodType=DAY", average(Average::Period::DAY)},
      {"users/U1/averageScores", "reportingPeriodType=DAY&reportingPeriodCount=3",
       average(Average::Period::DAY, 3)},
      {"users/U1/averageScores", "reportingPeriodType=MONTH&reportingPeriodCount=-1",
       average(Average::Period::MONTH, -1)},
      {"users/U1/averageScores", "reportingPeriodType=MONTH&reportingPeriodCount=0",
       average(Average::Period::MONTH, 0)},

      {"vehicles/V1/statisticScores",
       "startDate=2024-02-28&endDate=2024-03-09&reportingPeriodType=CUSTOM",
       vehicle(ByVehicle::AggregateScoring{"V1", from, to})},
      {"vehicles/V1/averageScores",
       "reportingPeriodType=CUSTOM&startDate=2024-02-28&endDate=2024-03-09",
       vehicle(ByVehicle::AverageScoring{"V1", from, to})},
      {"vehicles/V1/trips?limit=10&expand=scores&user=U1", std::nullopt,
       vehicle(ByVehicle::Trip{"V1", 10, true})},
      {"vehicles/V1/trips?limit=10&&user=U1", std::nullopt,
       vehicle(ByVehicle::Trip{"V1", 10, false})},
      {"vehicles//trips?limit=-5&&user=U1", std::nullopt, vehicle(ByVehicle::Trip{"", -5, false})},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.composer->path("U1"), row.path);
    EXPECT_EQ(row.composer->query(), row.query);
    EXPECT_FALSE(row.composer->body());
    EXPECT_FALSE(row.composer->additionalHeader());
  }
}

TEST(ScoringComposerTest, theQuestionMarkOfTheTripsPathIsAPathsOwn) {
  struct Row {
    bool expands;
    std::string_view url;
  };
  const Row rows[] = {
      {true, "/vehicles/V1/trips%3Flimit=10&expand=scores&user=42"},
      {false, "/vehicles/V1/trips%3Flimit=10&&user=42"},
  };
  for (const Row& row : rows) {
    const auto url = ByVehicle(ByVehicle::Trip{"V1", 10, row.expands}).url(exampleDetails());
    ASSERT_TRUE(url);
    EXPECT_EQ(url->path(), "/kavra/api/sdk" + std::string(row.url));
    EXPECT_EQ(url->query(), std::nullopt);
  }
}

// Days of 86,400 seconds, whatever the calendar and the clocks on the wall do meanwhile.
TEST(ScoringComposerTest, relativePeriodsCountBackInSeconds) {
  using enum Aggregate::Period;
  struct Row {
    std::string_view zone;
    Date now;
    Aggregate::Period period;
    std::string_view start, end;
  };
  const Row rows[] = {
      // Ten in the morning of the day on which clocks go forward in New York.
      {"America/New_York", utc(2024y / 3 / 10, 14h), last7Days, "2024-03-03", "2024-03-10"},
      {"America/New_York", utc(2024y / 3 / 10, 14h), today, "2024-03-10", "2024-03-10"},
      // One instant, three days on the wall.
      {"UTC", utc(2024y / 3 / 1, 10h + 30min), last30Days, "2024-01-31", "2024-03-01"},
      {"Pacific/Kiritimati", utc(2024y / 3 / 1, 10h + 30min), last30Days, "2024-02-01",
       "2024-03-02"},
      {"Pacific/Pago_Pago", utc(2024y / 3 / 1, 10h + 30min), last30Days, "2024-01-30",
       "2024-02-29"},
      // A second before midnight, and at midnight.
      {"Asia/Kolkata", utc(2024y / 6 / 15, 18h + 30min) - Seconds(0.001), today, "2024-06-15",
       "2024-06-15"},
      {"Asia/Kolkata", utc(2024y / 6 / 15, 18h + 30min), today, "2024-06-16", "2024-06-16"},
      // Clocks went forward in Zurich on 31 March: seven days before half past midnight is half
      // past eleven in the evening, a day further back.
      {"Europe/Zurich", utc(2024y / 4 / 2, 22h + 30min), last7Days, "2024-03-26", "2024-04-03"},
      {"Europe/Zurich", utc(2024y / 4 / 2, 23h + 30min), last7Days, "2024-03-27", "2024-04-03"},
      {"Europe/Zurich", utc(2024y / 4 / 7, 22h + 30min), last7Days, "2024-04-01", "2024-04-08"},
      // They went back on 27 October: half past eleven becomes half past midnight, a day later.
      {"Europe/Zurich", utc(2024y / 10 / 30, 22h + 30min), last7Days, "2024-10-24", "2024-10-30"},
      {"Europe/Zurich", utc(2024y / 10 / 30, 21h + 30min), last7Days, "2024-10-23", "2024-10-30"},
      {"Europe/Zurich", utc(2024y / 12 / 15, 22h + 30min), last90Days, "2024-09-17", "2024-12-15"},
      // A leap year is a day longer than `lastYear`.
      {"UTC", utc(2024y / 12 / 31, 12h), lastYear, "2024-01-01", "2024-12-31"},
      {"UTC", utc(2025y / 1 / 1, 12h), lastYear, "2024-01-02", "2025-01-01"},
      {"UTC", utc(2024y / 2 / 29, 12h), lastYear, "2023-03-01", "2024-02-29"},
  };
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = std::string(row.zone)});
    const MovableClock clock(row.now);
    EXPECT_EQ(Aggregate(row.period).query(),
              "startDate=" + std::string(row.start) + "&endDate=" + std::string(row.end) +
                  "&reportingPeriodType=" + std::string(wireText(row.period)))
        << row.zone;
  }
}

TEST(ScoringComposerTest, todayIsWhenTheComposerWasMade) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "UTC"});
  MovableClock clock(utc(2024y / 3 / 10, 23h + 59min));
  Aggregate composer(Aggregate::Period::today);
  clock.advance(1h);
  EXPECT_EQ(composer.query(), "startDate=2024-03-10&endDate=2024-03-10&reportingPeriodType=today");
  composer.today = to;
  EXPECT_EQ(composer.query(), "startDate=2024-03-09&endDate=2024-03-09&reportingPeriodType=today");
}

// As with a leaderboard of no day.
TEST(ScoringComposerTest, aDateWithoutADayLeavesTheWholeQueryOut) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "UTC"});
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const double seconds :
       {infinity, -infinity, std::numeric_limits<double>::quiet_NaN(), 1e300}) {
    const Date none = dateFromSeconds(seconds);
    for (const auto& [start, end] : {std::pair{none, to}, {from, none}, {none, none}}) {
      EXPECT_EQ(Aggregate(Aggregate::DateRange{start, end}).query(), std::nullopt) << seconds;
      EXPECT_EQ(Average(Average::CUSTOM{start, end}, 2).query(), std::nullopt) << seconds;
      EXPECT_EQ(ByVehicle(ByVehicle::AggregateScoring{"V1", start, end}).query(), std::nullopt);
      EXPECT_EQ(ByVehicle(ByVehicle::AverageScoring{"V1", start, end}).query(), std::nullopt);
    }
    const MovableClock clock(none);
    EXPECT_EQ(Aggregate(Aggregate::Period::today).query(), std::nullopt) << seconds;
    EXPECT_EQ(Aggregate(Aggregate::Period::lastYear).query(), std::nullopt) << seconds;
    EXPECT_EQ(Average(Average::Period::DAY).query(), "reportingPeriodType=DAY");
  }
}

TEST(ScoringComposerTest, datesAreWrittenAsTheDeviceWritesThem) {
  struct Row {
    DeviceSettings device;
    std::string_view query;
  };
  const Row rows[] = {
      {{.locale = "de_DE", .timeZone = "UTC"},
       "reportingPeriodType=CUSTOM&startDate=2024-02-28&endDate=2024-03-09"},
      {{.locale = "th_TH", .timeZone = "UTC"},
       "reportingPeriodType=CUSTOM&startDate=2567-02-28&endDate=2567-03-09"},
      {{.locale = "ar_EG", .timeZone = "UTC"},
       "reportingPeriodType=CUSTOM&startDate=٢٠٢٤-٠٢-٢٨&endDate=٢٠٢٤-٠٣-٠٩"},
      {{.locale = "en_US", .timeZone = "Pacific/Auckland"},
       "reportingPeriodType=CUSTOM&startDate=2024-02-29&endDate=2024-03-10"},
  };
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings(row.device);
    EXPECT_EQ(Average(Average::CUSTOM{from, to}).query(), row.query);
  }
}

}  // namespace
}  // namespace orvane
