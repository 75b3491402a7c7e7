// SPDX-License-Identifier: Apache-2.0
// Locations, vehicles, driving summaries and driving alerts.
#include "tests/support/Outcome.h"
#include "tests/support/Records.h"
#include "tests/support/RequestRows.h"
#include "tests/support/Values.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertService.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryService.h>
#include <Orvane/Services/Location/LocationComposer.h>
#include <Orvane/Services/Location/LocationService.h>
#include <Orvane/Services/Vehicle/VehicleService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <optional>
#include <set>
#include <string>

namespace orvane {
namespace {

using namespace std::chrono_literals;

TEST(LocationServiceTest, sendsARequest) {
  expectRequests<LocationService>({{"GET users/42/lastKnownLocation", [](auto& locations) {
                                      locations.fetchLastKnownLocation(nullptr);
                                    }}});
  EXPECT_EQ(LocationComposer("a=b c").url(exampleDetails())->query(), "a=b%20c");
}

TEST(VehicleServiceTest, sendsRequests) {
  using enum VehicleService::Expansion;
  expectRequests<VehicleService>({
      {"GET users/42/vehicles/", [](auto& vehicles) { vehicles.getAllVehicles({}, nullptr); }},
      {"GET users/42/vehicles/?expand=devices",
       [](auto& vehicles) { vehicles.getAllVehicles({devices}, nullptr); }},
      {"GET users/42/vehicles/?expand=usersByRole,health,devices",
       [](auto& vehicles) {
         vehicles.getAllVehicles({devices, usersByRole, health}, nullptr);
       }},
      {"GET users/42/vehicles/V1",
       [](auto& vehicles) { vehicles.getVehicleFor("V1", {}, {}, nullptr); }},
      {"GET users/42/vehicles/V1?plate=ZH&1",
       [](auto& vehicles) { vehicles.getVehicleFor("V1", {}, "ZH&1", nullptr); }},
      {"GET users/42/vehicles/V1?expand=health&plate=",
       [](auto& vehicles) { vehicles.getVehicleFor("V1", {health}, "", nullptr); }},
  });
}

TEST(DrivingSummaryServiceTest, sendsRequests) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "America/New_York"});
  using Filter = DrivingSummaryService::Filter;
  using enum DrivingSummaryService::Expansion;
  const Date start = utc(2024y / 12 / 29, 2h);  // Saturday evening over there
  const Date end = utc(2024y / 12 / 29);
  const RecordingLogger logger;
  expectRequests<DrivingSummaryService>({
      {"GET users/42/drivingSummary", [](auto& summaries) { summaries.fetch({}, {}, nullptr); }},
      {"GET users/42/drivingSummary?expand=userTrainingStatus",
       [](auto& summaries) { summaries.fetch({}, {driverDetection}, nullptr); }},
      {"GET users/42/drivingSummary?expand=userTrainingStatus&startDate=2024-12-28"
       "&endDate=2025-12-29",
       [&](auto& summaries) {
         summaries.fetch({Filter::date(start, end)}, {driverDetection}, nullptr);
       }},
      {"GET users/42/drivingSummary?startDate=2025-12-29&endDate=2025-12-29",
       [&](auto& summaries) { summaries.fetch({Filter::date(end, end)}, {}, nullptr); }},
      {"GET users/42/drivingSummaryList",
       [](auto& summaries) { summaries.fetchList({}, {}, nullptr); }},
      {"GET users/42/drivingSummaryList?aggregateBy=WEEK",
       [](auto& summaries) { summaries.fetchList({}, "WEEK", nullptr); }},
      {"GET users/42/drivingSummaryList?startDate=2024-12-28&endDate=2024-12-28&aggregateBy=a%20b",
       [&](auto& summaries) { summaries.fetchList({Filter::date(start, start)}, "a b", nullptr); }},
  });
  EXPECT_TRUE(logger.lines().empty());

  // A range that is none.
  expectRequests<DrivingSummaryService>({
      {"GET users/42/drivingSummary",
       [&](auto& summaries) { summaries.fetch({Filter::date(end, start)}, {}, nullptr); }},
      {"GET users/42/drivingSummaryList?aggregateBy=WEEK",
       [&](auto& summaries) { summaries.fetchList({Filter::date(end, start)}, "WEEK", nullptr); }},
  });
  const auto lines = logger.lines();
  ASSERT_EQ(lines.size(), 2U);
  for (const auto& line : lines) {
    EXPECT_EQ(line.level, Logger::Level::warning);
    EXPECT_EQ(line.message, "Not filtering by date because start > end.");
    EXPECT_EQ(line.function, "query");
  }
  EXPECT_EQ(lines[0].file, "Services/Driving Summary/DrivingSummaryComposer");
  EXPECT_EQ(lines[1].file, "Services/Driving Summary/DrivingSummaryListComposer");
}

TEST(DrivingAlertServiceTest, sendsRequests) {
  const ScopedDeviceSettings device({.locale = "de_DE", .timeZone = "Europe/Zurich"});
  using Alert = DrivingAlertType;
  using enum DrivingEventSeverity;
  // One hour ahead of UTC in winter, two in summer.
  const auto winter = [](std::chrono::minutes time) { return utc(2024y / 1 / 15, time - 1h); };
  const auto summer = [](std::chrono::minutes time) { return utc(2024y / 7 / 15, time - 2h); };
  const std::string night = "enableLateNightDrivingAlert=";
  const std::string start = "&lateNightDrivingAlertStart=";
  const std::string end = "&lateNightDrivingAlertEnd=";
  const std::pair<Alert, std::string> rows[] = {
      {Alert::braking("7", off), "eventAlertBraking=0"},
      {Alert::braking("7", low), "eventAlertBraking=1"},
      {Alert::acceleration("7", medium), "eventAlertAcceleration=2"},
      {Alert::acceleration("7", high), "eventAlertAcceleration=3"},
      {Alert::speeding("7", "130.5"), "thresholdAlertSpeeding=130.5"},
      {Alert::lateNight("7", true), night + "true"},
      {Alert::lateNight("7", false), night + "false"},
      // Both ends or none.
      {Alert::lateNight("7", true, winter(23h)), night + "true"},
      {Alert::lateNight("7", true, std::nullopt, winter(5h)), night + "true"},
      {Alert::lateNight("7", true, winter(23h), winter(5h + 30min)),
       night + "true" + start + "2300" + end + "530"},
      {Alert::lateNight("7", true, summer(22h + 30min), summer(6h + 5min)),
       night + "true" + start + "2230" + end + "605"},
      {Alert::lateNight("7", false, winter(5min), winter(24h)),
       night + "false" + start + "005" + end + "000"},
  };
  const auto expectSetting = [](const Alert& alert, const std::string& setting) {
    expectRequest("POST users/42/settings?targetId=7&targetType=USER&" + setting,
                  [&](const Identity& identity) {
                    DrivingAlertService(identity).registerAlertSetting(alert, nullptr);
                  });
  };
  const RecordingLogger logger;
  for (const auto& [alert, setting] : rows) expectSetting(alert, setting);
  EXPECT_TRUE(logger.lines().empty());

  for (const double number : {infinity, -infinity, notANumber, 1e300}) {
    const RecordingLogger warnings;
    const Date never = dateFromSeconds(number);
    expectSetting(Alert::lateNight("7", true, winter(23h), never), night + "true");
    expectSetting(Alert::lateNight("7", true, never, winter(5h)), night + "true");
    ASSERT_EQ(warnings.lines().size(), 2U);
    for (const auto& line : warnings.lines()) {
      EXPECT_EQ(line.level, Logger::Level::warning);
      EXPECT_EQ(line.message,
                "Not sending the late-night range because start or end has no time of day.");
    }
  }
  EXPECT_EQ(wireTexts<DrivingEventSeverity>(), "0 1 2 3");
  EXPECT_EQ(wireTexts<VehicleService::Expansion>(), "usersByRole health devices");
}

}  // namespace
}  // namespace orvane
