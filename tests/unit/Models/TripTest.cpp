// SPDX-License-Identifier: Apache-2.0
// Trips, their events and logbooks.
#include "tests/support/Records.h"
#include "tests/support/Values.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Event.h>
#include <Orvane/Models/LogbookWrapper.h>
#include <Orvane/Models/Trip.h>
#include <Orvane/Testing/Device.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using Type = Event::EventType;
using testing::HasSubstr;
using namespace std::chrono_literals;

// A trip that has what it must, and `members` besides.
std::string tripWith(const std::string& members) {
  return R"({"tripId":"t","tripStatus":"FINISHED","transportMode":"DRIVER","purpose":"BUSINESS")" +
         (members.empty() ? "" : "," + members) + "}";
}

const Trip smallTrip{.id = "t",
                     .status = Trip::Status::complete,
                     .transportMode = TransportMode::driver,
                     .purpose = Trip::Purpose::business};

std::string eventWith(const std::string& members) {
  return R"({"latitude":47.5,"longitude":-8.25,"timeStamp":1500,"transportMode":"DRIVER")" +
         (members.empty() ? "" : "," + members) + "}";
}

const Event smallEvent{.latitude = 47.5,
                       .longitude = -8.25,
                       .date = dateFromSeconds(1.5),
                       .transportMode = TransportMode::driver};

template <class T>
T decoded(const std::string& json) {
  const Result<T> result = decode<T>(json);
  EXPECT_TRUE(result) << json << ": " << (result.error() ? result.error()->message() : "");
  return result ? *result.value() : T{};
}

// Expects a member to be read so from each of these texts, in a record that `with` completes.
template <class T, class Value>
void expectRead(std::string (*with)(const std::string&), const std::string& key,
                std::optional<Value> T::*member,
                const std::vector<std::pair<std::string, std::optional<Value>>>& rows) {
  for (const auto& [wire, value] : rows) {
    const std::string json = with('"' + key + "\":" + wire);
    EXPECT_EQ(decoded<T>(json).*member, value) << json;
  }
}

const std::string wholeTrip =
    R"({"tripId":"6A1","tripStartTimestampUtc":1700000000008,"tripEndTimestampUtc":1700003600018,
        "tripProcessingEndTimestampUtc":1700003700021,"kilometers":0.5,"avgKilometersPerHour":36.0,
        "maxKilometersPerHour":50,"seconds":3600.25,"timeZoneOffsetMillis":19800000,
        "tripStatus":"STARTED","transportMode":"PUBLIC_TRANSPORTATION","geometry":"_p~iF~ps|U",
        "events":{
          "MultiLevelBrakingViolation":[
            {"latitude":3.85,"longitude":-12.02,"timeStamp":1700000100008,"level":4,"kmPerHour":36,
             "averageKmPerHour":50,"geometry":"??","secondsOfDriving":4.5,"kmSpeedLimit":50,
             "transportMode":"BUS"},
            {"latitude":3,"longitude":-12,"timeStamp":1500,"transportMode":"UNKNOWN"}],
          "HornViolation":[]},
        "tripScore":81.5,"tripScores":{"scores":{"overall":80,"harsh.braking":70}},
        "scoring":{"scoreUnit":"PERCENT","overallScore":79},"purpose":"PERSONAL",
        "reconstructedStartGeometry":"?@","user":{"userId":"42"},"vehicleId":"V7",
        "vehicle":{"vehicleId":"V7","plate":"ZH 1"},"notKnown":{"to":["this","version"]}})";

const Trip wholeRecord{
    .id = "6A1",
    .dateStarted = dateFromSeconds(0x1.954fc40008312p+30),
    .dateEnded = dateFromSeconds(1700003600.018),
    .dateProcessed = dateFromSeconds(1700003700.021),
    .distance = 500,
    .averageSpeed = 10,
    .maximumSpeed = 0x1.bc71c71c71c72p+3,
    .duration = 3600.25,
    .timeZone = TimeZone::fromSeconds(19800),
    .status = Trip::Status::inProgress,
    .transportMode = TransportMode::publicTransit,
    .events = Trip::Events{{Type::braking(),
                            {{.latitude = 3.85,
                              .longitude = -12.02,
                              .date = dateFromSeconds(1700000100.008),
                              .severity = Event::Severity::high,
                              .speed = 10,
                              .averageSpeed = 0x1.bc71c71c71c72p+3,
                              .polyline = Polyline::make("??"),
                              .duration = 4.5,
                              .speedLimit = 0x1.bc71c71c71c72p+3,
                              .transportMode = TransportMode::bus},
                             {.latitude = 3,
                              .longitude = -12,
                              .date = dateFromSeconds(1.5),
                              .transportMode = TransportMode::unknown}}},
                           {Type::other("HornViolation"), {}}},
    .score = 81.5,
    .scores = TripScores{.overall = 80, .subScores = {{{TripScores::SubScore::braking(), 70}}}},
    .scoring = TripScoring{.scoreUnit = "PERCENT", .overallScore = 79},
    .polyline = Polyline::make("_p~iF~ps|U"),
    .purpose = Trip::Purpose::personal,
    .startPolyline = Polyline::make("?@"),
    .user = User{.id = "42"},
    .vehicleId = "V7",
    .vehicle = Vehicle{.vehicleId = "V7", .plate = "ZH 1"},
};

TEST(TripTest, isReadWhole) {
  const Trip trip = decoded<Trip>(wholeTrip);
  EXPECT_EQ(trip, wholeRecord);
  ASSERT_TRUE(trip.vehicle);
  EXPECT_TRUE(trip.vehicle->isIdentical(*wholeRecord.vehicle));
  EXPECT_EQ(trip.geometry(),
            std::vector({CLLocationCoordinate2D{3850000 * 1e-6, -12020000 * 1e-6}}));
  EXPECT_EQ(trip.reconstructedStartGeometry(), std::vector({CLLocationCoordinate2D{0, -1e-6}}));
  EXPECT_EQ(trip.events->at(Type::braking())[0].geometry(),
            std::vector({CLLocationCoordinate2D{0, 0}}));
}

// The order of the members, and the three scores that are lost.
TEST(TripTest, isWrittenWithoutItsScores) {
  EXPECT_EQ(
      encode(wholeRecord),
      std::string(
          R"({"tripId":"6A1","tripStatus":"STARTED","transportMode":"PUBLIC_TRANSPORTATION",)"
          R"("purpose":"PERSONAL","user":{"userId":"42"},"vehicleId":"V7",)"
          R"("tripStartTimestampUtc":1700000000008,"seconds":3600.25,)"
          R"("tripEndTimestampUtc":1700003600018,"tripProcessingEndTimestampUtc":1700003700021,)"
          R"("kilometers":0.5,"avgKilometersPerHour":36,"maxKilometersPerHour":50,)"
          R"("timeZoneOffsetMillis":19800000,"geometry":"_p~iF~ps|U",)"
          R"("reconstructedStartGeometry":"?@","vehicle":{"vehicleId":"V7","plate":"ZH 1"},)"
          R"("events":{"HornViolation":[],"MultiLevelBrakingViolation":[)"
          R"({"latitude":3.85,"longitude":-12.02,"timeStamp":1700000100008,"level":4,)"
          R"("kmPerHour":36,"averageKmPerHour":50,"geometry":"??","secondsOfDriving":4.5,)"
          R"("kmSpeedLimit":50,"transportMode":"BUS"},)"
          R"({"latitude":3,"longitude":-12,"timeStamp":1500,"transportMode":""}]}})"));
  Trip withoutScores = wholeRecord;
  withoutScores.score.reset();
  withoutScores.scores.reset();
  withoutScores.scoring.reset();
  EXPECT_EQ(decode<Trip>(*encode(wholeRecord).value()), withoutScores);
}

TEST(TripTest, needsLittle) {
  expectNeeds<Trip>(tripWith(""), {"tripId", "tripStatus", "transportMode", "purpose"});
  expectNeeds<Event>(eventWith(""), {"latitude", "longitude", "timeStamp", "transportMode"});
  EXPECT_EQ(decoded<Trip>(tripWith("")), smallTrip);
  EXPECT_EQ(decoded<Event>(eventWith("")), smallEvent);
  EXPECT_EQ(smallTrip.geometry(), std::nullopt);
  EXPECT_EQ(smallTrip.reconstructedStartGeometry(), std::nullopt);
  EXPECT_EQ(smallEvent.geometry(), std::nullopt);
  for (const std::string key :
       {"tripStartTimestampUtc", "tripEndTimestampUtc", "tripProcessingEndTimestampUtc",
        "kilometers", "avgKilometersPerHour", "maxKilometersPerHour", "seconds",
        "timeZoneOffsetMillis", "geometry", "events", "tripScore", "tripScores", "scoring",
        "reconstructedStartGeometry", "user", "vehicleId", "vehicle"}) {
    EXPECT_EQ(decoded<Trip>(tripWith('"' + key + "\":null")), smallTrip) << key;
    EXPECT_EQ(failure<Trip>(tripWith('"' + key + "\":true")), "typeMismatch " + key);
  }
  for (const std::string key :
       {"level", "kmPerHour", "averageKmPerHour", "geometry", "secondsOfDriving", "kmSpeedLimit"}) {
    EXPECT_EQ(decoded<Event>(eventWith('"' + key + "\":null")), smallEvent) << key;
    EXPECT_EQ(failure<Event>(eventWith('"' + key + "\":true")), "typeMismatch " + key);
  }
}

// Members in the backend's order are read by code of their own, from which any other order leaves.
TEST(EventTest, isReadInAnyOrderOfItsMembers) {
  std::vector<std::string> members = {R"("latitude":47.5)",   R"("longitude":-8.25)",
                                      R"("timeStamp":1500)",  R"("level":4)",
                                      R"("kmPerHour":36)",    R"("averageKmPerHour":18)",
                                      R"("geometry":"??")",   R"("secondsOfDriving":12)",
                                      R"("kmSpeedLimit":72)", R"("transportMode":"TAXI")"};
  const Event expected{.latitude = 47.5,
                       .longitude = -8.25,
                       .date = dateFromSeconds(1.5),
                       .severity = Event::Severity::high,
                       .speed = 10,
                       .averageSpeed = 5,
                       .polyline = Polyline::make("??"),
                       .duration = 12,
                       .speedLimit = 20,
                       .transportMode = TransportMode::taxi};
  const auto object = [&members] {
    std::string text;
    for (const std::string& member : members) text += (text.empty() ? "{" : ",") + member;
    return text + '}';
  };
  for (std::size_t i = 0; i < members.size(); ++i) {
    std::rotate(members.begin(), members.begin() + 1, members.end());
    EXPECT_EQ(decoded<Event>(object()), expected);
    std::string& member = members[i];
    const std::string right = member;
    const std::string key = right.substr(0, right.find(':'));
    // One that nobody knows, and one that is broken but comes again.
    for (const std::string& more : {std::string(R"("unknown":{"level":1})"), key + ":[]"}) {
      member = more + ',' + right;
      EXPECT_EQ(decoded<Event>(object()), expected) << member;
    }
    member = right + ',' + key + ":[]";
    EXPECT_EQ(failure<Event>(object()), "typeMismatch " + key.substr(1, key.size() - 2));
    member = right;
  }
}

TEST(TripTest, writesNullForWhatItCannotDoWithout) {
  EXPECT_EQ(
      encode(Trip{}),
      std::string(R"({"tripId":null,"tripStatus":null,"transportMode":null,"purpose":null})"));
  EXPECT_EQ(
      encode(Event{.date = Date()}),
      std::string(R"({"latitude":null,"longitude":null,"timeStamp":0,"transportMode":null})"));
}

// Each of the speeds comes out differently for any other order of operations or constant.
TEST(TripTest, convertsUnitsToTheLastBit) {
  expectRead(tripWith, "kilometers", &Trip::distance, {{"0.5", 500}, {"0", 0}});
  expectRead(tripWith, "seconds", &Trip::duration, {{"0.1", 0.1}});
  expectRead(tripWith, "tripScore", &Trip::score, {{"-3", -3}});
  expectRead(tripWith, "avgKilometersPerHour", &Trip::averageSpeed,
             {{"36.0", 10}, {"124.58", 0x1.14d82d82d82d9p+5}, {"40.96", 0x1.6c16c16c16c16p+3}});
  expectRead(tripWith, "maxKilometersPerHour", &Trip::maximumSpeed,
             {{"147.98", 0x1.48d82d82d82d9p+5}, {"97.63", 0x1.b1e93e93e93eap+4}});
  expectRead(eventWith, "kmPerHour", &Event::speed, {{"151.15", 0x1.4fe38e38e38e3p+5}});
  expectRead(eventWith, "averageKmPerHour", &Event::averageSpeed,
             {{"151.15", 0x1.4fe38e38e38e3p+5}});
  expectRead(eventWith, "kmSpeedLimit", &Event::speedLimit, {{"151.15", 0x1.4fe38e38e38e3p+5}});

  // Back, where the division by a constant is not the other way's inverse.
  const Trip trip{.distance = 375.9, .averageSpeed = 2.31, .maximumSpeed = 24};
  EXPECT_EQ(encode(trip),
            std::string(R"({"tripId":null,"tripStatus":null,"transportMode":null,"purpose":null,)"
                        R"("kilometers":0.37589999999999996,)"
                        R"("avgKilometersPerHour":8.315999999999999,)"
                        R"("maxKilometersPerHour":86.39999999999999})"));
  const Event event{.date = Date(), .speed = 50.07, .averageSpeed = 58.4, .speedLimit = 41.97};
  EXPECT_EQ(encode(event), std::string(R"({"latitude":null,"longitude":null,"timeStamp":0,)"
                                       R"("kmPerHour":180.25199999999998,)"
                                       R"("averageKmPerHour":210.23999999999998,)"
                                       R"("kmSpeedLimit":151.09199999999998,)"
                                       R"("transportMode":null})"));
}

TEST(TripTest, convertsTimesToTheLastBit) {
  // The second column is the quotient; a product with 0.001 is another number.
  const std::pair<const char*, double> read[] = {
      {"1500", 1.5},
      {"-1", -0x1.0624dd2f1a9fcp-10},
      {"1700000000008", 0x1.954fc40008312p+30},
      {"1700000000018", 0x1.954fc400126e9p+30},
      {"1700000000021.0", 0x1.954fc40015810p+30},
      {"9007199254740993", 0x1.0624dd2f1a9fcp+43},
      {"9223372036854775807", 0x1.0624dd2f1a9fcp+53},
      {"-9223372036854775808", -0x1.0624dd2f1a9fcp+53},
  };
  for (const auto& [wire, seconds] : read) {
    const Date date = dateFromSeconds(seconds);
    expectRead(tripWith, "tripStartTimestampUtc", &Trip::dateStarted, {{wire, date}});
    expectRead(tripWith, "tripEndTimestampUtc", &Trip::dateEnded, {{wire, date}});
    expectRead(tripWith, "tripProcessingEndTimestampUtc", &Trip::dateProcessed, {{wire, date}});
  }
  for (const std::string wire : {"1.5", "9223372036854775808", "\"1500\""}) {
    EXPECT_EQ(failure<Trip>(tripWith("\"tripStartTimestampUtc\":" + wire)),
              "typeMismatch tripStartTimestampUtc");
  }

  const std::pair<double, std::string> written[] = {
      {1.5, "1500"},
      {0.0015, "2"},
      {-0.0015, "-2"},
      {0.0025, "3"},
      {0.0005, "1"},
      {-0.0005, "-1"},
      {0.00049, "0"},
      {-2.5, "-2500"},
      {1.0004999, "1000"},
      {1700000000.0085, "1700000000009"},
      {9007199254740.993, "9007199254740992"},
  };
  for (const auto& [seconds, wire] : written) {
    EXPECT_THAT(*encode(Event{.date = dateFromSeconds(seconds)}).value(),
                HasSubstr("\"timeStamp\":" + wire + ","));
  }
}

TEST(TripTest, knowsItsTimeZoneByItsOffset) {
  const auto east = TimeZone::fromSeconds(64800);
  const auto west = TimeZone::fromSeconds(-64800);
  expectRead(tripWith, "timeZoneOffsetMillis", &Trip::timeZone,
             {{"0", TimeZone::fromSeconds(0)},
              {"3600000", TimeZone::fromSeconds(3600)},
              {"999", TimeZone::fromSeconds(0)},
              {"-999", TimeZone::fromSeconds(0)},
              {"-1500", TimeZone::fromSeconds(-1)},
              {"-1999", TimeZone::fromSeconds(-1)},
              {"64800999", east},
              {"64801000", std::nullopt},
              {"-64800999", west},
              {"-64801000", std::nullopt},
              {"9223372036854775807", std::nullopt},
              {"-9223372036854775808", std::nullopt}});
}

TEST(TripTest, writesTheOffsetThatIsInForce) {
  const Trip trip{.dateStarted = Date(), .timeZone = TimeZone::named("Europe/Zurich")};
  MovableClock clock(utc(2024y / 1 / 15));
  EXPECT_THAT(*encode(trip).value(), HasSubstr("\"timeZoneOffsetMillis\":3600000"));
  clock.set(utc(2024y / 7 / 15));
  EXPECT_THAT(*encode(trip).value(), HasSubstr("\"timeZoneOffsetMillis\":7200000"));
}

TEST(TripTest, hasNoRouteThatIsNotASCII) {
  const Trip trip = decoded<Trip>(
      tripWith(R"("geometry":"_p~iF~ps|Ué","reconstructedStartGeometry":"ü","vehicleId":"ü")"));
  EXPECT_EQ(trip.geometry(), std::nullopt);
  EXPECT_EQ(trip.reconstructedStartGeometry(), std::nullopt);
  EXPECT_EQ(trip.vehicleId, "ü");
  EXPECT_EQ(decoded<Event>(eventWith(R"("geometry":"é")")).polyline, std::nullopt);
  EXPECT_EQ(decoded<Trip>(tripWith(R"("geometry":"")")).geometry(),
            std::vector<CLLocationCoordinate2D>());
}

TEST(TripTest, readsAnyTextOfAnEnumeration) {
  EXPECT_EQ(wireTexts<Trip::Status>(), "STARTED FINISHED UNKNOWN");
  EXPECT_EQ(wireTexts<Trip::Purpose>(), "UNKNOWN PERSONAL BUSINESS");
  EXPECT_EQ(decode<Trip::Status>(R"("finished")"), Trip::Status::unknown);
  EXPECT_EQ(decode<Trip::Status>(R"("")"), Trip::Status::unknown);
  EXPECT_EQ(decode<Trip::Purpose>(R"("COMMUTE")"), Trip::Purpose::unknown);
  EXPECT_EQ(encode(Trip::Purpose::unknown), std::string(R"("UNKNOWN")"));
}

TEST(TransportModeTest, isATextOnTheWireAndANumberElsewhere) {
  EXPECT_EQ(wireTexts<TransportMode>(),
            " DRIVER CAR_PASSENGER TRAIN BUS AIRPLANE TAXI MOTORCYCLE BOAT WALK BICYCLE "
            "PUBLIC_TRANSPORTATION OTHER");
  EXPECT_EQ(encode(TransportMode::unknown), std::string(R"("")"));
  for (const std::int64_t none : {-1, 13, 256}) {
    EXPECT_EQ(fromRawValue<TransportMode>(none), std::nullopt) << none;
  }
  for (const char* json : {R"("UNKNOWN")", R"("driver")", R"("DRIVER ")"}) {
    EXPECT_EQ(decode<TransportMode>(json), TransportMode::unknown) << json;
  }
  EXPECT_EQ(failure<TransportMode>("1"), "typeMismatch");
}

TEST(EventTest, takesAnyIntegerForASeverity) {
  using enum Event::Severity;
  const std::pair<std::string, Event::Severity> rows[] = {
      {"0", veryLow},
      {"1", veryLow},
      {"2", low},
      {"3", medium},
      {"4", high},
      {"5", veryHigh},
      {"6", veryLow},
      {"7", veryLow},
      {"-3", veryLow},
      {"5.0", veryHigh},
      {"-9223372036854775808", veryLow},
  };
  for (const auto& [wire, severity] : rows) {
    EXPECT_EQ(decoded<Event>(eventWith("\"level\":" + wire)).severity, severity) << wire;
  }
  EXPECT_EQ(failure<Event>(eventWith(R"("level":"3")")), "typeMismatch level");
  for (std::int64_t raw = -1; raw <= 7; ++raw) {
    const auto severity = fromRawValue<Event::Severity>(raw);
    EXPECT_EQ(severity.has_value(), raw >= 1 && raw <= 5) << raw;
    EXPECT_TRUE(!severity || encode(*severity) == std::to_string(raw)) << raw;
  }
}

TEST(EventTest, standsAloneInOneFormAndIsReadFromAnother) {
  struct Row {
    Type type;
    std::string name;
    std::string alone;
  };
  const Row rows[] = {
      {Type::acceleration(), "MultiLevelAccelerationViolation", R"({"acceleration":{}})"},
      {Type::braking(), "MultiLevelBrakingViolation", R"({"braking":{}})"},
      {Type::cornering(), "MultiLevelCorneringViolation", R"({"cornering":{}})"},
      {Type::speeding(), "MultiLevelSpeedViolation", R"({"speeding":{}})"},
      {Type::postedSpeedLimit(), "PostedSpeedLimitViolation", R"({"postedSpeedLimit":{}})"},
      {Type::other("braking"), "braking", R"({"other":{"key":"braking"}})"},
      {Type::other("say \"hi\""), R"(say \"hi\")", R"({"other":{"key":"say \"hi\""}})"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(decode<Type>('"' + row.name + '"'), row.type) << row.name;
    EXPECT_EQ(encode(row.type), row.alone);
    EXPECT_EQ(failure<Type>(row.alone), "typeMismatch");
  }
  EXPECT_EQ(std::unordered_set<Type>({Type::braking(), Type::other("braking"), Type::other("x"),
                                      Type::braking(), Type::other("x"), Type::speeding()})
                .size(),
            4U);
}

TEST(TripTest, keepsEventsUnderTheBackendsNames) {
  const auto events = [](const std::string& members) {
    return decoded<Trip>(tripWith("\"events\":{" + members + "}")).events;
  };
  EXPECT_EQ(events(""), Trip::Events());
  const std::string list = "[" + eventWith("") + "]";
  EXPECT_EQ(events("\"MultiLevelBrakingViolation\":" + list + ",\"Horn\":[]"),
            (Trip::Events{{Type::braking(), {smallEvent}}, {Type::other("Horn"), {}}}));
  // The later one replaces the earlier, even one that is broken.
  for (const char* former : {"[]", "null", "[{}]", "7"}) {
    EXPECT_EQ(events("\"Horn\":" + std::string(former) + ",\"Other\":[],\"Horn\":" + list),
              (Trip::Events{{Type::other("Horn"), {smallEvent}}, {Type::other("Other"), {}}}));
  }
  EXPECT_EQ(events("\"Horn\":" + list + ",\"Horn\":[]"), (Trip::Events{{Type::other("Horn"), {}}}));

  // Two types of one name: the one that comes later in the map's order.
  const Trip trip{
      .events = Trip::Events{{Type::other("MultiLevelSpeedViolation"), {smallEvent, smallEvent}},
                             {Type::speeding(), {smallEvent}},
                             {Type::other("Horn"), {}}}};
  const std::string encoded = *encode(trip).value();
  EXPECT_EQ(encoded.substr(encoded.find("\"events\"")),
            "\"events\":{\"Horn\":[],\"MultiLevelSpeedViolation\":" + list + "}}");
}

TEST(TripTest, failsWithTheLeastOfItsEvents) {
  EXPECT_EQ(failure<Trip>(tripWith(R"("events":[])")), "typeMismatch events");
  EXPECT_EQ(failure<Trip>(tripWith(R"("events":{"Horn":null})")), "valueNotFound events.Horn");
  EXPECT_EQ(failure<Trip>(tripWith(R"("events":{"Horn":{}})")), "typeMismatch events.Horn");

  const std::string good = eventWith("");
  std::string page = "[";
  for (int i = 0; i < 17; ++i) page += tripWith("") + ",";
  page += tripWith(R"("events":{"Horn":[)" + good + R"(],"MultiLevelBrakingViolation":[)" + good +
                   "," + good + "," + eventWith(R"("timeStamp":"soon")") + "]}") +
          "," + tripWith("") + "]";
  const auto trips = decode<std::vector<Trip>>(page);
  const auto* error = trips.error()->as<DecodingError>();
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(*error,
            (DecodingError{
                .kind = DecodingError::Kind::typeMismatch,
                .description = "an integer was expected, found the text \"soon\"",
                .codingPath = {"[17]", "events", "MultiLevelBrakingViolation", "[2]", "timeStamp"},
                .location = "[17].events.MultiLevelBrakingViolation[2].timeStamp",
            }));
  // A broken record within fails the trip, too.
  EXPECT_EQ(failure<Trip>(tripWith(R"("tripScores":{})")), "keyNotFound tripScores.scores");
  EXPECT_EQ(failure<Trip>(tripWith(R"("user":{"driverType":"PILOT"})")),
            "dataCorrupted user.driverType");
  EXPECT_EQ(failure<Trip>(tripWith(R"("vehicle":{"timeZoneOffset":3600})")),
            "typeMismatch vehicle.timeZoneOffset");
}

TEST(TripTest, isComparedButForItsVehiclesMembers) {
  const auto withPlate = [](const char* plate) {
    return Trip{.vehicle = Vehicle{.vehicleId = "V", .plate = plate}};
  };
  EXPECT_EQ(withPlate("a"), withPlate("b"));
  EXPECT_NE(withPlate("a"), Trip{});
}

TEST(LogbookTest, isReadAndWrittenPlainly) {
  const std::string json = R"({"items":[{"trip":)" + tripWith("") + R"(},{}]})";
  expectMirrored(json, LogbookWrapper{.tripWrappers = {{{.trip = smallTrip}, {}}}});
  for (const char* empty : {"{}", R"({"items":null})"}) {
    EXPECT_EQ(decode<LogbookWrapper>(empty), LogbookWrapper{}) << empty;
  }
  EXPECT_EQ(encode(LogbookWrapper{}), std::string("{}"));
  EXPECT_EQ(failure<LogbookWrapper>(R"({"items":[{"trip":{}}]})"),
            "keyNotFound items[0].trip.tripId");
}

class TripDeathTest : public DeathTest {};

TEST_F(TripDeathTest, stopsTheProcessWhereItIsWritten) {
  const auto write = [](const auto& record) { (void)encode(record); };
  constexpr auto tooFar = "Fatal error: a point in time does not fit in 64 bits of milliseconds";
  for (const double seconds :
       {notANumber, infinity, -infinity, 9223372036854776.0, -9223372036854778.0}) {
    const Date date = dateFromSeconds(seconds);
    for (const Trip& trip :
         {Trip{.dateStarted = date}, Trip{.dateEnded = date}, Trip{.dateProcessed = date}}) {
      EXPECT_TRUE(encodeChecked(trip).error()) << seconds;
    }
    EXPECT_TRUE(encodeChecked(Event{.date = date}).error()) << seconds;
  }
  EXPECT_DEATH(write(Trip{.dateStarted = dateFromSeconds(infinity)}), tooFar);
  EXPECT_DEATH(write(Event{.date = dateFromSeconds(1e300)}), tooFar);

  const std::string noDate = "a record without \"timeStamp\" can't be encoded";
  EXPECT_DEATH(write(Event{}), "Fatal error: " + noDate);
  EXPECT_DEATH(write(Trip{.events = Trip::Events{{Type::braking(), {Event{}}}}}), noDate);
  EXPECT_EQ(encodeChecked(Event{}), Result<std::string>(EncodingError{noDate}));
}

TEST_F(TripDeathTest, stopsTheProcessOverARouteThatIsNone) {
  const auto read = [](const auto& geometry) { (void)geometry(); };
  const Trip trip{.polyline = Polyline::make("?"), .startPolyline = Polyline::make("_")};
  constexpr auto why = "Fatal error: a polyline ends within a coordinate";
  EXPECT_DEATH(read([&] { return trip.geometry(); }), why);
  EXPECT_DEATH(read([&] { return trip.reconstructedStartGeometry(); }), why);
  EXPECT_DEATH(read([] { return Event{.polyline = Polyline::make("??_")}.geometry(); }), why);
}

}  // namespace
}  // namespace orvane
