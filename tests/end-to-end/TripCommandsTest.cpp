// SPDX-License-Identifier: Apache-2.0
// The commands around trips: what they print, send and refuse.
#include "CommandLine.h"

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Rows = std::vector<Words>;

// The id of one of the person's trips of which `isWanted` says so.
template <class Wanted>
std::string tripWith(const Environment& environment, Wanted isWanted) {
  for (const auto& trip : jsonOf("trips list --all --expand events,geometry", environment)) {
    if (isWanted(trip)) return trip["tripId"].get<std::string>();
  }
  ADD_FAILURE() << "there is no such trip";
  return {};
}

TEST(TripCommandsTest, ShowAndCorrectTrips) {
  const SandboxProcess sandbox({"--weeks", "8"});
  const Environment anna = settingsOf(sandbox);
  const Environment priya = settingsOf(sandbox, "priya.nair");
  const std::string id = tripWith(anna, [](const nlohmann::json& trip) {
    return trip["events"].contains("MultiLevelBrakingViolation") &&
           trip["transportMode"] == "DRIVER";
  });
  const std::string indian = tripWith(
      priya, [](const nlohmann::json& trip) { return trip["timeZoneOffsetMillis"] == 19800000; });

  check(
      {
          prints("trips show " + id,
                 AllOf(StartsWith("id\t" + id + "\nstatus\tfinished\nstarted\t"),
                       ContainsRegex("\ndistance\t[0-9.]+ km\n"),
                       ContainsRegex("\naverage speed\t[0-9]+ km/h\n"),
                       ContainsRegex("\nduration\t([0-9]+ h )?[0-9]+ min"),
                       HasSubstr("\ntransport mode\tdriver\n"), Not(HasSubstr("events")),
                       Not(HasSubstr("scores")))),
          prints(
              "trips show " + id + " --expand events,scores,geometry,user,vehicles",
              AllOf(ContainsRegex("\nroute\t[0-9]+ points\n"),
                    ContainsRegex("\nscores: overall\t[0-9.]+\n"),
                    ContainsRegex("\nscores: harsh braking\t[0-9.]+\n"),
                    has("\nscoring: algorithm\tIMS\n", "\ndriver: first name\tAnna\n",
                        "\nvehicle: make\t", "time\tevent\tseverity\tspeed\tlimit\tfor\tplace\n"),
                    ContainsRegex("\n[0-9:]{8}\tharsh braking\t(very )?(low|medium|high)\t[0-9]+ "
                                  "km/h\t\t[^\t]*\t[0-9.]+, [0-9.]+\n"))),
          prints("trips update " + id + " --transport-mode CAR_PASSENGER --purpose business",
                 has("transport mode\tcar-passenger\n", "purpose\tbusiness\n")),
          prints("trips update " + id + " --transport-mode unknown",
                 has("transport mode\tunknown\n", "purpose\tbusiness\n")),
          prints("trips show " + id, HasSubstr("transport mode\tunknown\n")),
          prints("trips show " + id + " --json",
                 has("{\n  \"tripId\": \"" + id + "\",", "\"transportMode\": \"\"")),
      },
      anna);
  check({prints("trips show " + indian, ContainsRegex("\nstarted\t[0-9-]{10} [0-9:]{8} \\+05:30\n"
                                                      "ended\t[0-9-]{10} [0-9:]{8} \\+05:30\n"))},
        priya);
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
  const std::string drawing = folder / "trip.svg";
  const std::string features = folder / "trip.geojson";
  const std::string show = "trips show " + id;
  check({prints(show + " --svg " + drawing + " --geojson " + features,
                AllOf(has("id\t" + id + "\n", "time\tevent\t"),
                      ContainsRegex("\nroute\t[0-9]+ points\n")))},
        anna);
  const std::string svg = contentsOf(drawing);
  EXPECT_THAT(svg, has("<?xml", "Trip " + id, "class=\"accent\"", "</svg>\n"));
  const auto document = nlohmann::json::parse(contentsOf(features));
  std::size_t points = 0;
  for (const auto& feature : document["features"]) {
    if (feature["geometry"]["type"] == "Point") ++points;
  }
  EXPECT_EQ(points, events);
  EXPECT_GT(document["features"][0]["geometry"]["coordinates"].size(), 10U);

  // The document instead of the trip.
  check({prints(show + " --svg -", svg), prints(show + " --geojson - --json", contentsOf(features)),
         fails(show + " --svg - --geojson -", 64, "only one"),
         fails(show + " --svg " + folder.path().string(), 74, folder.path()),
         fails(show + " --svg /nowhere/trip.svg", 74, "/nowhere/trip.svg can't be written"),
         fails(show + " --geojson /dev/full", 74, "/dev/full"),
         fails(show + " --svg ''", 64, "a path")},
        anna);
  // What fails leaves the former document as it was.
  sandbox.misbehave({{"path", "/trips/"}, {"status", 500}});
  check({fails(show + " --svg " + drawing, 50)}, anna);
  EXPECT_EQ(contentsOf(drawing), svg);
}

TEST(TripCommandsTest, ListsArePagesOrEverything) {
  SandboxProcess sandbox({"--weeks", "8"});
  const Environment anna = settingsOf(sandbox);
  const Words columns{"id",    "started", "duration", "distance", "mode",   "purpose",
                      "score", "events",  "vehicle",  "route",    "driver", "vehicle's name"};
  for (const char* list : {"list", "logbook"}) {
    const auto trips = [&](const std::string& more) {
      const Ending ending = orvane(std::string("trips ") + list + more, anna);
      EXPECT_EQ(ending.exitCode, 0) << ending.errors;
      Rows rows = cellsOf(ending.output);
      EXPECT_EQ(rows.at(0), columns);
      rows.erase(rows.begin());
      return rows;
    };
    sandbox.behave();
    const Rows all = trips(" --all");
    ASSERT_GT(all.size(), 102U);
    EXPECT_EQ(sandbox.arrivals().size(), 1 + (all.size() / 100 + 1));
    EXPECT_EQ(trips(" --limit 3 --offset 99"), Rows(all.begin() + 99, all.begin() + 102));
    EXPECT_EQ(trips(" --offset 2").size(), 100U);
    EXPECT_EQ(trips(" --limit 0").size(), 1U);

    // The days of a trip's start, both included.
    const std::string day = all.at(20).at(1).substr(0, 10);
    Rows ofDay;
    for (const auto& trip : all) {
      if (trip.at(1).starts_with(day)) ofDay.push_back(trip);
    }
    EXPECT_EQ(trips(" --from " + day + " --to " + day), ofDay);
    EXPECT_EQ(trips(" --all --from " + day + " --to " + day), ofDay);
    EXPECT_EQ(trips(" --all --from " + day).at(0), all.at(0));
    const Rows detailed = trips(" --limit 100 --expand scores,events");
    for (const auto& trip : detailed) EXPECT_NE(trip.at(7), "");
  }

  const std::string own = orvane("trips list --all", anna).output;
  EXPECT_NE(orvane("trips list --all --of 1002", anna).output, own);
  const Rows ofVehicle = cellsOf(
      orvane("trips by-vehicle 3001 --from 2000-01-01 --to 2099-12-31 --limit 500 --of 1001", anna)
          .output);
  ASSERT_GT(ofVehicle.size(), 1U);
  for (std::size_t row = 1; row < ofVehicle.size(); ++row) {
    EXPECT_EQ(ofVehicle[row].at(8), "3001");
    EXPECT_THAT(own, HasSubstr("\n" + ofVehicle[row].at(0) + "\t"));
  }
}

TEST(TripCommandsTest, SayWhatTheyDoNotTake) {
  SandboxProcess sandbox;
  check(
      {
          fails("trips show", 64, "ID is required"),
          fails("trips show nothing", 44, "does not know"),
          fails("trips show \xff", 20, "formed"),
          fails("trips show 1 --expand route", 64, "'route' is not one of"),
          fails("trips update 1", 64, "--transport-mode or --purpose"),
          fails("trips update 1 --transport-mode sledge", 64, "'sledge' is not"),
          fails("trips update 1 --transport-mode ''", 64, "'' is not"),
          fails("trips update nothing --purpose business", 44, "does not know"),
          fails("trips update '' --purpose business", 64, "an identifier"),
          fails("trips show ''", 64, "an identifier"),
          fails("trips list --of ''", 64, "an identifier"),
          fails("trips by-vehicle '' --from 2024-02-01 --to 2024-02-02", 64, "an identifier"),
          fails("vehicles show ''", 64, "an identifier"),
          fails("alerts braking '' low", 64, "an identifier"),
          fails("trips list --from 2024-02-30", 64, "a day, as YYYY-MM-DD"),
          fails("trips list --to 2024-02-01", 64, "--to needs --from"),
          fails("trips list --from 2024-02-02 --to 2024-02-01", 64, "before"),
          fails("trips list --all --limit 5", 64, "--all goes without"),
          fails("trips list --limit 99999999999999999999", 64, "a whole number"),
          fails("trips list --of 1004", 43, "does not allow"),
          fails("trips by-vehicle 3001 --from 2024-02-01", 64, "--to is required"),
          fails("trips by-vehicle 3001 --from soon --to later", 64, "7-days-ago"),
          fails("trips by-vehicle 9 --from 2024-02-01 --to 2024-02-02", 44, "does not know"),
          fails("vehicles show 3001 --plate 'ZZ 1'", 44, "does not know"),
          fails("summary list --aggregate-by century", 40, "(400)"),
          fails("alerts braking 1001", 64, "SEVERITY is required"),
          fails("alerts braking 1001 3", 64, "off, low, medium, high"),
          fails("alerts braking nobody low", 44, "does not know"),
          fails("alerts late-night 1001 yes --from 22:00", 64, "go together"),
          fails("alerts late-night 1001 yes --from 25:00 --to 5:00", 64, "a time of day"),
      },
      settingsOf(sandbox));

  // A logbook that is none, whichever way it is read.
  sandbox.misbehave({{"path", "/logbook/"}, {"body", "emptyObject"}});
  check({fails("trips logbook", 21), fails("trips logbook --all", 21)}, settingsOf(sandbox));
  sandbox.behave();
  sandbox.misbehave({{"path", "/trips"}, {"body", "empty"}});
  check({fails("trips list", 22),
         prints("trips logbook", AllOf(StartsWith("id\t"), Not(HasSubstr("\n5"))))},
        settingsOf(sandbox));
}

TEST(TripCommandsTest, LocationVehiclesSummaryAndAlerts) {
  SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  check(
      {
          prints("location",
                 ContainsRegex("^latitude\t47\\.[0-9]+\nlongitude\t7\\.[0-9]+\ntime\t")),
          prints("vehicles list",
                 has("id\tname\tmake\tmodel\tyear\tplate\tVIN\towners\t", "\n3001\t")),
          prints("vehicles show 3001 --expand users-by-role,devices --plate 'BS 30461'",
                 has("plate\tBS 30461\n", "1001\tAnna K.", "serial number", "enrolled on\t20")),
          prints("summary show", AllOf(HasSubstr("\nuser\t1001\n"), Not(HasSubstr("detection")))),
          prints("summary show --expand userTrainingStatus",
                 AllOf(ContainsRegex("\ndistance driven\t[0-9.]+ km\n"),
                       HasSubstr("driver detection: status\tin training\n"))),
          prints("summary list --aggregate-by WEEK",
                 ContainsRegex("\n20[^\t]*\t20[^\t]*\t[0-9]+\t[0-9.]+ km\t[0-9]+ h [0-9]+ min\t")),
          prints("alerts acceleration 1001 medium", "The alert is set.\n"),
          prints("alerts speeding 1001 120 --json", IsEmpty()),
          prints("alerts late-night 1001 yes --from 22:30 --to 6:05", "The alert is set.\n"),
      },
      anna);
}

}  // namespace
}  // namespace orvane::test
