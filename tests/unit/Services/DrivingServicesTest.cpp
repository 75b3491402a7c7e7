// SPDX-License-Identifier: Apache-2.0
// Locations, vehicles, driving summaries and driving alerts.
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include "tests/support/Requests.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertService.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryService.h>
#include <Orvane/Services/Location/LocationComposer.h>
#include <Orvane/Services/Location/LocationService.h>
#include <Orvane/Services/Vehicle/VehicleService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using Filter = DrivingSummaryService::Filter;
using Summaries = std::vector<DrivingSummaryResult>;

constexpr Date utc(std::chrono::year_month_day day, std::chrono::minutes time = 12h) {
  return std::chrono::sys_days(day) + time;
}

TEST(LocationServiceTest, sendsARequest) {
  expectRequests(
      {{"the last position",
        [](const Identity& identity) { LocationService(identity).fetchLastKnownLocation(nullptr); },
        "GET users/42/lastKnownLocation"}});
  EXPECT_EQ(LocationComposer("a=b c").url(exampleDetails())->absoluteString(),
            std::string(apiRoot) + "/users/42/lastKnownLocation?a=b%20c");
}

TEST(LocationServiceTest, answersAPosition) {
  const ScopedFoundation foundation;
  const auto answer = [&](const char* response) {
    foundation.requestManager->answer(std::string(response));
    const Outcome<Location> outcome;
    LocationService(freshIdentity()).fetchLastKnownLocation(outcome.handler());
    return outcome.result();
  };
  EXPECT_EQ(answer(R"({"lat":47.5,"lng":-8.25,"utcDateTime":1500})"),
            (Location{.latitude = 47.5, .longitude = -8.25, .date = dateFromSeconds(1.5)}));
  EXPECT_EQ(answer(R"({"lat":47.5,"lng":-8.25})"),
            Result<Location>(NetworkError::invalidResponseData));
  EXPECT_EQ(answer(""), Result<Location>(NetworkError::noData));
}

TEST(VehicleServiceTest, sendsRequests) {
  using Expansions = std::set<VehicleService::Expansion>;
  using enum VehicleService::Expansion;
  const auto all = [](Expansions expansions) {
    return [=](const Identity& identity) {
      VehicleService(identity).getAllVehicles(expansions, nullptr);
    };
  };
  const auto one = [](Expansions expansions, std::optional<std::string> plate) {
    return [=](const Identity& identity) {
      VehicleService(identity).getVehicleFor("V1", expansions, plate, nullptr);
    };
  };
  expectRequests({
      {"all", all({}), "GET users/42/vehicles/"},
      {"all, with devices", all({devices}), "GET users/42/vehicles/?expand=devices"},
      {"all, with everything", all({devices, usersByRole, health}),
       "GET users/42/vehicles/?expand=usersByRole,health,devices"},
      {"one", one({}, std::nullopt), "GET users/42/vehicles/V1"},
      {"one by its plate", one({}, "ZH&1"), "GET users/42/vehicles/V1?plate=ZH&1"},
      {"one by an empty plate", one({health}, ""), "GET users/42/vehicles/V1?expand=health&plate="},
  });
  for (const char* text : {"usersByRole", "health", "devices"}) {
    EXPECT_EQ(wireText(*fromWireText<VehicleService::Expansion>(text)), text);
  }
  EXPECT_EQ(fromWireText<VehicleService::Expansion>("Health"), std::nullopt);
}

TEST(VehicleServiceTest, answersVehicles) {
  const ScopedFoundation foundation;
  const VehicleService service(freshIdentity());
  foundation.requestManager->answer(std::string(R"({"vehicleId":"V1","plate":"ZH 1"})"));
  const Outcome<Vehicle> one;
  service.getVehicleFor("V1", {}, std::nullopt, one.handler());
  EXPECT_TRUE(one.result().value()->isIdentical({.vehicleId = "V1", .plate = "ZH 1"}));
  const Outcome<std::vector<Vehicle>> none;
  service.getAllVehicles({}, none.handler());
  EXPECT_EQ(none.result(), Result<std::vector<Vehicle>>(NetworkError::invalidResponseData));

  foundation.requestManager->answer(std::string(R"([{"vehicleId":"V1"},{"vehicleId":"V2"}])"));
  const Outcome<std::vector<Vehicle>> all;
  service.getAllVehicles({}, all.handler());
  EXPECT_EQ(all.result(), (std::vector<Vehicle>{{.vehicleId = "V1"}, {.vehicleId = "V2"}}));
}

TEST(DrivingSummaryServiceTest, sendsRequests) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "America/New_York"});
  const Date start = utc(2024y / 12 / 29, 2h);  // Saturday evening over there
  const Date end = utc(2024y / 12 / 29);
  using Expansions = std::set<DrivingSummaryService::Expansion>;
  const auto one = [](std::set<Filter> filters, Expansions expansions) {
    return [=](const Identity& identity) {
      DrivingSummaryService(identity).fetch(filters, expansions, nullptr);
    };
  };
  const auto list = [](std::set<Filter> filters, std::optional<std::string> aggregateBy) {
    return [=](const Identity& identity) {
      DrivingSummaryService(identity).fetchList(filters, aggregateBy, nullptr);
    };
  };
  const Expansions detection{DrivingSummaryService::Expansion::driverDetection};
  expectRequests({
      {"the account", one({}, {}), "GET users/42/drivingSummary"},
      {"with the detection", one({}, detection),
       "GET users/42/drivingSummary?expand=userTrainingStatus"},
      {"expansion, then days", one({Filter::date(start, end)}, detection),
       "GET users/42/drivingSummary?expand=userTrainingStatus&startDate=2024-12-28"
       "&endDate=2025-12-29"},
      {"one day", one({Filter::date(end, end)}, {}),
       "GET users/42/drivingSummary?startDate=2025-12-29&endDate=2025-12-29"},
      {"the periods", list({}, std::nullopt), "GET users/42/drivingSummaryList"},
      {"the weeks", list({}, "WEEK"), "GET users/42/drivingSummaryList?aggregateBy=WEEK"},
      {"days, then aggregation", list({Filter::date(start, start)}, "a b"),
       "GET users/42/drivingSummaryList?startDate=2024-12-28&endDate=2024-12-28&aggregateBy=a%20b"},
  });
}

TEST(DrivingSummaryServiceTest, sendsNoRangeThatIsNone) {
  const ScopedFoundation foundation;
  const RecordingLogger logger;
  const DrivingSummaryService service(freshIdentity());
  const std::set<Filter> inverted{Filter::date(utc(2024y / 5 / 3), utc(2024y / 5 / 2))};
  service.fetch(inverted, {}, nullptr);
  service.fetchList(inverted, "WEEK", nullptr);
  std::string sent;
  for (const auto& request : foundation.requestManager->questions()) sent += requestText(request);
  EXPECT_EQ(sent,
            "GET users/42/drivingSummary\n\n"
            "GET users/42/drivingSummaryList?aggregateBy=WEEK\n\n");
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

TEST(DrivingSummaryServiceTest, answersSummaries) {
  const ScopedFoundation foundation;
  const DrivingSummaryService service(freshIdentity());
  foundation.requestManager->answer(
      std::string(R"({"assessmentPeriodStartUtc":1500,"numberOfTrips":3})"));
  const Outcome<DrivingSummary> one;
  service.fetch({}, {}, one.handler());
  EXPECT_EQ(one.result(),
            (DrivingSummary{.dateAssessmentStarted = dateFromSeconds(1.5), .numberOfTrips = 3}));
  foundation.requestManager->answer(std::string(
      R"([{"startDate":1,"endDate":2,"secondsOfDriving":3,"secondsOfIdling":4,"kmOfDriving":5,
           "litresOfFuel":6,"numberOfTrips":7,"avgKmPerHour":8,"secondsInMotion":9}])"));
  const Outcome<Summaries> list;
  service.fetchList({}, std::nullopt, list.handler());
  EXPECT_EQ(list.result(), (Summaries{{1, 2, 3, 4, 5, 6, 7, 8, 9}}));
  foundation.requestManager->answer(std::string(R"([{"startDate":1}])"));
  const Outcome<Summaries> broken;
  service.fetchList({}, std::nullopt, broken.handler());
  EXPECT_EQ(broken.result(), Result<Summaries>(NetworkError::invalidResponseData));
}

TEST(DrivingAlertServiceTest, sendsRequests) {
  const ScopedDeviceSettings settings({.locale = "de_DE", .timeZone = "Europe/Zurich"});
  using Alert = DrivingAlertType;
  using enum DrivingEventSeverity;
  const auto set = [](const Alert& alert) {
    return [=](const Identity& identity) {
      DrivingAlertService(identity).registerAlertSetting(alert, nullptr);
    };
  };
  // One hour ahead of UTC in winter, two in summer.
  const auto winter = [](std::chrono::minutes time) { return utc(2024y / 1 / 15, time - 1h); };
  const auto summer = [](std::chrono::minutes time) { return utc(2024y / 7 / 15, time - 2h); };
  const std::string settings_ = "POST users/42/settings?targetId=7&targetType=USER&";
  const std::string night = settings_ + "enableLateNightDrivingAlert=";
  const Date never = dateFromSeconds(std::numeric_limits<double>::infinity());
  const Date always = dateFromSeconds(-std::numeric_limits<double>::infinity());
  const std::string nightFrom = night + "true&lateNightDrivingAlertStart=";
  expectRequests({
      {"braking off", set(Alert::braking("7", off)), settings_ + "eventAlertBraking=0"},
      {"braking low", set(Alert::braking("7", low)), settings_ + "eventAlertBraking=1"},
      {"acceleration medium", set(Alert::acceleration("7", medium)),
       settings_ + "eventAlertAcceleration=2"},
      {"acceleration high", set(Alert::acceleration("7", high)),
       settings_ + "eventAlertAcceleration=3"},
      {"speeding", set(Alert::speeding("7", "130.5")), settings_ + "thresholdAlertSpeeding=130.5"},
      {"speeding, of nobody", set(Alert::speeding("", "")),
       "POST users/42/settings?targetId=&targetType=USER&thresholdAlertSpeeding="},
      {"night", set(Alert::lateNight("7", true)), night + "true"},
      {"no night", set(Alert::lateNight("7", false)), night + "false"},
      {"night without an end", set(Alert::lateNight("7", true, winter(23h))), night + "true"},
      {"night without a start", set(Alert::lateNight("7", true, std::nullopt, winter(5h))),
       night + "true"},
      {"night without end", set(Alert::lateNight("7", true, winter(23h), never)), night + "true"},
      {"night from ever", set(Alert::lateNight("7", true, always, winter(5h))), night + "true"},
      {"a winter's night", set(Alert::lateNight("7", true, winter(23h), winter(5h + 30min))),
       nightFrom + "2300&lateNightDrivingAlertEnd=530"},
      {"a summer's night", set(Alert::lateNight("7", true, summer(22h + 30min), summer(6h + 5min))),
       nightFrom + "2230&lateNightDrivingAlertEnd=605"},
      {"around midnight", set(Alert::lateNight("7", false, winter(5min), winter(24h))),
       night + "false&lateNightDrivingAlertStart=005&lateNightDrivingAlertEnd=000"},
  });
  for (std::int64_t raw = -1; raw <= 4; ++raw) {
    EXPECT_EQ(fromRawValue<DrivingEventSeverity>(raw).has_value(), raw >= 0 && raw <= 3) << raw;
  }
}

TEST(DrivingAlertServiceTest, answersNoValue) {
  const ScopedFoundation foundation;
  const auto outcomeOf = [&](Result<std::string> response) {
    foundation.requestManager->answer(std::move(response));
    const Outcome<Unit> outcome;
    DrivingAlertService(freshIdentity())
        .registerAlertSetting(DrivingAlertType::speeding("7", "130"), outcome.handler());
    return outcome.result();
  };
  EXPECT_EQ(outcomeOf(std::string()), Unit{});
  EXPECT_EQ(outcomeOf(std::string("done")), Unit{});
  EXPECT_EQ(outcomeOf(NetworkError::invalidStatusCode(404)),
            Result<Unit>(NetworkError::invalidStatusCode(404)));
}

}  // namespace
}  // namespace orvane
