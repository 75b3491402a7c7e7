// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Values.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Scoring/ScoringComposer.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/FixedResolvers.h>

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

const Date from = utc(2024y / 2 / 28);
const Date to = utc(2024y / 3 / 9);

// What no operation asks for.
TEST(ScoringComposerTest, queriesReadAsTheBackendExpectsThem) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "UTC"});
  EXPECT_EQ(Aggregate(Aggregate::DateRange{to, from}).query(),
            "startDate=2024-03-09&endDate=2024-02-28&reportingPeriodType=CUSTOM");
  const std::pair<Average, std::string_view> rows[] = {
      {Average(Average::WEEK{std::numeric_limits<std::uint64_t>::max()}),
       "userScoreWeek=18446744073709551615"},
      {Average(Average::WEEK{7}, 3), "userScoreWeek=7"},
      {Average(Average::CUSTOM{from, to}, 2),
       "reportingPeriodType=CUSTOM&startDate=2024-02-28&endDate=2024-03-09&reportingPeriodCount=2"},
      {Average(Average::Period::DAY), "reportingPeriodType=DAY"},
      {Average(Average::Period::DAY, 3), "reportingPeriodType=DAY&reportingPeriodCount=3"},
      {Average(Average::Period::MONTH, -1), "reportingPeriodType=MONTH&reportingPeriodCount=-1"},
      {Average(Average::Period::MONTH, 0), "reportingPeriodType=MONTH&reportingPeriodCount=0"},
  };
  for (const auto& [composer, query] : rows) EXPECT_EQ(composer.query(), query);
}

TEST(ScoringComposerTest, theQuestionMarkOfTheTripsPathIsAPathsOwn) {
  const std::pair<ByVehicle::Trip, std::string> rows[] = {
      {{"V1", 10, true}, "vehicles/V1/trips?limit=10&expand=scores&user=42"},
      {{"V1", 10, false}, "vehicles/V1/trips?limit=10&&user=42"},
      {{"", -5, false}, "vehicles//trips?limit=-5&&user=42"},
  };
  for (const auto& [trip, path] : rows) {
    const ByVehicle composer(trip);
    EXPECT_EQ(composer.path("42"), path);
    EXPECT_EQ(composer.query(), std::nullopt);
    std::string encoded = "/kavra/api/sdk/" + path;
    encoded.replace(encoded.find('?'), 1, "%3F");
    EXPECT_EQ(composer.url(exampleDetails())->path(), encoded);
    EXPECT_EQ(composer.url(exampleDetails())->query(), std::nullopt);
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
      {"UTC", utc(2024y / 12 / 31), lastYear, "2024-01-01", "2024-12-31"},
      {"UTC", utc(2025y / 1 / 1), lastYear, "2024-01-02", "2025-01-01"},
      {"UTC", utc(2024y / 2 / 29), lastYear, "2023-03-01", "2024-02-29"},
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
  for (const double seconds : {infinity, -infinity, notANumber, 1e300}) {
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
  const std::pair<DeviceSettings, std::string> rows[] = {
      {{.locale = "de_DE", .timeZone = "UTC"}, "2024-02-28&endDate=2024-03-09"},
      {{.locale = "th_TH", .timeZone = "UTC"}, "2567-02-28&endDate=2567-03-09"},
      {{.locale = "ar_EG", .timeZone = "UTC"}, "٢٠٢٤-٠٢-٢٨&endDate=٢٠٢٤-٠٣-٠٩"},
      {{.locale = "en_US", .timeZone = "Pacific/Auckland"}, "2024-02-29&endDate=2024-03-10"},
  };
  for (const auto& [device, dates] : rows) {
    const ScopedDeviceSettings settings(device);
    EXPECT_EQ(Average(Average::CUSTOM{from, to}).query(),
              "reportingPeriodType=CUSTOM&startDate=" + dates);
  }
}

}  // namespace
}  // namespace orvane
