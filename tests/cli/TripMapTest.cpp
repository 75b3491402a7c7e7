// SPDX-License-Identifier: Apache-2.0
// Trips as drawings and as GeoJSON: places, lengths, dates and what can't be drawn.
#include "ExitCode.h"
#include "GeoJSON.h"
#include "TripMap.h"
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <regex>
#include <tuple>
#include <utility>

namespace orvane::cli {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

Trip tripOf(const Places& route) {
  Trip trip;
  trip.id = "<42>";
  trip.dateStarted = dateFromSeconds(1500000000);
  trip.dateEnded = dateFromSeconds(1500000600);
  trip.timeZone = TimeZone::fromSeconds(19800);
  trip.distance = 1234.5;
  trip.transportMode = TransportMode::driver;
  trip.polyline = Polyline::encode(route);
  return trip;
}

Event eventAt(CLLocationCoordinate2D place, double secondsAfter,
              std::optional<Event::Severity> severity) {
  Event event;
  event.latitude = place.latitude;
  event.longitude = place.longitude;
  event.date = dateFromSeconds(1500000000 + secondsAfter);
  event.severity = severity;
  event.speed = 10;
  return event;
}

Trip tripWithEvents() {
  Trip trip = tripOf({{47.5, 7.5}, {47.51, 7.52}, {47.52, 7.53}});
  trip.startPolyline = Polyline::encode(Places{{47.49, 7.49}, {47.5, 7.5}});
  Event speeding = eventAt({47.51, 7.52}, 200, Event::Severity::low);
  speeding.polyline = Polyline::encode(Places{{47.51, 7.52}, {47.515, 7.525}});
  speeding.speedLimit = 50 / 3.6;
  trip.events = Trip::Events{
      {Event::EventType::braking(),
       {eventAt({47.52, 7.53}, 300, Event::Severity::veryHigh),
        eventAt({47.5, 7.5}, 100, Event::Severity::low)}},
      {Event::EventType::postedSpeedLimit(), {speeding}},
      {Event::EventType::other("<Phone>"), {eventAt({47.505, 7.51}, 150, std::nullopt)}},
  };
  return trip;
}

// The features of a trip's GeoJSON.
json featuresOf(const Trip& trip) {
  const json document = json::parse(geoJSONOf(trip));
  EXPECT_EQ(document.at("type"), "FeatureCollection");
  for (const json& feature : document.at("features")) EXPECT_EQ(feature.at("type"), "Feature");
  return document.at("features");
}

TEST(GeoJSONTest, HasTheRouteAndEveryEvent) {
  const json features = featuresOf(tripWithEvents());
  ASSERT_EQ(features.size(), 6U);
  EXPECT_EQ(
      features[0].at("geometry"),
      json::parse(R"({"type":"LineString","coordinates":[[7.5,47.5],[7.52,47.51],[7.53,47.52]]})"));
  EXPECT_EQ(features[0].at("properties"), json::parse(R"({
      "kind":"route","tripId":"<42>","started":"2017-07-14T08:10:00+05:30",
      "ended":"2017-07-14T08:20:00+05:30","kilometres":1.235,"transportMode":"driver",
      "stroke":"#0969da","stroke-width":4})"));
  EXPECT_EQ(features[1].at("properties").at("kind"), "reconstructed start");
  // By time, whatever their type.
  const char* types[] = {"harsh braking", "<Phone>", "above the limit", "harsh braking"};
  for (std::size_t index = 0; index < std::size(types); ++index) {
    EXPECT_EQ(features[2 + index].at("geometry").at("type"), "Point");
    EXPECT_EQ(features[2 + index].at("properties").at("type"), types[index]);
  }
  EXPECT_EQ(features[5].at("geometry").at("coordinates"), json({7.53, 47.52}));
  EXPECT_EQ(features[4].at("properties"), json::parse(R"({
      "kind":"event","type":"above the limit","severity":"low","time":"2017-07-14T08:13:20+05:30",
      "kilometresPerHour":36.0,"kilometresPerHourAllowed":50.0,"title":"above the limit, low",
      "marker-color":"#9a6700"})"));
  EXPECT_FALSE(features[3].at("properties").contains("severity"));
}

TEST(GeoJSONTest, GeometriesAreOnesThatMapsTake) {
  const std::pair<Places, const char*> rows[] = {
      {{}, "null"},
      {{{47.5, 7.5}}, R"({"type":"Point","coordinates":[7.5,47.5]})"},
      // Cut at the 180th meridian, there and back.
      {{{10, 179}, {20, -179}, {30, 179}},
       R"({"type":"MultiLineString","coordinates":[
           [[179.0,10.0],[180.0,15.0]],
           [[-180.0,15.0],[-179.0,20.0],[-180.0,25.0]],
           [[180.0,25.0],[179.0,30.0]]]})"},
      {{{10, 180}, {20, 179}},
       R"({"type":"LineString","coordinates":[[180.0,10.0],[179.0,20.0]]})"},
  };
  for (const auto& [route, geometry] : rows) {
    EXPECT_EQ(featuresOf(tripOf(route))[0].at("geometry"), json::parse(geometry)) << geometry;
  }
  EXPECT_EQ(featuresOf(Trip{}).size(), 1U);
}

TEST(TripShapeTest, RefusesWhatIsNoRoute) {
  std::pair<const char*, Trip> rows[] = {
      {"the trip's route", tripOf({})},
      {"the trip's route", tripOf({{47.5, 7.5}, {91, 7.5}})},
      {"-180.5 is no place on earth", tripOf({{47.5, -180.5}})},
      {"reconstructed start", tripWithEvents()},
      {"harsh braking", tripWithEvents()},
      {"above the limit", tripWithEvents()},
  };
  rows[0].second.polyline = Polyline::make("_p~iF~ps|");
  rows[3].second.startPolyline = Polyline::make("?");
  (*rows[4].second.events)[Event::EventType::braking()][0].latitude =
      std::numeric_limits<double>::quiet_NaN();
  (*rows[5].second.events)[Event::EventType::postedSpeedLimit()][0].polyline = Polyline::make("~");
  for (const auto& [said, trip] : rows) {
    for (std::string (*const draw)(const Trip&) : {geoJSONOf, mapOf}) {
      try {
        static_cast<void>(draw(trip));
        ADD_FAILURE() << said;
      } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::invalidData);
        EXPECT_THAT(failure.what(), HasSubstr(said));
      }
    }
  }
}

TEST(MapViewTest, KeepsShapesAndLengths) {
  // A square kilometre at 60 degrees north, where a degree of longitude is half as long.
  const double degree = 6378137 * std::acos(-1.0) / 180;
  const double north = 1000 / degree;
  const CLLocationCoordinate2D corner{60, 10};
  const CLLocationCoordinate2D eastern{60, 10 + 2 * north};
  const CLLocationCoordinate2D northern{60 + north, 10};
  const MapView view(Places{corner, eastern, northern}, 500, 100, 400, 20);
  const auto origin = view.at(corner);
  const double width = view.at(eastern).x - origin.x;
  EXPECT_NEAR(width, 360, 0.1);
  EXPECT_NEAR(origin.y - view.at(northern).y, 360, 0.1);
  EXPECT_NEAR(width * view.metresPerPixel(), 1000, 1);
  EXPECT_EQ(view.height(), 400);
  EXPECT_NEAR(view.at(northern).y, 20, 1e-6);
  const CLLocationCoordinate2D back = view.placeAt(view.at(northern));
  EXPECT_NEAR(back.latitude, northern.latitude, 1e-9);
  EXPECT_NEAR(back.longitude, northern.longitude, 1e-9);

  const std::tuple<const char*, Places, double> rows[] = {
      {"long from west to east", {{0, 0}, {0, 1}}, 100},
      {"long from south to north", {{0, 0}, {1, 0}}, 400},
      {"a place", {{47.5, 7.5}}, 400},
      {"nothing", {}, 400},
      {"from pole to pole", {{90, 0}, {-90, 0}}, 400},
  };
  for (const auto& [what, places, height] : rows) {
    const MapView one(places, 500, 100, 400, 20);
    EXPECT_EQ(one.height(), height) << what;
    for (const CLLocationCoordinate2D place : places) {
      const auto point = one.at(place);
      EXPECT_TRUE(point.x > 19.9 && point.x < 480.1) << what;
      EXPECT_TRUE(point.y > 19.9 && point.y < height - 19.9) << what;
    }
  }
}

TEST(MapViewTest, LinesDoNotJumpAtTheMeridian) {
  const Places line = unwrapped({{0, 170}, {0, -170}, {0, -10}, {0, 150}, {0, -20}}, 0);
  EXPECT_EQ(line, (Places{{0, 170}, {0, 190}, {0, 350}, {0, 510}, {0, 340}}));
  EXPECT_EQ(nearestTurn(-179, 179), 181);
  EXPECT_EQ(nearestTurn(540, -180), -180);
}

TEST(MapViewTest, ScalesAreRound) {
  const double rows[][2] = {{160, 100}, {499.9, 200}, {500, 500}, {1, 1}, {0.03, 0.02}, {9e5, 5e5}};
  for (const auto& [most, length] : rows) EXPECT_DOUBLE_EQ(roundLength(most), length);
}

TEST(TripMapTest, DrawsRouteAndEvents) {
  const std::string drawing = mapOf(tripWithEvents());
  EXPECT_THAT(
      drawing,
      AllOf(HasSubstr("<title id=\"title\">Trip &lt;42&gt;</title>"),
            HasSubstr("2017-07-14 08:10 · 1.2 km"), HasSubstr("<title>start · 08:10:00</title>"),
            HasSubstr("<title>end · 08:20:00</title>"),
            HasSubstr("<title>harsh braking · very high · 08:15:00 · 36 km/h</title>"),
            HasSubstr("above the limit · low · 08:13:20 · 36 km/h · limit 50 km/h"),
            HasSubstr("<title>&lt;Phone&gt; · 08:12:30"), HasSubstr(">harsh braking ×2</text>"),
            HasSubstr(">very high</text>"), ContainsRegex(">[125]0* (m|km)</text>"),
            HasSubstr(">7.52° E</text>"), HasSubstr(">47.5° N</text>"), Not(HasSubstr("nan")),
            Not(HasSubstr("<42>"))));
  // The route twice: in its colour, and lighter below.
  EXPECT_THAT(drawing, ContainsRegex("class=\"accent\" d=\"M[0-9.]+,[0-9.]+L[0-9.]+,[0-9.]+L"));

  // Across the 180th meridian, south of the equator.
  const std::string pacific = mapOf(tripOf({{-17, 179.5}, {-18, -179.5}}));
  EXPECT_THAT(pacific, AllOf(HasSubstr(">179.5° W</text>"), HasSubstr("° S</text>"),
                             HasSubstr(">20 km</text>")));

  const std::string nothing = mapOf(Trip{});
  EXPECT_THAT(nothing,
              AllOf(HasSubstr("No route was recorded."), Not(HasSubstr("class=\"start\""))));
}

// The centres of the signs that have a letter.
std::vector<std::pair<double, double>> lettersIn(const std::string& drawing) {
  std::vector<std::pair<double, double>> places;
  const std::regex letter("<text x=\"([0-9.]+)\" y=\"([0-9.]+)\" class=\"paper\"");
  for (std::sregex_iterator found(drawing.begin(), drawing.end(), letter), end; found != end;
       ++found) {
    places.emplace_back(std::stod((*found)[1]), std::stod((*found)[2]));
  }
  return places;
}

TEST(TripMapTest, SpreadsSignsThatLieOnOneAnother) {
  Trip trip = tripOf({{47.5, 7.5}, {47.51, 7.51}});
  constexpr std::size_t count = 40;
  std::vector<Event>& events = trip.events.emplace()[Event::EventType::braking()];
  for (std::size_t event = 0; event < count; ++event) {
    // All where the trip begins, whose sign is in the way, too.
    events.push_back({.latitude = 47.5, .longitude = 7.5});
  }
  const std::string drawing = mapOf(trip);
  const auto signs = lettersIn(drawing);
  ASSERT_EQ(signs.size(), count);
  for (std::size_t one = 0; one < count; ++one) {
    EXPECT_TRUE(signs[one].first > 8 && signs[one].second > 8);
    for (std::size_t other = 0; other < one; ++other) {
      const double distance = std::hypot(signs[one].first - signs[other].first,
                                         signs[one].second - signs[other].second);
      EXPECT_GT(distance, 16) << one << " and " << other;
    }
  }
  // Each shows where it belongs.
  const auto leaders = drawing.find("stroke-width=\"1.5\"");
  EXPECT_NE(leaders, std::string::npos);
}

TEST(TripMapTest, ATripUnderWayHasNoEnd) {
  Trip trip = tripWithEvents();
  trip.status = Trip::Status::inProgress;
  EXPECT_THAT(mapOf(trip), AllOf(HasSubstr("under way · "), HasSubstr("<title>so far</title>"),
                                 HasSubstr(">so far</text>"), Not(HasSubstr("<title>end")),
                                 Not(HasSubstr(">end</text>"))));
}

TEST(TripMapTest, LeavesOutWhatNobodySees) {
  Places route;
  for (int point = 0; point < 50000; ++point) route.push_back({47, 7 + point * 1e-6});
  EXPECT_LT(mapOf(tripOf(route)).size(), 60000U);
}

}  // namespace
}  // namespace orvane::cli
