// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include "tests/support/Values.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/CurrentDate.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Scoring/ScoringAggregateService.h>
#include <Orvane/Services/Scoring/ScoringService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {
namespace {

using namespace std::chrono_literals;

const Date from = utc(2024y / 2 / 28);
const Date to = utc(2024y / 3 / 9);
constexpr std::uint64_t mostDays = most;

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
};

TEST_F(ScoringServiceTest, sendsOneRequestForEachOperation) {
  const std::string average = "/averageScores?reportingPeriodType=CUSTOM&startDate=";
  const std::string aggregate = "/statisticScores?startDate=";
  expectRequests<ScoringService>({
      {"GET users/42" + average + "2024-02-28&endDate=2024-03-09",
       [](auto& scores) { scores.custom(from, to, nullptr); }},
      {"GET users/42/averageScores?userScoreWeek=0",
       [](auto& scores) { scores.fetchWeek(0, nullptr); }},
      {"GET vehicles/V1" + aggregate + "2024-02-28&endDate=2024-03-09&reportingPeriodType=CUSTOM",
       [](auto& scores) { scores.fetchAggregateScoresByVehicle("V1", from, to, nullptr); }},
      {"GET vehicles/V1" + average + "2024-02-28&endDate=2024-03-09",
       [](auto& scores) { scores.fetchAverageScoresByVehicle("V1", from, to, nullptr); }},
      {"GET vehicles/a/b%20c%3F" + average + "2024-02-28&endDate=2024-03-09",
       [](auto& scores) { scores.fetchAverageScoresByVehicle("a/b c?", from, to, nullptr); }},
      {"GET vehicles/V1" + aggregate + "2024-02-12&endDate=2024-03-13&reportingPeriodType=CUSTOM",
       [](auto& scores) { scores.fetchLastNDaysAggregateScoresByVehicle("V1", 30, nullptr); }},
      {"GET vehicles/" + aggregate + "2024-03-13&endDate=2024-03-13&reportingPeriodType=CUSTOM",
       [](auto& scores) { scores.fetchLastNDaysAggregateScoresByVehicle("", 0, nullptr); }},
      {"GET vehicles/V1" + average + "2024-03-06&endDate=2024-03-13",
       [](auto& scores) { scores.fetchLastNDaysAverageScores("V1", 7, nullptr); }},
      {"GET users/42" + average + "2024-03-06&endDate=2024-03-13",
       [](auto& scores) { scores.fetchLastNDaysAverageScores("", 7, nullptr); }},
      {"GET users/42" + average + "2023-03-14&endDate=2024-03-13",
       [](auto& scores) { scores.fetchLastNDaysAverageScores({}, 365, nullptr); }},
  });
}

// What both entries send, on the device's own clock.
template <class Service>
void expectAggregateRequests() {
  const std::string start = "GET users/42/statisticScores?startDate=";
  const std::string week = "2024-03-03&endDate=2024-03-10&reportingPeriodType=last7Days";
  const std::string month = "2024-02-09&endDate=2024-03-10&reportingPeriodType=last30Days";
  expectRequests<Service>({
      {start + week, [](auto& scores) { scores.last7Days(nullptr); }},
      {start + week, [](auto& scores) { scores.lastWeek(nullptr); }},
      {start + month, [](auto& scores) { scores.last30Days(nullptr); }},
      {start + month, [](auto& scores) { scores.lastMonth(nullptr); }},
      {start + "2023-12-11&endDate=2024-03-10&reportingPeriodType=last90Days",
       [](auto& scores) { scores.last90Days(nullptr); }},
      {start + "2023-03-11&endDate=2024-03-10&reportingPeriodType=lastYear",
       [](auto& scores) { scores.lastYear(nullptr); }},
      {start + "2024-03-10&endDate=2024-03-10&reportingPeriodType=today",
       [](auto& scores) { scores.today(nullptr); }},
      {start + "2024-02-28&endDate=2024-03-09&reportingPeriodType=CUSTOM",
       [](auto& scores) { scores.dateRange(from, to, nullptr); }},
  });
}

TEST_F(ScoringServiceTest, bothEntriesSendTheSameAggregateRequests) {
  expectAggregateRequests<ScoringService>();
  expectAggregateRequests<ScoringAggregateService>();
  const Identity identity = freshIdentity();
  const ScoringAggregateService service(identity);
  EXPECT_EQ(service.identity(), identity);
  EXPECT_EQ(service.scoringService().identity(), identity);
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
      {"America/New_York", utc(1970y / 1 / 8), 24h * 19789, "1970-01-01", "1970-01-08",
       "2024-03-07", "2024-03-14"},
  };
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = std::string(row.zone)});
    const ScopedCurrentDateOffset offset(row.correction);
    clock_.set(row.device);
    const std::string lastDays = "startDate=" + row.lastDaysStart + "&endDate=" + row.lastDaysEnd;
    expectRequests<ScoringService>({
        {"GET users/42/statisticScores?startDate=" + row.periodStart + "&endDate=" + row.periodEnd +
             "&reportingPeriodType=last7Days",
         [](auto& scores) { scores.last7Days(nullptr); }},
        {"GET vehicles/V1/statisticScores?" + lastDays + "&reportingPeriodType=CUSTOM",
         [](auto& scores) { scores.fetchLastNDaysAggregateScoresByVehicle("V1", 7, nullptr); }},
        {"GET users/42/averageScores?reportingPeriodType=CUSTOM&" + lastDays,
         [](auto& scores) { scores.fetchLastNDaysAverageScores({}, 7, nullptr); }},
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
  const std::pair<std::uint64_t, LastDaysError::Case> rows[] = {
      {mostDays, notInCalendar},
      {mostDays + 1, tooManyDays},
      {std::numeric_limits<std::uint64_t>::max(), tooManyDays},
      {2'200'000'000, notInCalendar},
  };
  for (const auto& [days, kind] : rows) {
    EXPECT_EQ(ScoringService::lastDays(days), LastDaysError{kind}) << days;
  }
  const ScopedCurrentDateOffset broken{Seconds(notANumber)};
  EXPECT_EQ(ScoringService::lastDays(7), LastDaysError{notInCalendar});
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
