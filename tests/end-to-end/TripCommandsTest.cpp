// SPDX-License-Identifier: Apache-2.0
// The commands around trips: what they print, send and refuse.
#include "CommandLine.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <sstream>

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Rows = std::vector<std::vector<std::string>>;

// What a command printed for other programs: cells between tabs.
Rows cellsOf(const std::string& output) {
  Rows rows;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream cells(line);
    std::vector<std::string>& row = rows.emplace_back();
    for (std::string cell; std::getline(cells, cell, '\t');) row.push_back(cell);
  }
  return rows;
}

std::string contentsOf(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

nlohmann::json jsonOf(Words arguments, const Environment& environment) {
  arguments.insert(arguments.begin(), "--json");
  const Ending ending = orvane(arguments, environment);
  EXPECT_EQ(ending.exitCode, 0) << ending.errors;
  return nlohmann::json::parse(ending.output, nullptr, false);
}

// The id of one of the person's trips of which `isWanted` says so.
template <class Wanted>
std::string tripWith(const Environment& environment, Wanted isWanted) {
  const Words all{"trips", "list", "--all", "--expand", "events,geometry"};
  for (const auto& trip : jsonOf(all, environment)) {
    if (isWanted(trip)) return trip["tripId"].get<std::string>();
  }
  ADD_FAILURE() << "there is no such trip";
  return {};
}

TEST(TripCommandsTest, ShowAndCorrectTrips) {
  const SandboxProcess sandbox({"--weeks", "8"});
  const Environment anna = settingsOf(sandbox);
  const Environment priya = with(anna, {{"ORVANE_USER", "priya.nair"}});
  const std::string id = tripWith(anna, [](const nlohmann::json& trip) {
    return trip["events"].contains("MultiLevelBrakingViolation") &&
           trip["transportMode"] == "DRIVER";
  });
  const std::string indian = tripWith(
      priya, [](const nlohmann::json& trip) { return trip["timeZoneOffsetMillis"] == 19800000; });

  const std::string time = "[0-9-]{10} [0-9]{2}:[0-9]{2}";
  check(
      {
          {{"trips", "show", id},
           0,
           AllOf(StartsWith("id\t" + id + "\nstatus\tfinished\nstarted\t"),
                 ContainsRegex("\ndistance\t[0-9.]+ km\n"),
                 ContainsRegex("\naverage speed\t[0-9]+ km/h\n"),
                 ContainsRegex("\nduration\t([0-9]+ h )?[0-9]+ min"),
                 HasSubstr("\ntransport mode\tdriver\n"), Not(HasSubstr("events")),
                 Not(HasSubstr("scores")))},
          {{"trips", "show", id, "--expand", "events,scores,geometry,user,vehicles"},
           0,
           AllOf(ContainsRegex("\nroute\t[0-9]+ points\n"),
                 ContainsRegex("\nscores: overall\t[0-9.]+\n"),
                 ContainsRegex("\nscores: harsh.braking\t[0-9.]+\n"),
                 HasSubstr("\nscoring: algorithm\tIMS\n"),
                 HasSubstr("\ndriver: first name\tAnna\n"), HasSubstr("\nvehicle: make\t"),
                 HasSubstr("time\tevent\tseverity\tspeed\tlimit\tfor\tplace\n"),
                 ContainsRegex("\n[0-9:]{8}\tharsh braking\t(very )?(low|medium|high)\t[0-9]+ "
                               "km/h\t\t[^\t]*\t[0-9.]+, [0-9.]+\n"))},
          {{"trips", "update", id, "--transport-mode", "CAR_PASSENGER", "--purpose", "business"},
           0,
           AllOf(HasSubstr("transport mode\tcar-passenger\n"), HasSubstr("purpose\tbusiness\n"))},
          {{"trips", "update", id, "--transport-mode", "unknown"},
           0,
           AllOf(HasSubstr("transport mode\tunknown\n"), HasSubstr("purpose\tbusiness\n"))},
          {{"trips", "show", id}, 0, HasSubstr("transport mode\tunknown\n")},
          {{"trips", "show", id, "--json"},
           0,
           AllOf(StartsWith("{\n  \"tripId\": \"" + id + "\","),
                 HasSubstr("\"transportMode\": \"\""))},
      },
      anna);
  check({{{"trips", "show", indian},
          0,
          AllOf(ContainsRegex("\nstarted\t" + time + ":[0-9]{2} \\+05:30\n"),
                ContainsRegex("\nended\t" + time + ":[0-9]{2} \\+05:30\n"))}},
        priya);
}

// True when every element that begins ends again, in order; enough to tell that nothing got out of
// its quotes or is missing.
bool isWellFormed(const std::string& xml) {
  std::vector<std::string> open;
  for (std::size_t at = xml.find('<'); at != std::string::npos; at = xml.find('<', at + 1)) {
    const std::size_t end = xml.find('>', at);
    if (end == std::string::npos) return false;
    const std::string tag = xml.substr(at + 1, end - at - 1);
    if (tag.starts_with('?') || tag.ends_with('/')) continue;
    if (!tag.starts_with('/')) {
      open.push_back(tag.substr(0, tag.find(' ')));
    } else if (open.empty() || open.back() != tag.substr(1)) {
      return false;
    } else {
      open.pop_back();
    }
  }
  return open.empty() && xml.starts_with("<?xml");
}

TEST(TripCommandsTest, DrawTrips) {
  SandboxProcess sandbox({"--weeks", "4"});
  const Environment anna = settingsOf(sandbox);
  const TemporaryFolder folder;
  std::size_t events = 0;
  const std::string id = tripWith(anna, [&](const nlohmann::json& trip) {
    events = 0;
    for (const auto& list : trip["events"]) events += list.size();
    return events > 1;
  });
  const std::string drawing = folder.path() + "/trip.svg";
  const std::string features = folder.path() + "/trip.geojson";
  check({{{"trips", "show", id, "--svg", drawing, "--geojson", features},
          0,
          AllOf(StartsWith("id\t" + id + "\n"), ContainsRegex("\nroute\t[0-9]+ points\n"),
                HasSubstr("time\tevent\t"))}},
        anna);
  const std::string svg = contentsOf(drawing);
  EXPECT_TRUE(isWellFormed(svg));
  EXPECT_THAT(svg, AllOf(HasSubstr("Trip " + id), HasSubstr("class=\"accent\"")));
  const auto document = nlohmann::json::parse(contentsOf(features));
  std::size_t points = 0;
  for (const auto& feature : document["features"]) {
    if (feature["geometry"]["type"] == "Point") ++points;
    EXPECT_EQ(feature["properties"].contains("marker-color"),
              feature["properties"]["kind"] == "event");
  }
  EXPECT_EQ(points, events);
  EXPECT_GT(document["features"][0]["geometry"]["coordinates"].size(), 10U);

  // The document instead of the trip.
  EXPECT_EQ(orvane({"trips", "show", id, "--svg", "-"}, anna).output, svg);
  EXPECT_EQ(orvane({"trips", "show", id, "--geojson", "-", "--json"}, anna).output,
            contentsOf(features));

  const auto failing = [&](Words more, int code, const std::string& said) {
    more.insert(more.begin(), {"trips", "show", id});
    return CommandRow{std::move(more), code, IsEmpty(), AllOf(IsOneLine(), HasSubstr(said))};
  };
  check(
      {failing({"--svg", "-", "--geojson", "-"}, 64, "only one"),
       failing({"--svg", folder.path()}, 74, folder.path()),
       failing({"--svg", "/nowhere/trip.svg"}, 74, "/nowhere/trip.svg can't be written"),
       failing({"--geojson", "/dev/full"}, 74, "/dev/full"), failing({"--svg", ""}, 64, "a path")},
      anna);
  // What fails leaves the former document as it was.
  sandbox.misbehave({{"path", "/trips/"}, {"status", 500}});
  check({failing({"--svg", drawing}, 50, "")}, anna);
  EXPECT_EQ(contentsOf(drawing), svg);
}

TEST(TripCommandsTest, ListsArePagesOrEverything) {
  SandboxProcess sandbox({"--weeks", "8"});
  const Environment anna = settingsOf(sandbox);
  const Words columns{"id",      "started", "duration", "distance", "mode",
                      "purpose", "score",   "events",   "vehicle"};
  for (const char* list : {"list", "logbook"}) {
    const auto trips = [&](Words more) {
      more.insert(more.begin(), {"trips", list});
      const Ending ending = orvane(more, anna);
      EXPECT_EQ(ending.exitCode, 0) << ending.errors;
      Rows rows = cellsOf(ending.output);
      EXPECT_EQ(rows.at(0), columns);
      rows.erase(rows.begin());
      return rows;
    };
    sandbox.behave();
    const Rows all = trips({"--all"});
    ASSERT_GT(all.size(), 102U);
    EXPECT_EQ(sandbox.arrivals().size(), 1 + (all.size() / 100 + 1));
    EXPECT_EQ(trips({"--limit", "3", "--offset", "99"}), Rows(all.begin() + 99, all.begin() + 102));
    EXPECT_EQ(trips({"--offset", "2"}).size(), 100U);
    EXPECT_EQ(trips({"--limit", "0"}).size(), 1U);

    // The days of a trip's start, both included.
    const std::string day = all.at(20).at(1).substr(0, 10);
    Rows ofDay;
    for (const auto& trip : all) {
      if (trip.at(1).starts_with(day)) ofDay.push_back(trip);
    }
    EXPECT_EQ(trips({"--from", day, "--to", day}), ofDay);
    EXPECT_EQ(trips({"--from", day, "--to", day, "--all"}), ofDay);
    EXPECT_EQ(trips({"--from", day, "--all"}).at(0), all.at(0));
    const Rows detailed = trips({"--limit", "100", "--expand", "scores,events"});
    for (const auto& trip : detailed) EXPECT_NE(trip.at(7), "");
  }

  const std::string own = orvane({"trips", "list", "--all"}, anna).output;
  const Words ofMarc{"trips", "list", "--all", "--user", "1002"};
  EXPECT_NE(orvane(ofMarc, anna).output, own);
  const Words byVehicle{"trips",      "by-vehicle", "3001", "--from", "2000-01-01", "--to",
                        "2099-12-31", "--limit",    "500",  "--user", "1001"};
  const Rows ofVehicle = cellsOf(orvane(byVehicle, anna).output);
  ASSERT_GT(ofVehicle.size(), 1U);
  for (std::size_t row = 1; row < ofVehicle.size(); ++row) {
    EXPECT_EQ(ofVehicle[row].at(8), "3001");
    EXPECT_THAT(own, HasSubstr("\n" + ofVehicle[row].at(0) + "\t"));
  }
}

TEST(TripCommandsTest, SayWhatTheyDoNotTake) {
  SandboxProcess sandbox;
  const auto failing = [](Words arguments, int code, const std::string& said) {
    return CommandRow{std::move(arguments), code, IsEmpty(), AllOf(IsOneLine(), HasSubstr(said))};
  };
  check(
      {
          failing({"trips", "show"}, 64, "ID is required"),
          failing({"trips", "show", "nothing"}, 44, "does not know"),
          failing({"trips", "show", "\xff"}, 20, "formed"),
          failing({"trips", "show", "1", "--expand", "route"}, 64, "'route' is not one of"),
          failing({"trips", "update", "1"}, 64, "--transport-mode or --purpose"),
          failing({"trips", "update", "1", "--transport-mode", "sledge"}, 64, "'sledge' is not"),
          failing({"trips", "update", "1", "--transport-mode", ""}, 64, "'' is not"),
          failing({"trips", "update", "nothing", "--purpose", "business"}, 44, "does not know"),
          failing({"trips", "list", "--from", "2024-02-30"}, 64, "a day, as YYYY-MM-DD"),
          failing({"trips", "list", "--to", "2024-02-01"}, 64, "--to needs --from"),
          failing({"trips", "list", "--from", "2024-02-02", "--to", "2024-02-01"}, 64, "before"),
          failing({"trips", "list", "--all", "--limit", "5"}, 64, "--all goes without"),
          failing({"trips", "list", "--limit", "99999999999999999999"}, 64, "a whole number"),
          failing({"trips", "list", "--user", "1004"}, 43, "does not allow"),
          failing({"trips", "by-vehicle", "3001", "--from", "2024-02-01"}, 64, "--to is required"),
          failing({"trips", "by-vehicle", "3001", "--from", "soon", "--to", "later"}, 40, "(400)"),
          failing({"trips", "by-vehicle", "9", "--from", "2024-02-01", "--to", "2024-02-02"}, 44,
                  "does not know"),
          failing({"vehicles", "show", "3001", "--plate", "ZZ 1"}, 44, "does not know"),
          failing({"summary", "list", "--aggregate-by", "century"}, 40, "(400)"),
          failing({"alerts", "braking", "1001"}, 64, "SEVERITY is required"),
          failing({"alerts", "braking", "1001", "3"}, 64, "off, low, medium, high"),
          failing({"alerts", "braking", "nobody", "low"}, 44, "does not know"),
          failing({"alerts", "late-night", "1001", "yes", "--from", "22:00"}, 64, "go together"),
          failing({"alerts", "late-night", "1001", "yes", "--from", "25:00", "--to", "5:00"}, 64,
                  "a time of day"),
      },
      settingsOf(sandbox));

  // A logbook that is none, whichever way it is read.
  sandbox.misbehave({{"path", "/logbook/"}, {"body", "emptyObject"}});
  check({failing({"trips", "logbook"}, 21, ""), failing({"trips", "logbook", "--all"}, 21, "")},
        settingsOf(sandbox));
  sandbox.behave();
  sandbox.misbehave({{"path", "/trips"}, {"body", "empty"}});
  check({failing({"trips", "list"}, 22, ""),
         {{"trips", "logbook"}, 0, AllOf(StartsWith("id\t"), Not(HasSubstr("\n5")))}},
        settingsOf(sandbox));
}

TEST(TripCommandsTest, LocationVehiclesSummaryAndAlerts) {
  SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  check(
      {
          {{"location"}, 0, ContainsRegex("^latitude\t47\\.[0-9]+\nlongitude\t7\\.[0-9]+\ntime\t")},
          {{"vehicles", "list"},
           0,
           AllOf(StartsWith("id\tname\tmake\tmodel\tyear\tplate\tVIN\n"), HasSubstr("\n3001\t"))},
          {{"vehicles", "show", "3001", "--expand", "users-by-role,devices", "--plate", "BS 30461"},
           0,
           AllOf(HasSubstr("plate\tBS 30461\n"), HasSubstr("1001\tAnna K."),
                 HasSubstr("serial number"), ContainsRegex("enrolled on\t20"))},
          {{"summary", "show"}, 0, AllOf(HasSubstr("\nuser\t1001\n"), Not(HasSubstr("detection")))},
          {{"summary", "show", "--expand", "userTrainingStatus"},
           0,
           AllOf(ContainsRegex("\ndistance driven\t[0-9.]+ km\n"),
                 HasSubstr("driver detection: status\tin training\n"))},
          {{"summary", "list", "--aggregate-by", "WEEK"},
           0,
           ContainsRegex("\n20[^\t]*\t20[^\t]*\t[0-9]+\t[0-9.]+ km\t[0-9]+ h [0-9]+ min\t")},
          {{"alerts", "acceleration", "1001", "medium"}, 0, "The alert is set.\n"},
          {{"alerts", "speeding", "1001", "120", "--json"}, 0, IsEmpty()},
          {{"alerts", "late-night", "1001", "yes", "--from", "22:30", "--to", "6:05"},
           0,
           "The alert is set.\n"},
      },
      anna);
}

}  // namespace
}  // namespace orvane::test
