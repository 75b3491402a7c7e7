// SPDX-License-Identifier: Apache-2.0
// orvane trips: recorded journeys.
#include "Commands.h"
#include "Days.h"
#include "GeoJSON.h"
#include "OutputFile.h"
#include "TripMap.h"
#include <Orvane/Services/Trip/TripService.h>

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

template <class T, class Convert>
std::string cellOf(const std::optional<T>& value, Convert convert) {
  return value ? convert(*value) : std::string();
}

Table tableOf(const Trip::Events& events, const std::optional<TimeZone>& zone) {
  constexpr auto right = Table::Alignment::right;
  Table table{"time",           "event",        "severity", {"speed", right},
              {"limit", right}, {"for", right}, "place"};
  for (const auto& [type, event] : inOrder(events)) {
    table.row(cellOf(event->date, [&](Date date) { return localTimeOfDay(date, zone); }), *type,
              event->severity, cellOf(event->speed, kilometresPerHourOf),
              cellOf(event->speedLimit, kilometresPerHourOf), cellOf(event->duration, durationOf),
              placeText(*event));
  }
  return table;
}

std::optional<std::int64_t> numberOfEvents(const Trip& trip) {
  if (!trip.events) return std::nullopt;
  std::int64_t number = 0;
  for (const auto& [type, list] : *trip.events) number += static_cast<std::int64_t>(list.size());
  return number;
}

struct AnswersTrips {
  using Answer = Trips;

  static void print(const Trips& trips, Output& output) {
    constexpr auto right = Table::Alignment::right;
    Table table{"id",
                {"started", Table::Fit::whole},
                {"duration", right},
                {"distance", right},
                "mode",
                "purpose",
                {"score", right},
                {"events", right},
                "vehicle"};
    for (const Trip& trip : trips) {
      const auto local = [&](Date date) { return localMinute(date, trip.timeZone); };
      table.row(trip.id, cellOf(trip.dateStarted, local), cellOf(trip.duration, durationOf),
                cellOf(trip.distance, kilometresOf), trip.transportMode, trip.purpose,
                cellOf(trip.score, scoreText), numberOfEvents(trip), trip.vehicleId);
    }
    output.table(table);
  }
};

struct AnswersTrip {
  using Answer = Trip;

  static void print(const Trip& trip, Output& output) {
    output.block(recordOf(trip));
    if (trip.scores) output.section("scores", scoresOf(*trip.scores));
    if (trip.scoring) output.section("scoring", scoringOf(*trip.scoring));
    if (trip.user) output.section("driver", driverOf(*trip.user));
    if (trip.vehicle) output.section("vehicle", vehicleOf(*trip.vehicle));
    if (trip.events) output.section("events", tableOf(*trip.events, trip.timeZone));
  }
};

// Which trips of a list, and what to embed in them.
struct ListOptions {
  Expansions expansions;
  DayOptions days;
  std::optional<std::int64_t> limit;
  std::optional<std::int64_t> offset;
  bool isAll = false;

  void declare(Options& options) {
    options.option("--expand", expansions, "What to embed in the trips");
    days.declare(options);
    options.option("--limit", limit,
                   "How many at most, 1 to 100; what lies beyond counts as the nearest");
    options.option("--offset", offset, "How many of the latest to leave out");
    options.flag("--all", isAll, "Every trip, however many, page by page");
  }

  [[nodiscard]] std::set<TripService::Filter> filters() const {
    std::set<TripService::Filter> filters;
    if (const auto range = days.range()) filters.insert(*range);
    constexpr std::int64_t most = 100;
    if (limit || offset) {
      filters.insert(TripService::Filter::cursor(limit.value_or(most), offset.value_or(0)));
    }
    return filters;
  }

  [[nodiscard]] RequestHandle walk(const TripService& service, TripPages pages,
                                   Completion<Trips> then) const {
    if (limit || offset) {
      throw Failure(ExitCode::usage, "--all goes without --limit and --offset");
    }
    pages.dates = days.range();
    pages.expansions = expansions;
    return service.fetchPages(std::move(pages), std::move(then));
  }
};

struct ListTrips : AnswersTrips {
  static constexpr std::string_view name = "list";
  static constexpr std::string_view summary = "List the trips of a user";
  static constexpr Example examples[] = {
      {"trips list --from 2024-05-13 --to 2024-05-19 --expand scores", "a week, with scores"},
      {"trips list --user 1002 --limit 20 --offset 40", "the third page of somebody else's trips"},
      {"trips list --all --json | jq length", "how many there are at all"},
  };

  std::optional<Identifier> user;
  ListOptions list;

  void declare(Options& options) {
    options.option("--user", user, "Whose trips; left out, those of who is signed in");
    list.declare(options);
  }

  RequestHandle start(const Identity& identity, Completion<Trips> then) const {
    const TripService service(identity);
    std::optional<User> owner;
    if (user) owner.emplace().id = user->text;
    if (list.isAll) {
      TripPages pages;
      pages.list = TripPages::List::trips;
      pages.user = std::move(owner);
      return list.walk(service, std::move(pages), std::move(then));
    }
    return service.fetch(owner, list.filters(), list.expansions, std::move(then));
  }
};

struct ListLogbook : AnswersTrips {
  static constexpr std::string_view name = "logbook";
  static constexpr std::string_view summary = "List the logbook of the person who is signed in";
  static constexpr Example examples[] = {
      {"trips logbook --limit 10 --expand vehicles", "the last ten, with their vehicles"},
      {"trips logbook --all --from 2024-01-01", "everything since New Year"},
  };

  ListOptions list;

  void declare(Options& options) { list.declare(options); }

  RequestHandle start(const Identity& identity, Completion<Trips> then) const {
    const TripService service(identity);
    if (list.isAll) return list.walk(service, {}, std::move(then));
    return service.fetchAllChecked(list.filters(), list.expansions, std::move(then));
  }
};

struct ListTripsByVehicle : AnswersTrips {
  static constexpr std::string_view name = "by-vehicle";
  static constexpr std::string_view summary = "List the trips of a vehicle";
  static constexpr Example examples[] = {
      {"trips by-vehicle 3001 --from 2024-05-01 --to 2024-05-31 --user 1002",
       "what one of its drivers did with it in May"},
  };

  Identifier vehicle;
  std::optional<Identifier> user;
  TripsByVehicle trips;

  void declare(Options& options) {
    options.positional("VEHICLE", vehicle, "The vehicle");
    options.required("--from", trips.startDate, "The first day, sent as it stands: 2024-05-01");
    options.required("--to", trips.endDate, "The last day, sent as it stands");
    options.option("--limit", trips.vehicleTripsLimit, "How many at most; left out, 100");
    options.option("--offset", trips.offset, "How many of the latest to leave out");
    options.option("--role", trips.role, "Only of drivers in this role: OWNER or OPERATOR");
    options.option("--user", user, "Only of this driver");
    options.option("--expand", trips.expansions, "What to embed in the trips");
  }

  RequestHandle start(const Identity& identity, Completion<Trips> then) const {
    TripsByVehicle chosen = trips;
    chosen.vehicleId = vehicle.text;
    if (user) chosen.userId = user->text;
    return TripService(identity).fetchTripsByVehicle(std::move(chosen), std::move(then));
  }
};

struct ShowTrip {
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show a trip, and draw its route";
  static constexpr Example examples[] = {
      {"trips show 42 --expand events,scores", "what happened on it, and what it was worth"},
      {"trips show 42 --svg trip.svg", "its route with the events as a drawing for a browser"},
      {"trips show 42 --geojson - > trip.geojson", "the same for maps"},
  };

  Identifier id;
  Expansions expansions;
  std::optional<std::filesystem::path> geoJSON;
  std::optional<std::filesystem::path> svg;

  void declare(Options& options) {
    options.positional("ID", id, "The trip");
    options.option("--expand", expansions, "What to embed in the trip");
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
    const Trip trip = session.call<Trip>([&](Completion<Trip> then) {
      return TripService(session.identity()).fetch(id.text, everyExpansion(), std::move(then));
    });
    // All of them are made before one is written.
    const auto text = [&](const auto& file, auto make) {
      return file ? make(trip) : std::string();
    };
    const std::string features = text(geoJSON, geoJSONOf);
    const std::string drawing = text(svg, mapOf);
    if (geoJSON) writeDocument(*geoJSON, features, session.output());
    if (svg) writeDocument(*svg, drawing, session.output());
    if (isToOutput(geoJSON) || isToOutput(svg)) return;
    printAnswer(AnswersTrip(), trip, session.output());
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
      {"trips update 42 --transport-mode car-passenger", "somebody else drove"},
      {"trips update 42 --purpose business", "for the tax office"},
  };

  Identifier id;
  std::optional<TransportMode> transportMode;
  std::optional<Trip::Purpose> purpose;

  void declare(Options& options) {
    options.positional("ID", id, "The trip");
    options.option("--transport-mode", transportMode, "How the person travelled");
    options.option("--purpose", purpose, "What the trip was for");
  }

  RequestHandle start(const Identity& identity, Completion<Trip> then) const {
    if (!transportMode && !purpose) {
      throw Failure(ExitCode::usage, "either --transport-mode or --purpose is required");
    }
    return TripService(identity).update(id.text, transportMode, purpose, std::move(then));
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
