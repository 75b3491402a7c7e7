// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/CurrentDate.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Scoring/ScoringAggregateService.h>
#include <Orvane/Services/Scoring/ScoringService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {
namespace {

using namespace std::chrono_literals;

constexpr Date utc(std::chrono::year_month_day day, std::chrono::minutes time = 0min) {
  return std::chrono::sys_days(day) + time;
}

const Date from = utc(2024y / 2 / 28, 12h);
const Date to = utc(2024y / 3 / 9, 12h);
constexpr std::uint64_t mostDays = std::numeric_limits<std::int64_t>::max();

using Operation = std::function<void(const ScoringService&)>;

RequestRow scoring(const std::string& resource, const Operation& operation) {
  return {resource, [=](const Identity& identity) { operation(ScoringService(identity)); },
          "GET " + resource};
}

// Puts the host's correction of the clock back.
class ScopedCurrentDateOffset {
 public:
  explicit ScopedCurrentDateOffset(Seconds offset) { setCurrentDateOffset(offset); }
  ~ScopedCurrentDateOffset() { setCurrentDateOffset(Seconds(0)); }
  ScopedCurrentDateOffset(const ScopedCurrentDateOffset&) = delete;
  ScopedCurrentDateOffset& operator=(const ScopedCurrentDateOffset&) = delete;
};

// A device whose clock shows 2024-03-10, and a host that knows better: it is 2024-03-13.
class ScoringServiceTest : public DeathTest {
 protected:
  const ScopedDeviceSettings settings_{{.locale = "en_US", .timeZone = "UTC"}};
  MovableClock clock_{utc(2024y / 3 / 10, 10h)};
  const ScopedCurrentDateOffset offset_{std::chrono::days(3)};
  const ScopedFoundation foundation_;
  const ScoringService service_{freshIdentity()};
  const ScoringAggregateService aggregateService_{freshIdentity()};
};

TEST_F(ScoringServiceTest, sendsOneRequestForEachOperation) {
  expectRequests({
      scoring("users/42/averageScores?"
              "reportingPeriodType=CUSTOM&startDate=2024-02-28&endDate=2024-03-09",
              [](const auto& scores) { scores.custom(from, to, nullptr); }),
      scoring("users/42/averageScores?userScoreWeek=0",
              [](const auto& scores) { scores.fetchWeek(0, nullptr); }),
      scoring("vehicles/V1/statisticScores?"
              "startDate=2024-02-28&endDate=2024-03-09&reportingPeriodType=CUSTOM",
              [](const auto& scores) {
                scores.fetchAggregateScoresByVehicle("V1", from, to, nullptr);
              }),
      scoring(
          "vehicles/V1/averageScores?"
          "reportingPeriodType=CUSTOM&startDate=2024-02-28&endDate=2024-03-09",
          [](const auto& scores) { scores.fetchAverageScoresByVehicle("V1", from, to, nullptr); }),
      scoring("vehicles/a/b%20c%3F/averageScores?"
              "reportingPeriodType=CUSTOM&startDate=2024-02-28&endDate=2024-03-09",
              [](const auto& scores) {
                scores.fetchAverageScoresByVehicle("a/b c?", from, to, nullptr);
              }),
      scoring("vehicles/V1/statisticScores?"
              "startDate=2024-02-12&endDate=2024-03-13&reportingPeriodType=CUSTOM",
              [](const auto& scores) {
                scores.fetchLastNDaysAggregateScoresByVehicle("V1", 30, nullptr);
              }),
      scoring("vehicles//statisticScores?"
              "startDate=2024-03-13&endDate=2024-03-13&reportingPeriodType=CUSTOM",
              [](const auto& scores) {
                scores.fetchLastNDaysAggregateScoresByVehicle("", 0, nullptr);
              }),
      scoring("vehicles/V1/averageScores?"
              "reportingPeriodType=CUSTOM&startDate=2024-03-06&endDate=2024-03-13",
              [](const auto& scores) { scores.fetchLastNDaysAverageScores("V1", 7, nullptr); }),
      scoring("users/42/averageScores?"
              "reportingPeriodType=CUSTOM&startDate=2024-03-06&endDate=2024-03-13",
              [](const auto& scores) { scores.fetchLastNDaysAverageScores("", 7, nullptr); }),
      scoring("users/42/averageScores?"
              "reportingPeriodType=CUSTOM&startDate=2023-03-14&endDate=2024-03-13",
              [](const auto& scores) { scores.fetchLastNDaysAverageScores({}, 365, nullptr); }),
  });
}

// The same operations by both entries, on the device's own clock.
TEST_F(ScoringServiceTest, bothEntriesSendTheSameAggregateRequests) {
  struct Row {
    RequestHandle (ScoringService::*operation)(Completion<ScoringAggregate>) const;
    RequestHandle (ScoringAggregateService::*forwarded)(Completion<ScoringAggregate>) const;
    std::string_view query;
  };
  using Scores = ScoringService;
  using Aggregates = ScoringAggregateService;
  constexpr std::string_view week =
      "startDate=2024-03-03&endDate=2024-03-10&reportingPeriodType=last7Days";
  constexpr std::string_view month =
      "startDate=2024-02-09&endDate=2024-03-10&reportingPeriodType=last30Days";
  const Row rows[] = {
      {&Scores::last7Days, &Aggregates::last7Days, week},
      {&Scores::lastWeek, &Aggregates::lastWeek, week},
      {&Scores::last30Days, &Aggregates::last30Days, month},
      {&Scores::lastMonth, &Aggregates::lastMonth, month},
      {&Scores::last90Days, &Aggregates::last90Days,
       "startDate=2023-12-11&endDate=2024-03-10&reportingPeriodType=last90Days"},
      {&Scores::lastYear, &Aggregates::lastYear,
       "startDate=2023-03-11&endDate=2024-03-10&reportingPeriodType=lastYear"},
      {&Scores::today, &Aggregates::today,
       "startDate=2024-03-10&endDate=2024-03-10&reportingPeriodType=today"},
  };
  const auto expectBoth = [](std::string_view query, const auto& operation, const auto& forwarded) {
    const std::string request = "GET users/42/statisticScores?" + std::string(query);
    expectRequests({
        {"ScoringService", [&](const Identity& identity) { operation(ScoringService(identity)); },
         request},
        {"ScoringAggregateService",
         [&](const Identity& identity) { forwarded(ScoringAggregateService(identity)); }, request},
    });
  };
  for (const Row& row : rows) {
    expectBoth(
        row.query, [&](const Scores& scores) { (scores.*row.operation)(nullptr); },
        [&](const Aggregates& scores) { (scores.*row.forwarded)(nullptr); });
  }
  const auto dateRange = [](const auto& scores) { scores.dateRange(from, to, nullptr); };
  expectBoth("startDate=2024-02-28&endDate=2024-03-09&reportingPeriodType=CUSTOM", dateRange,
             dateRange);
}

TEST_F(ScoringServiceTest, bothEntriesSpeakForTheSameIdentity) {
  const Identity identity = freshIdentity();
  const ScoringAggregateService service(identity);
  EXPECT_EQ(service.identity(), identity);
  EXPECT_EQ(service.scoringService().identity(), identity);
  service.today(nullptr);
  EXPECT_EQ(foundation_.detailsResolver->questions().back(), identity);
}

TEST_F(ScoringServiceTest, answersRecords) {
  foundation_.requestManager->answerPath(
      "/statisticScores", {std::string(R"({"highestScore":97.5,"tripScoringDailyAggregate":)"
                                       R"([{"date":1709856000000,"score":81.25}]})")});
  foundation_.requestManager->answerPath(
      "/averageScores",
      {std::string(R"({"averageScore":0.1,"tripScoringAverage":{"date":1,"trackingType":"MOBILE",)"
                   R"("componentScores":{"harsh.braking":70}}})")});
  const ScoringAggregate aggregate{.highestScore = 97.5,
                                   .tripScoringDailyAggregate = std::vector<DailyAggregate>{
                                       {.score = 81.25, .date = 1709856000000.0}}};
  const ScoringAverage average{
      .averageScore = 0.1,
      .tripScoringAverage = TripScoringAverage{
          .date = 1, .trackingType = "MOBILE", .componentScores = {.harshBraking = 70}}};

  const Outcome<ScoringAggregate> days;
  aggregateService_.lastYear(days.handler());
  EXPECT_EQ(days.result(), aggregate);
  const Outcome<ScoringAverage> averages;
  service_.fetchLastNDaysAverageScores("V1", 7, averages.handler());
  EXPECT_EQ(averages.result(), average);
}

TEST_F(ScoringServiceTest, answersWhyThereIsNoRecord) {
  struct Row {
    Result<std::string> response;
    Error error;
  };
  const auto refused = NetworkError::invalidStatusCode(503, std::nullopt);
  const Row rows[] = {
      {std::string(), NetworkError::noData},
      {std::string("{"), NetworkError::invalidResponseData},
      {std::string(R"({"tripScoringAverage":{"date":1,"componentScores":{}}})"),
       NetworkError::invalidResponseData},
      {refused, refused},
      {Result<std::string>(), NetworkError::invalidResponseData},
  };
  for (const Row& row : rows) {
    foundation_.requestManager->answer(row.response);
    const Outcome<ScoringAverage> outcome;
    service_.fetchWeek(7, outcome.handler());
    EXPECT_EQ(outcome.result(), Result<ScoringAverage>(row.error));
  }
}

// The relative periods count days of 86,400 seconds back from the device's clock, the last N days
// calendar days from the clock that the host has corrected.
TEST_F(ScoringServiceTest, countsBackInTwoWaysFromTwoClocks) {
  struct Row {
    std::string_view zone;
    Date device;
    std::chrono::minutes correction;
    std::string periodStart, periodEnd, lastDaysStart, lastDaysEnd;
  };
  const Row rows[] = {
      // One clock: around these changes to and from summer time the two ways part.
      {"Europe/Zurich", utc(2024y / 4 / 2, 22h + 30min), 0min, "2024-03-26", "2024-04-03",
       "2024-03-27", "2024-04-03"},
      {"Europe/Zurich", utc(2024y / 10 / 30, 22h + 30min), 0min, "2024-10-24", "2024-10-30",
       "2024-10-23", "2024-10-30"},
      {"America/New_York", utc(2024y / 3 / 14, 4h + 15min), 0min, "2024-03-06", "2024-03-14",
       "2024-03-07", "2024-03-14"},
      {"Asia/Tokyo", utc(2024y / 3 / 14, 15h), 0min, "2024-03-08", "2024-03-15", "2024-03-08",
       "2024-03-15"},
      // Two clocks on either side of midnight.
      {"Europe/Zurich", utc(2024y / 4 / 2, 22h + 30min), -60min, "2024-03-26", "2024-04-03",
       "2024-03-26", "2024-04-02"},
      {"Europe/Zurich", utc(2024y / 4 / 2, 21h + 30min), 60min, "2024-03-26", "2024-04-02",
       "2024-03-27", "2024-04-03"},
      {"Asia/Kolkata", utc(2024y / 6 / 15, 18h + 29min), 1min, "2024-06-08", "2024-06-15",
       "2024-06-09", "2024-06-16"},
      {"Pacific/Kiritimati", utc(2024y / 2 / 29, 10h), -1min, "2024-02-23", "2024-03-01",
       "2024-02-22", "2024-02-29"},
      // And a clock that lost its battery.
      {"America/New_York", utc(1970y / 1 / 8, 12h), 24h * 19789, "1970-01-01", "1970-01-08",
       "2024-03-07", "2024-03-14"},
  };
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = std::string(row.zone)});
    const ScopedCurrentDateOffset offset(row.correction);
    clock_.set(row.device);
    expectRequests({
        scoring("users/42/statisticScores?startDate=" + row.periodStart +
                    "&endDate=" + row.periodEnd + "&reportingPeriodType=last7Days",
                [](const auto& scores) { scores.last7Days(nullptr); }),
        scoring("vehicles/V1/statisticScores?startDate=" + row.lastDaysStart +
                    "&endDate=" + row.lastDaysEnd + "&reportingPeriodType=CUSTOM",
                [](const auto& scores) {
                  scores.fetchLastNDaysAggregateScoresByVehicle("V1", 7, nullptr);
                }),
        scoring("users/42/averageScores?reportingPeriodType=CUSTOM&startDate=" + row.lastDaysStart +
                    "&endDate=" + row.lastDaysEnd,
                [](const auto& scores) { scores.fetchLastNDaysAverageScores({}, 7, nullptr); }),
    });
  }
}

TEST_F(ScoringServiceTest, theLastDaysEndNowAndKeepTheTimeOfDay) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Europe/Zurich"});
  const Date now = utc(2024y / 3 / 13, 10h);
  EXPECT_EQ(ScoringService::lastDays(0), ClosedRange<Date>(now, now));
  EXPECT_EQ(ScoringService::lastDays(13), ClosedRange<Date>(utc(2024y / 2 / 29, 10h), now));
  EXPECT_EQ(ScoringService::lastDays(180),
            ClosedRange<Date>(utc(2023y / 9 / 15, 9h), now));  // summer time
}

TEST_F(ScoringServiceTest, tellsWhyThereIsNoSuchPeriod) {
  using enum LastDaysError::Case;
  struct Row {
    std::uint64_t days;
    LastDaysError::Case kind;
  };
  const Row rows[] = {
      {mostDays, notInCalendar},
      {mostDays + 1, tooManyDays},
      {std::numeric_limits<std::uint64_t>::max(), tooManyDays},
      {2'200'000'000, notInCalendar},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ScoringService::lastDays(row.days),
              Result<ClosedRange<Date>>(LastDaysError{row.kind}))
        << row.days;
  }
  const ScopedCurrentDateOffset broken{Seconds(std::numeric_limits<double>::quiet_NaN())};
  EXPECT_EQ(ScoringService::lastDays(7), Result<ClosedRange<Date>>(LastDaysError{notInCalendar}));
}

TEST_F(ScoringServiceTest, daysThatCanNotBeCountedStopTheProcess) {
  constexpr auto tooMany = "Fatal error: the number of days exceeds the largest signed 64-bit";
  constexpr auto tooFar = "Fatal error: the calendar can't produce the date so many days ago";
  EXPECT_DEATH(service_.fetchLastNDaysAverageScores({}, mostDays + 1, nullptr), tooMany);
  EXPECT_DEATH(service_.fetchLastNDaysAverageScores("V1", mostDays, nullptr), tooFar);
  EXPECT_DEATH(service_.fetchLastNDaysAggregateScoresByVehicle("V1", mostDays + 1, nullptr),
               tooMany);
  EXPECT_DEATH(service_.fetchLastNDaysAggregateScoresByVehicle("V1", mostDays, nullptr), tooFar);
}

}  // namespace
}  // namespace orvane
