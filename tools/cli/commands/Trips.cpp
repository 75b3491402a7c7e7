// SPDX-License-Identifier: Apache-2.0
// orvane trips: recorded journeys.
#include "Commands.h"
#include "Days.h"
#include "GeoJSON.h"
#include "OutputFile.h"
#include "TripMap.h"
#include <Orvane/Services/Trip/TripService.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace orvane::cli {
namespace {

using Trips = std::vector<Trip>;
using Expansions = std::set<TripService::Expansion>;

std::string scoreText(double score) { return decimal(score, 1); }

std::string placeText(const Event& event) {
  if (!event.latitude || !event.longitude) return {};
  return decimal(*event.latitude, 5) + ", " + decimal(*event.longitude, 5);
}

// What a route that is asked for comes to: how many points it has.
std::string routeText(const Polyline& polyline) {
  const auto route = polyline.decodeChecked();
  if (route) return std::to_string(route.value()->size()) + " points";
  return "malformed: " + route.errorOr(PolylineError{}).message();
}

Block recordOf(const Trip& trip) {
  const auto local = [&](Date date) { return localTime(date, trip.timeZone); };
  return Block()
      .row("id", trip.id)
      .row("status", trip.status)
      .row("started", trip.dateStarted, local)
      .row("ended", trip.dateEnded, local)
      .row("processed", trip.dateProcessed, local)
      .row("duration", trip.duration, durationOf)
      .row("distance", trip.distance, kilometresOf)
      .row("average speed", trip.averageSpeed, kilometresPerHourOf)
      .row("maximum speed", trip.maximumSpeed, kilometresPerHourOf)
      .row("transport mode", trip.transportMode)
      .row("purpose", trip.purpose)
      .row("score", trip.score, scoreText)
      .row("vehicle", trip.vehicleId)
      .row("route", trip.polyline, routeText)
      .row("reconstructed start", trip.startPolyline, routeText);
}

Block scoresOf(const TripScores& scores) {
  Block block;
  block.row("overall", scores.overall, scoreText);
  if (!scores.subScores) return block;
  for (const auto& [component, score] : *scores.subScores) {
    block.row(toText(component), score ? scoreText(*score) : "-");
  }
  return block;
}

Block scoringOf(const TripScoring& scoring) {
  Block block;
  block.row("algorithm", scoring.scoreAlgorithmProvider)
      .row("unit", scoring.scoreUnit)
      .row("overall", scoring.overallScore, scoreText);
  if (!scoring.individualComponentScores) return block;
  for (const IndividualComponentScores& part : *scoring.individualComponentScores) {
    const auto& name = part.component;
    block.row(name ? toText(TripScores::SubScore::fromWireText(*name)) : "-",
              part.componentScore ? scoreText(*part.componentScore) : "-");
  }
  return block;
}

Block driverOf(const User& user) {
  return Block()
      .row("id", user.id)
      .row("display name", user.displayName)
      .row("first name", user.firstName)
      .row("last name", user.lastName);
}

Block vehicleOf(const Vehicle& vehicle) {
  return Block()
      .row("id", vehicle.vehicleId)
      .row("name", vehicle.nickName)
      .row("make", vehicle.make)
      .row("model", vehicle.model)
      .row("year", vehicle.year)
      .row("plate", vehicle.plate);
}

Table tableOf(const Trip::Events& events, const std::optional<TimeZone>& zone) {
  using Happening = decltype(inOrder(events))::value_type;
  const auto of = [](auto member) {
    return [member](const Happening& happening) { return (*happening.event).*member; };
  };
  const auto time = [zone](Date date) { return Moment{localTimeOfDay(date, zone)}; };
  return {"events",
          inOrder(events),
          {{"time", of(&Event::date), time},
           {"event", [](const Happening& happening) { return *happening.type; }},
           {"severity", of(&Event::severity), 1},
           {"speed", of(&Event::speed), kilometresPerHourOf, 2},
           {"limit", of(&Event::speedLimit), kilometresPerHourOf, 3},
           {"for", of(&Event::duration), durationOf, 4},
           {"place", [](const Happening& happening) { return placeText(*happening.event); }, 5}}};
}

std::optional<std::int64_t> numberOfEvents(const Trip& trip) {
  if (!trip.events) return std::nullopt;
  std::int64_t number = 0;
  for (const auto& [type, list] : *trip.events) number += static_cast<std::int64_t>(list.size());
  return number;
}

std::optional<Moment> startOf(const Trip& trip) {
  if (!trip.dateStarted) return std::nullopt;
  return Moment{localMinute(*trip.dateStarted, trip.timeZone)};
}

// "Anna K.", or as much as there is of it.
std::string driverText(const Trip& trip) {
  if (!trip.user) return {};
  const User& driver = *trip.user;
  return driver.displayName ? *driver.displayName : driver.id.value_or("");
}

std::string vehicleText(const Trip& trip) {
  if (!trip.vehicle) return {};
  const Vehicle& vehicle = *trip.vehicle;
  return vehicle.nickName ? *vehicle.nickName : vehicle.plate.value_or("");
}

struct AnswersTrips {
  static void print(const Trips& trips, Output& output) {
    output.table(Table("trips", trips,
                       {{"id", &Trip::id},
                        {"started", startOf},
                        {"duration", &Trip::duration, durationOf, 3},
                        {"distance", &Trip::distance, kilometresOf, 2},
                        {"mode", &Trip::transportMode, 4},
                        {"purpose", &Trip::purpose, 5},
                        // What is there only where it was asked for comes first.
                        {"score", &Trip::score, scoreText, 1},
                        {"events", numberOfEvents, 1},
                        {"vehicle", &Trip::vehicleId, 6},
                        {"route", &Trip::polyline, routeText, 1},
                        {"driver", driverText, 1},
                        {"vehicle's name", vehicleText, 1}}));
  }
};

struct AnswersTrip {
  static void print(const Trip& trip, Output& output) {
    output.block(recordOf(trip));
    if (trip.scores) output.section("scores", scoresOf(*trip.scores));
    if (trip.scoring) output.section("scoring", scoringOf(*trip.scoring));
    if (trip.user) output.section("driver", driverOf(*trip.user));
    if (trip.vehicle) output.section("vehicle", vehicleOf(*trip.vehicle));
    if (trip.events) output.section("events", tableOf(*trip.events, trip.timeZone));
  }
};

constexpr std::int64_t mostAtOnce = 100;
constexpr const char* embeds =
    "What to embed in it: pois and alerts are in --json alone, the library does not read them";

// Which trips of a list, and what to embed in them.
struct ListOptions {
  Expansions expansions;
  DayOptions days;
  std::optional<std::int64_t> limit;
  std::optional<std::int64_t> offset;
  bool isAll = false;

  void declare(Options& options) {
    options.option("--expand", expansions, embeds);
    days.declare(options);
    options.option("--limit", limit, "How many at most, 1 to 100");
    options.option("--offset", offset, "How many of the latest to leave out");
    options.flag("--all", isAll, "Every trip, however many, page by page");
  }

  [[nodiscard]] std::set<TripService::Filter> filters() const {
    std::set<TripService::Filter> filters;
    if (const auto range = days.range()) filters.insert(*range);
    if (limit || offset) {
      sayWhatIsTaken();
      filters.insert(TripService::Filter::cursor(limit.value_or(mostAtOnce), offset.value_or(0)));
    }
    return filters;
  }

  // What the service makes of numbers that the backend does not take.
  void sayWhatIsTaken() const {
    const auto say = [](const char* option, std::int64_t given, std::int64_t taken) {
      if (given == taken) return;
      const std::string words = std::string(option) + " " + std::to_string(given) + " is taken as ";
      std::fprintf(stderr, "orvane: %s%s\n", words.c_str(), std::to_string(taken).c_str());
    };
    if (limit) say("--limit", *limit, std::clamp<std::int64_t>(*limit, 1, mostAtOnce));
    if (offset) say("--offset", *offset, std::max<std::int64_t>(*offset, 0));
  }

  [[nodiscard]] Operation<Trips> walk(const TripService& service, TripPages pages) const {
    if (limit || offset) {
      throw Failure(ExitCode::usage, "--all goes without --limit and --offset");
    }
    pages.dates = days.range();
    pages.expansions = expansions;
    return service.fetchPages(std::move(pages));
  }
};

struct ListTrips : AnswersTrips {
  static constexpr std::string_view name = "list";
  static constexpr std::string_view summary = "List the trips of a user";
  static constexpr Example examples[] = {
      {"trips list --from 7-days-ago --expand scores", "a week, with scores"},
      {"trips list --of 1002 --limit 20 --offset 40", "the third page of somebody else's trips"},
      {"trips list --all --json | jq length", "how many there are at all"},
  };

  std::optional<UserID> of;
  ListOptions list;

  void declare(Options& options) {
    options.option("--of", of, "Whose trips; left out, those of who is signed in");
    list.declare(options);
  }

  Operation<Trips> ask(Session& session) const {
    const TripService service(session.identity());
    std::optional<User> owner;
    if (of) owner.emplace().id = of->text;
    if (list.isAll) {
      TripPages pages;
      pages.list = TripPages::List::trips;
      pages.user = std::move(owner);
      return list.walk(service, std::move(pages));
    }
    return service.fetch(owner, list.filters(), list.expansions);
  }
};

struct ListLogbook : AnswersTrips {
  static constexpr std::string_view name = "logbook";
  static constexpr std::string_view summary = "List the logbook of the person who is signed in";
  static constexpr Example examples[] = {
      {"trips logbook --limit 10 --expand vehicles", "the last ten, with their vehicles"},
      {"trips logbook --all --from 30-days-ago", "everything of a month, however much"},
  };

  ListOptions list;

  void declare(Options& options) { list.declare(options); }

  // Its entries hold the trips.
  static std::vector<std::string_view> unwrapped(std::string_view logbook) {
    std::vector<std::string_view> trips = elementsOf(memberOf(logbook, "items"));
    for (std::string_view& entry : trips) entry = memberOf(entry, "trip");
    return trips;
  }

  Operation<Trips> ask(Session& session) const {
    const TripService service(session.identity());
    if (list.isAll) return list.walk(service, {});
    return service.fetchAllChecked(list.filters(), list.expansions);
  }
};

struct ListTripsByVehicle : AnswersTrips {
  static constexpr std::string_view name = "by-vehicle";
  static constexpr std::string_view summary = "List the trips of a vehicle";
  static constexpr Example examples[] = {
      {"trips by-vehicle 3001 --from 30-days-ago --to today --of 1001",
       "what one of its drivers did with it in a month"},
  };

  VehicleID vehicle;
  std::optional<UserID> of;
  Day from;
  Day to;
  TripsByVehicle trips;

  void declare(Options& options) {
    options.positional("VEHICLE", vehicle, "The vehicle");
    options.required("--from", from, "The first day: 2024-05-13, yesterday, 7-days-ago");
    options.required("--to", to, "The last day");
    options.option("--limit", trips.vehicleTripsLimit, "How many at most; left out, 100");
    options.option("--offset", trips.offset, "How many of the latest to leave out");
    options.option("--role", trips.role, "Only of drivers in this role: OWNER or OPERATOR");
    options.option("--of", of, "Whose trips; left out, those of every driver");
    options.option("--expand", trips.expansions, embeds);
  }

  Operation<Trips> ask(Session& session) const {
    TripsByVehicle chosen = trips;
    chosen.vehicleId = vehicle.text;
    chosen.startDate = toText(dateOf(from));
    chosen.endDate = toText(dateOf(to));
    if (of) chosen.userId = of->text;
    return TripService(session.identity()).fetchTripsByVehicle(std::move(chosen));
  }
};

struct ShowTrip {
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show a trip, and draw its route";
  static constexpr Example examples[] = {
      {"trips show 500001 --expand events,scores", "what happened on it, and what it was worth"},
      {"trips show 500001 --svg trip.svg", "its route with the events as a drawing for a browser"},
      {"trips show 500001 --geojson - > trip.geojson", "the same for maps"},
  };

  TripID id;
  Expansions expansions;
  std::optional<std::filesystem::path> geoJSON;
  std::optional<std::filesystem::path> svg;

  void declare(Options& options) {
    options.positional("ID", id, "The trip");
    options.option("--expand", expansions, embeds);
    options.option("--geojson", geoJSON,
                   "Write route and events as GeoJSON; - is standard output, instead of the trip");
    options.option("--svg", svg, "Write a drawing of route and events; - likewise");
  }

  void run(Session& session) const {
    const auto isToOutput = [](const auto& file) { return file && isStandardOutput(*file); };
    if (isToOutput(geoJSON) && isToOutput(svg)) {
      throw Failure(ExitCode::usage, "only one of --geojson and --svg can be standard output");
    }
    session.connect();
    const Trip trip =
        session.call(TripService(session.identity()).fetch(id.text, everyExpansion()));
    // All of them are made before one is written.
    const auto text = [&](const auto& file, auto make) {
      return file ? make(trip) : std::string();
    };
    const std::string features = text(geoJSON, geoJSONOf);
    const std::string drawing = text(svg, mapOf);
    if (geoJSON) writeDocument(*geoJSON, features, session.output());
    if (svg) writeDocument(*svg, drawing, session.output());
    if (isToOutput(geoJSON) || isToOutput(svg)) return;
    printAnswer(AnswersTrip(), trip, session);
  }

 private:
  // What is drawn has to be there.
  [[nodiscard]] Expansions everyExpansion() const {
    Expansions all = expansions;
    if (geoJSON || svg) {
      all.insert({TripService::Expansion::geometry, TripService::Expansion::events});
    }
    return all;
  }
};

struct UpdateTrip : AnswersTrip {
  static constexpr std::string_view name = "update";
  static constexpr std::string_view summary = "Correct how somebody travelled, or what for";
  static constexpr Example examples[] = {
      {"trips update 500001 --transport-mode car-passenger", "somebody else drove"},
      {"trips update 500001 --purpose business", "for the tax office"},
  };

  TripID id;
  std::optional<TransportMode> transportMode;
  std::optional<Trip::Purpose> purpose;

  void declare(Options& options) {
    options.positional("ID", id, "The trip");
    options.option("--transport-mode", transportMode, "How the person travelled");
    options.option("--purpose", purpose, "What the trip was for");
  }

  Operation<Trip> ask(Session& session) const {
    if (!transportMode && !purpose) {
      throw Failure(ExitCode::usage, "either --transport-mode or --purpose is required");
    }
    return TripService(session.identity()).update(id.text, transportMode, purpose);
  }
};

}  // namespace

Resource tripCommands() {
  return Resource("trips", "Recorded journeys")
      .add<ListTrips>()
      .add<ListLogbook>()
      .add<ListTripsByVehicle>()
      .add<ShowTrip>()
      .add<UpdateTrip>();
}

}  // namespace orvane::cli
