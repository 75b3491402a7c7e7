// SPDX-License-Identifier: Apache-2.0
//
// Trips and what they add up to: dates, expansions, variety, corrections.
#include "Fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>

namespace orvane::sandbox::test {
namespace {

using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

class Trips : public SandboxTest {
 protected:
  std::string finishedDrive() {
    const json trips = read("users/1001/trips");
    const auto found = std::ranges::find_if(trips, [](const json& trip) {
      return trip["tripStatus"] == "FINISHED" && trip["transportMode"] == "DRIVER";
    });
    return "trips/" + found->at("tripId").get<std::string>();
  }
};

TEST_F(Trips, ADateRangeIncludesBothOfItsDaysWhereTheTripBegan) {
  const auto dayOfTrip = [](const json& trip) {
    return formatDay(dayOf(trip["tripStartTimestampUtc"].get<std::int64_t>() +
                           trip["timeZoneOffsetMillis"].get<std::int64_t>()));
  };
  json expected = json::array();
  for (const json& trip : read("users/1001/trips")) {
    if (dayOfTrip(trip) >= "2025-06-09" && dayOfTrip(trip) <= "2025-06-11")
      expected.push_back(trip);
  }
  ASSERT_FALSE(expected.empty());
  EXPECT_EQ(read("users/1001/trips?startDate=2025-06-09&endDate=2025-06-11"), expected);
  EXPECT_EQ(read("users/1001/trips?startDate=2567-06-09&endDate=2567-06-11"), json::array());
}

TEST_F(Trips, ExpansionsAddTheirMembersAndNoOthers) {
  const std::string path = finishedDrive();
  const json plain = read(path);
  const std::pair<const char*, std::vector<const char*>> rows[] = {
      {"events", {"events"}},
      {"scores", {"tripScore", "tripScores", "scoring"}},
      {"points", {"geometry"}},
      {"geometry", {"geometry"}},
      {"points&expand=points", {"geometry"}},
      {"user", {"user"}},
      {"pois", {"pois"}},
      {"vehicles", {"vehicle"}},
      {"alerts", {"alerts"}},
      {"events,geometry", {"events", "geometry"}},
  };
  for (const auto& [expansion, members] : rows) {
    json expanded = read(path + "?expand=" + expansion);
    for (const char* member : members) EXPECT_EQ(expanded.erase(member), 1U) << expansion;
    expanded.erase("reconstructedStartGeometry");
    EXPECT_EQ(expanded, plain) << expansion;
  }
}

TEST_F(Trips, EventsAreOfEveryTypeAndLevel) {
  std::set<std::string> types;
  std::set<int> levels;
  for (const char* user : {"1001", "1002"}) {
    for (const json& trip : read(std::string{"users/"} + user + "/trips?expand=events")) {
      for (const auto& [type, events] : trip["events"].items()) {
        types.insert(type);
        for (const json& event : events) levels.insert(event.value("level", 0));
      }
    }
  }
  EXPECT_THAT(types,
              UnorderedElementsAre("MultiLevelAccelerationViolation", "MultiLevelBrakingViolation",
                                   "MultiLevelCorneringViolation", "MultiLevelSpeedViolation",
                                   "PostedSpeedLimitViolation", "PhoneHandlingViolation"));
  EXPECT_THAT(levels, IsSupersetOf({1, 2, 3, 4, 5}));
}

TEST_F(Trips, TheDataShowsEveryModeAHalfHourZoneAndATripUnderWay) {
  std::set<std::string> modes;
  std::set<std::string> states;
  std::set<std::int64_t> offsets;
  const auto collect = [&](const char* caller, const char* user) {
    actAs(caller);
    for (const json& trip : read(std::string{"users/"} + user + "/trips")) {
      modes.insert(trip["transportMode"]);
      states.insert(trip["tripStatus"]);
      offsets.insert(trip["timeZoneOffsetMillis"].get<std::int64_t>());
    }
  };
  collect("1001", "1002");
  collect("1003", "1003");
  collect("1004", "1005");
  EXPECT_THAT(modes, IsSupersetOf({"DRIVER", "CAR_PASSENGER", "TRAIN", "BUS", "AIRPLANE", "TAXI",
                                   "MOTORCYCLE", "BOAT", "WALK", "BICYCLE", "PUBLIC_TRANSPORTATION",
                                   "OTHER"}));
  EXPECT_THAT(states, UnorderedElementsAre("FINISHED", "STARTED"));
  EXPECT_THAT(offsets, IsSupersetOf({7'200'000, 19'800'000}));
}

TEST_F(Trips, ACorrectedModeMayUnscoreATripAndOnlyTheDriverCorrects) {
  const std::string mine = finishedDrive();
  EXPECT_EQ(post(mine + "?transportMode=BUS&purpose=PERSONAL").status, 200);
  EXPECT_EQ(read(mine)["transportMode"], "BUS");
  EXPECT_FALSE(read(mine + "?expand=scores").contains("tripScore")) << "no longer a drive";
  EXPECT_EQ(post(mine + "?transportMode=").parsed()["transportMode"], "");
  refuses(400, {"POST " + mine, "POST " + mine + "?transportMode=UNKNOWN",
                "POST " + mine + "?purpose=personal"});
  EXPECT_EQ(post(mine + "?purpose=PERSONAL", "x", "text/plain").status, 400);
  actAs("1002");
  EXPECT_EQ(get(mine).status, 200);
  refuses(403, {"POST " + mine + "?purpose=PERSONAL"});
  refuses(404, {"POST trips/1?purpose=PERSONAL"});
  actAs("1004");
  refuses(403, {"GET " + mine});
}

TEST_F(Trips, MalformedQueriesAreRefused) {
  for (const char* query :
       {"limit=ten", "limit=0", "limit=-1", "limit=5.0", "limit=", "limit=5&limit=6", "offset=-1",
        "offset=99999999999999999999", "startDate=2025-6-9", "startDate=2025-02-29",
        "endDate=09.06.2025", "endDate=%D9%A2%D9%A0%D9%A2%D9%A5-06-09",
        "startDate=2025-06-10T00:00", "startDate=2025-06-11&endDate=2025-06-10", "aggregateBy=DAY",
        "expand=everything"}) {
    refuses(400, {std::string{"GET users/1001/trips?"} + query});
  }
}

TEST_F(Trips, AVehiclesTripsAreFilteredByRoleAndUser) {
  const std::string path = "vehicles/3001/trips?startDate=2025-06-01&endDate=2025-06-30&limit=500";
  const auto all = read(path + "&user=");
  const json owners = read(path + "&role=OWNER&user=");
  EXPECT_EQ(owners, read(path + "&user=1001"));
  EXPECT_EQ(owners.size() + read(path + "&role=OPERATOR&user=").size(), all.size());
  refuses(400, {"GET " + path + "&role=DRIVER&user="});
  refuses(403, {"GET vehicles/3003/trips?user="});
  refuses(404, {"GET vehicles/9/trips?user="});
}

class Driving : public SandboxTest {};

TEST_F(Driving, SummariesAreTheSumsOfTheTrips) {
  double kilometres = 0;
  int count = 0;
  for (const json& trip :
       read("users/1001/trips?expand=scores&startDate=2025-06-05&endDate=2025-06-17")) {
    if (!trip.contains("tripScore")) continue;
    kilometres += trip["kilometers"].get<double>();
    ++count;
  }
  const json summary = read("users/1001/drivingSummary?startDate=2025-06-05&endDate=2025-06-17");
  EXPECT_NEAR(summary["kmOfDriving"].get<double>(), kilometres, 0.01);
  EXPECT_EQ(summary["numberOfTrips"], count);
  EXPECT_FALSE(summary.contains("driverPassengerDetectionStatus"));

  const std::pair<const char*, std::size_t> rows[] = {{"DAY", 13}, {"WEEK", 3}, {"MONTH", 1}};
  for (const auto& [aggregateBy, periods] : rows) {
    const json list =
        read(std::string{"users/1001/drivingSummaryList?startDate=2025-06-05&endDate=2025-06-17"
                         "&aggregateBy="} +
             aggregateBy);
    EXPECT_EQ(list.size(), periods) << aggregateBy;
    int trips = 0;
    for (const json& period : list) trips += period["numberOfTrips"].get<int>();
    EXPECT_EQ(trips, count) << aggregateBy;
  }
  refuses(400, {"GET users/1001/drivingSummaryList?aggregateBy=day"});
}

TEST_F(Driving, DetectionIsTrainedByEnoughDrives) {
  const auto status = [this](const std::string& path) {
    return read(path + "?expand=userTrainingStatus")["driverPassengerDetectionStatus"]["status"];
  };
  actAs("1005");
  EXPECT_EQ(status("users/1005/drivingSummary"), "DETECTION");
  actAs("1006");
  EXPECT_EQ(status("users/1006/drivingSummary"), "TRAINING");
}

TEST_F(Driving, AlertSettingsAreKeptAndRaiseAlerts) {
  const std::string marc = "POST users/1001/settings?targetId=1002&targetType=USER";
  const std::string lateNight =
      marc + "&enableLateNightDrivingAlert=true&lateNightDrivingAlertStart=22";
  EXPECT_EQ(read("users/1002/trips?expand=alerts&limit=1")[0]["alerts"], json::array());
  EXPECT_EQ(send(marc + "&eventAlertBraking=1").status, 200);
  EXPECT_EQ(send(marc + "&thresholdAlertSpeeding=60").status, 200);
  EXPECT_EQ(send(lateNight + "30&lateNightDrivingAlertEnd=605").status, 200);
  EXPECT_EQ(read("users/1002/settings"), json({{"targetId", "1002"},
                                               {"targetType", "USER"},
                                               {"eventAlertBraking", "1"},
                                               {"enableLateNightDrivingAlert", "true"},
                                               {"lateNightDrivingAlertStart", "2230"},
                                               {"lateNightDrivingAlertEnd", "605"},
                                               {"thresholdAlertSpeeding", "60"}}));
  std::map<std::string, int> alerts;
  std::map<std::string, int> meant;
  for (const json& trip : read("users/1002/trips?expand=alerts&expand=events")) {
    for (const json& alert : trip["alerts"]) ++alerts[alert["type"]];
    for (const json& event : trip["events"].value("MultiLevelBrakingViolation", json::array())) {
      if (event["level"] > 1) ++meant["eventAlertBraking"];
    }
    for (const json& event : trip["events"].value("MultiLevelSpeedViolation", json::array())) {
      if (event["averageKmPerHour"] > 60) ++meant["thresholdAlertSpeeding"];
    }
  }
  EXPECT_EQ(meant.size(), 2U);
  EXPECT_EQ(alerts, meant);

  const std::string settings = "POST users/1001/settings?";
  refuses(400,
          {settings, settings + "targetId=&targetType=USER&eventAlertBraking=1",
           settings + "targetId=1002&targetType=CAR&eventAlertBraking=1",
           marc + "&eventAlertBraking=4", marc + "&eventAlertBraking=1&eventAlertAcceleration=1",
           marc + "&thresholdAlertSpeeding=", marc + "&thresholdAlertSpeeding=fast",
           lateNight + "60&lateNightDrivingAlertEnd=605", lateNight + "30"});
  refuses(403, {settings + "targetId=1004&targetType=USER&eventAlertBraking=1"});
  refuses(404, {settings + "targetId=7&targetType=USER&eventAlertBraking=1"});
}

class Vehicles : public SandboxTest {};

TEST_F(Vehicles, ListAndRecordAgreeAndExpandInOneItem) {
  const json list = read("users/1001/vehicles/?expand=usersByRole,health,devices");
  ASSERT_EQ(list.size(), 2U);
  const json one = read("users/1001/vehicles/3001?expand=usersByRole,health,devices");
  EXPECT_EQ(one, list[0]);
  EXPECT_EQ(one["usersByRole"]["OWNER"][0]["userId"], "1001");
  EXPECT_EQ(one["usersByRole"]["OPERATOR"].size(), 2U);
  EXPECT_FALSE(read("users/1001/vehicles/3001").contains("devices"));
  EXPECT_EQ(read("users/1001/vehicles/3001?plate=BS%2030461")["plate"], "BS 30461");
  // The list's slash is part of its name.
  refuses(404, {"GET users/1001/vehicles", "GET users/1001/vehicles/3003",
                "GET users/1001/vehicles/3001?plate=X"});
}

}  // namespace
}  // namespace orvane::sandbox::test
