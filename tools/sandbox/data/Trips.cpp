// SPDX-License-Identifier: Apache-2.0
#include "data/Trips.h"

#include "JsonWriter.h"
#include "data/Drive.h"
#include "data/People.h"
#include "data/Vehicles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace orvane::sandbox {

namespace {

constexpr Milliseconds minuteMillis = 60'000;
constexpr Milliseconds hourMillis = 60 * minuteMillis;
constexpr Milliseconds indianOffset = 5 * hourMillis + 30 * minuteMillis;

constexpr TravelMode car{"DRIVER", 130, 1.5, 1.8, 2.2, 0.5, 0};
constexpr std::array<TravelMode, 11> otherModes{{
    {"CAR_PASSENGER", 130, 1.5, 1.8, 2.2, 0.5, 0},
    {"TRAIN", 140, 0.5, 0.6, 0.9, 0, 9000},
    {"BUS", 50, 1.0, 1.2, 1.6, 0.3, 420},
    {"AIRPLANE", 780, 1.4, 1.2, 5.0, 0, 0},
    {"TAXI", 120, 1.6, 1.9, 2.3, 0.5, 0},
    {"MOTORCYCLE", 125, 2.6, 2.6, 3.2, 0.3, 0},
    {"BOAT", 24, 0.2, 0.2, 0.6, 0, 3500},
    {"WALK", 5.2, 0.8, 0.8, 1.0, 0.2, 0},
    {"BICYCLE", 19, 0.8, 1.2, 1.6, 0.25, 0},
    {"PUBLIC_TRANSPORTATION", 50, 1.1, 1.2, 1.2, 0.3, 480},
    {"OTHER", 24, 1.0, 1.2, 1.5, 0.25, 0},
}};
constexpr TravelMode unforeseenMode{"CARGO_BIKE", 22, 0.7, 1.0, 1.4, 0.25, 0};

/// Where somebody's days happen.
struct Haunts {
  const char* home;
  const char* work;
  std::array<const char*, 5> others;
};

const Haunts& hauntsOf(std::string_view userId) {
  static const std::map<std::string_view, Haunts> haunts{
      {"1001",
       {"Missionsstrasse",
        "Pratteln",
        {"Allschwil", "Riehen", "Markthalle", "Liestal", "Saint-Louis"}}},
      {"1002",
       {"Missionsstrasse",
        "Reinach",
        {"Weil am Rhein", "Bahnhof SBB", "Muttenz", "EuroAirport", "Loerrach"}}},
      {"1003",
       {"Missionsstrasse",
        "Wettsteinplatz",
        {"Heuwaage", "Kannenfeldplatz", "Riehen", "Birsfelden", "Binningen"}}},
      {"1004",
       {"Kleinhueningen",
        "Dreispitz",
        {"Augst", "Liestal", "EuroAirport", "Weil am Rhein", "Muttenz"}}},
      {"1005",
       {"Kleinhueningen",
        "Dreispitz",
        {"Arlesheim", "Saint-Louis", "Loerrach", "Bahnhof SBB", "Allschwil"}}},
      {"1006",
       {"Saint-Louis", "Voltaplatz", {"Hesingue", "Liestal", "Loerrach", "Reinach", "Riehen"}}},
  };
  static const std::array<Haunts, 4> anyone{{
      {"Riehen", "Messeplatz", {"Loerrach", "Breite", "Pratteln", "Claraplatz", "Weil am Rhein"}},
      {"Tellplatz",
       "Allschwil",
       {"Bottmingen", "Muttenz", "Schuetzenhaus", "Dreispitz", "Hesingue"}},
      {"Neubad", "Hagnau", {"Liestal", "Spalentor", "Arlesheim", "Lysbuechel", "Feldbergstrasse"}},
      {"Muttenz", "Wiesenplatz", {"Pratteln", "Augst", "Aeschenplatz", "Reinach", "Stetten"}},
  }};
  const auto found = haunts.find(userId);
  return found != haunts.end() ? found->second
                               : anyone[static_cast<std::size_t>(userId.back() % 4)];
}

Day lastSundayOf(std::chrono::year_month month) {
  return Day{month / std::chrono::Sunday[std::chrono::last]};
}

/// Central European time: an hour ahead of UTC, two from the end of March to the end of October.
Milliseconds centralEuropeanOffset(Milliseconds time) {
  const std::chrono::year_month_day date{dayOf(time)};
  const auto change = [&](std::chrono::month month) {
    return startOf(lastSundayOf(date.year() / month)) + hourMillis;
  };
  const bool summer = time >= change(std::chrono::March) && time < change(std::chrono::October);
  return summer ? 2 * hourMillis : hourMillis;
}

/// A journey that somebody is about to make.
struct Plan {
  const RoadMap* map = nullptr;
  Route route;
  TravelMode mode = car;
  std::string from;
  std::string to;
  const char* purpose = "PERSONAL";
};

double sixDecimals(double degrees) { return std::round(degrees * 1e6) / 1e6; }

/// As on the wire: lists keyed by the type's name.
std::string eventsOf(const Drive& drive, const char* modeText) {
  std::map<std::string_view, std::vector<const DrivingEvent*>> byType;
  for (const DrivingEvent& event : drive.events) byType[event.type].push_back(&event);
  JsonWriter json;
  json.beginObject();
  for (const auto& [type, events] : byType) {
    json.key(type).beginArray();
    for (const DrivingEvent* event : events) {
      const Fix& fix = drive.fixes[event->fix];
      json.beginObject()
          .member("latitude", sixDecimals(fix.position.latitude))
          .member("longitude", sixDecimals(fix.position.longitude))
          .member("timeStamp", fix.time);
      if (type != phoneEvent) {
        json.member("level", event->level).member("kmPerHour", std::round(fix.speed * 10) / 10);
      }
      if (event->lastFix > event->fix) {
        std::vector<Position> stretch;
        double speeds = 0;
        for (std::size_t i = event->fix; i <= event->lastFix; ++i) {
          stretch.push_back(drive.fixes[i].position);
          speeds += drive.fixes[i].speed;
        }
        const double mean = speeds / static_cast<double>(stretch.size());
        const double seconds =
            static_cast<double>(drive.fixes[event->lastFix].time - fix.time) / 1000;
        json.member("averageKmPerHour", std::round(mean * 10) / 10)
            .member("geometry", encodePolyline(stretch))
            .member("secondsOfDriving", seconds)
            .member("kmSpeedLimit", fix.speedLimit);
      }
      json.member("transportMode", modeText).endObject();
    }
    json.endArray();
  }
  return json.endObject().take();
}

std::string poisOf(const Drive& drive, const Plan& plan) {
  JsonWriter json;
  json.beginArray();
  const auto add = [&](const char* kind, const std::string& name, const Position& position) {
    json.beginObject()
        .member("type", kind)
        .member("name", name)
        .member("latitude", sixDecimals(position.latitude))
        .member("longitude", sixDecimals(position.longitude))
        .endObject();
  };
  add("START", plan.from, drive.fixes.front().position);
  add("END", plan.to, drive.fixes.back().position);
  return json.endArray().take();
}

class TripWriter {
 public:
  TripWriter(DatabaseConnection& database, Milliseconds now) : database_(database), now_(now) {}

  /// Ends the trip early when it reaches beyond now: then somebody is still on the way.
  void write(const Person& person, const Plan& plan, Drive drive, Milliseconds offset,
             Random& random) {
    const bool underWay = drive.fixes.back().time > now_;
    if (underWay) cut(drive);
    if (drive.fixes.size() < 2) return;
    const Milliseconds start = drive.fixes.front().time;
    const Milliseconds end = drive.fixes.back().time;
    const bool isCar = std::string_view{plan.mode.wireText} == car.wireText;
    // Every finished trip is scored: it counts as soon as it is corrected to one driven oneself.
    const DriveScores scores = scoreOf(drive);
    const auto ifScored = [&](double score) {
      return underWay ? std::nullopt : std::optional{score};
    };
    const char* vehicle = vehicleOf(person.userId);
    const std::string tripId = std::to_string(nextId_++);
    database_.execute(
        "INSERT INTO trips VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?,"
        " ?, ?, ?, ?, ?, ?)",
        tripId, person.userId, isCar && vehicle ? std::optional{vehicle} : std::nullopt, start,
        underWay ? std::nullopt : std::optional{end},
        underWay ? std::nullopt : std::optional{std::min(end + 4 * minuteMillis, now_)}, offset,
        formatDay(dayOf(start + offset)), drive.kilometres,
        std::round(drive.kilometres / drive.seconds * 36'000) / 10,
        std::round(drive.maximumSpeed * 10) / 10, drive.seconds, std::round(drive.idleSeconds),
        isCar ? std::round(drive.kilometres * random.between(48, 66)) / 1000 : 0.0,
        underWay ? "STARTED" : "FINISHED", plan.mode.wireText, plan.purpose,
        ifScored(scores.overall), ifScored(scores.acceleration), ifScored(scores.braking),
        ifScored(scores.cornering), ifScored(scores.speeding), ifScored(scores.overSpeeding),
        ifScored(scores.distraction), ifScored(scores.usage),
        sixDecimals(drive.fixes.back().position.latitude),
        sixDecimals(drive.fixes.back().position.longitude));
    writeDetails(tripId, drive, plan, random);
  }

 private:
  void cut(Drive& drive) const {
    std::erase_if(drive.fixes, [this](const Fix& fix) { return fix.time > now_; });
    std::erase_if(drive.events,
                  [&](const DrivingEvent& event) { return event.lastFix >= drive.fixes.size(); });
    if (drive.fixes.size() < 2) return;
    const double seconds =
        static_cast<double>(drive.fixes.back().time - drive.fixes.front().time) / 1000;
    double metres = 0;
    for (std::size_t i = 0; i + 1 < drive.fixes.size(); ++i) {
      metres += metresBetween(drive.fixes[i].position, drive.fixes[i + 1].position);
    }
    drive.kilometres = std::round(metres) / 1000;
    drive.idleSeconds *= seconds / drive.seconds;
    drive.seconds = seconds;
  }

  void writeDetails(const std::string& tripId, const Drive& drive, const Plan& plan,
                    Random& random) {
    std::vector<Position> line;
    std::vector<Position> profile;  // the same encoding serves for seconds and metres per second
    for (const Fix& fix : drive.fixes) {
      // Whoever stands still adds nothing to the route.
      if (!line.empty() && fix.speed <= 0) continue;
      line.push_back(fix.position);
      const auto seconds = static_cast<double>(fix.time - drive.fixes.front().time) / 1000;
      profile.push_back({seconds * profileScale, fix.speed / 3.6 * profileScale});
    }
    // Now and then the phone woke up late, and the first stretch was worked out afterwards.
    std::optional<std::string> startGeometry;
    if (line.size() > 60 && random.chance(0.12)) {
      startGeometry = encodePolyline(std::span{line}.first(21));
      line.erase(line.begin(), line.begin() + 20);
    }
    database_.execute("INSERT INTO trip_details VALUES (?, ?, ?, ?, ?, ?)", tripId,
                      encodePolyline(line), startGeometry, eventsOf(drive, plan.mode.wireText),
                      poisOf(drive, plan), encodePolyline(profile));
  }

  DatabaseConnection& database_;
  Milliseconds now_;
  int nextId_ = 500'001;
};

/// The days of one person, one after the other.
class Diary {
 public:
  Diary(const Person& person, Milliseconds now, TripWriter& writer)
      : person_(person),
        haunts_(hauntsOf(person.userId)),
        now_(now),
        today_(dayOf(now)),
        writer_(writer),
        random_(static_cast<std::uint64_t>(std::stoi(person.userId))) {}

  template <class DayDone>
  void live(int weeks, const DayDone& dayDone) {
    place_ = haunts_.home;
    for (int daysAgo = weeks * 7; daysAgo >= 0; --daysAgo) {
      const Day day = today_ - std::chrono::days{daysAgo};
      const bool abroad =
          std::string_view{person_.userId} == "1005" && daysAgo >= 8 && daysAgo < 13;
      abroad ? liveAbroad(day) : liveAtHome(day);
      dayDone();
    }
  }

 private:
  void liveAtHome(Day day) {
    const std::chrono::weekday weekday{day};
    const bool weekend = weekday == std::chrono::Saturday || weekday == std::chrono::Sunday;
    const bool weekendsOnly = std::string_view{person_.driverType} == "WEEKEND_DRIVER";
    if (weekendsOnly && !weekend) return;
    const double wanted = person_.tripsPerDay * (weekendsOnly ? 3 : weekend ? 0.7 : 1.1);
    // Whoever goes out comes back: trips come in rounds of two or three.
    double hour = weekend ? random_.between(9.3, 11.5) : random_.between(6.8, 8.2);
    bool toWork = !weekend;
    for (double left = wanted; random_.chance(std::min(left / 2.2, 1.0)); left -= 2.2) {
      const Milliseconds start = startOf(day) + static_cast<Milliseconds>(hour * hourMillis);
      hour = travel(toWork ? haunts_.work : other(), start, toWork);
      hour += toWork ? random_.between(3.6, 9.2) : random_.between(0.4, 1.8);
      if (!toWork && random_.chance(0.3)) {
        hour = travel(other(), startOf(day) + static_cast<Milliseconds>(hour * hourMillis), false) +
               random_.between(0.3, 1.2);
      }
      hour = travel(haunts_.home, startOf(day) + static_cast<Milliseconds>(hour * hourMillis),
                    toWork) +
             random_.between(0.7, 2.0);
      toWork = false;
      if (hour > 21.5) break;
    }
  }

  void liveAbroad(Day day) {
    constexpr std::array places{"Nariman Point", "Chowpatty", "Bandra", "BKC", "Haji Ali", "Dadar"};
    const RoadMap& map = RoadMap::mumbai();
    std::string place = places[0];
    double hour = random_.between(8.5, 9.5);
    for (int i = 0; i < 3; ++i) {
      std::string to = places[1 + random_.index(places.size() - 1)];
      if (to == place) to = places[0];
      Plan plan{&map, map.route(place, to), car, place, to, "BUSINESS"};
      const Milliseconds start =
          startOf(day) + static_cast<Milliseconds>(hour * hourMillis) - indianOffset;
      record(plan, start, indianOffset);
      place = std::move(to);
      hour += random_.between(2.5, 4.0);
    }
  }

  const char* other() {
    const char* choice = haunts_.others[random_.index(haunts_.others.size())];
    return choice == place_ ? haunts_.others[0] : choice;
  }

  /// Returns the local hour of arrival.
  double travel(const std::string& to, Milliseconds localStart, bool commute) {
    const Milliseconds offset = centralEuropeanOffset(localStart);
    const Milliseconds start = localStart - offset;
    const auto localHour = [&](Milliseconds time) {
      return static_cast<double>(time + offset - startOf(dayOf(localStart))) / hourMillis;
    };
    if (to == place_ || start > latestStart()) return localHour(start);
    Plan plan = planFor(to, commute);
    place_ = plan.to == to ? to : haunts_.home;  // back home from an excursion
    return localHour(record(plan, start, offset));
  }

  Plan planFor(const std::string& to, bool commute) {
    const RoadMap& map = RoadMap::basel();
    Plan plan{&map, {}, car, place_, to, "PERSONAL"};
    if (std::string_view{person_.accountId} == "2002") {
      plan.purpose = "BUSINESS";
    } else if (commute && random_.chance(0.2)) {
      plan.purpose = "UNKNOWN";
    }
    if (std::string_view{person_.userId} == "1003") plan.mode = nextModeOfLea();
    if (std::string_view{person_.userId} == "1001" && random_.chance(0.08)) {
      plan.mode = otherModes[0];
    }
    lay(map, plan);
    return plan;
  }

  /// Léa takes whatever comes, each in its turn, and drives herself in between.
  TravelMode nextModeOfLea() {
    const std::size_t turn = turn_++ % (2 * (otherModes.size() + 1));
    if (turn % 2 == 1) return car;
    return turn / 2 < otherModes.size() ? otherModes[turn / 2] : unforeseenMode;
  }

  /// Trains, boats and aeroplanes go where they go.
  static void lay(const RoadMap& map, Plan& plan) {
    const std::string_view mode = plan.mode.wireText;
    const auto takeTrack = [&](std::span<const Position> line, const char* to) {
      plan.route = map.track(line, plan.mode.topSpeed);
      plan.to = to;
    };
    if (mode == "TRAIN") return takeTrack(railway(), "Olten");
    if (mode == "BOAT") return takeTrack(rhine(), "Kaiseraugst");
    if (mode == "AIRPLANE") return takeTrack(flightToBerlin(), "Berlin");
    plan.route = map.route(plan.from, plan.to);
  }

  /// Returns the time of arrival.
  Milliseconds record(const Plan& plan, Milliseconds start, Milliseconds offset) {
    if (start > latestStart()) return start;
    Drive made = drive(*plan.map, plan.route, plan.mode, person_.care, start, random_);
    const Milliseconds end = made.fixes.back().time;
    writer_.write(person_, plan, std::move(made), offset, random_);
    return end;
  }

  /// Marc is on the way at the moment, and was at home before.
  [[nodiscard]] Milliseconds latestStart() const {
    return std::string_view{person_.userId} == "1002" ? now_ - 2 * hourMillis : now_;
  }

  const Person& person_;
  const Haunts& haunts_;
  Milliseconds now_;
  Day today_;
  TripWriter& writer_;
  Random random_;
  std::string place_;
  std::size_t turn_ = 0;
};

/// Somebody has just set out, whatever the time of day.
void layTripUnderWay(TripWriter& writer, Milliseconds now) {
  const auto found = std::ranges::find_if(
      people(), [](const Person& person) { return std::string_view{person.userId} == "1002"; });
  Random random{4711};
  const RoadMap& map = RoadMap::basel();
  const Plan plan{&map,     map.route("Liestal", "EuroAirport"), car, "Liestal", "EuroAirport",
                  "UNKNOWN"};
  const Milliseconds start = now - 9 * minuteMillis;
  writer.write(*found, plan, drive(map, plan.route, plan.mode, found->care, start, random),
               centralEuropeanOffset(start), random);
}

}  // namespace

void layTrips(DatabaseConnection& database, Milliseconds now, int weeks,
              const LayingProgress& progress) {
  const auto drives = [](const Person& person) { return person.tripsPerDay > 0; };
  const int all = static_cast<int>(std::ranges::count_if(people(), drives)) * (weeks * 7 + 1);
  int done = 0;
  const auto dayDone = [&] {
    if (++done; progress) progress(done, all);
  };
  TripWriter writer{database, now};
  for (const Person& person : people()) {
    if (drives(person)) Diary{person, now, writer}.live(weeks, dayDone);
  }
  layTripUnderWay(writer, now);
}

}  // namespace orvane::sandbox
