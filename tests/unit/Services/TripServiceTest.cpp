// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include "tests/support/Requests.h"
#include "tests/support/Values.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Trip/TripComposer.h>
#include <Orvane/Services/Trip/TripService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace orvane {
namespace {

using Expansion = TripService::Expansion;
using Filter = TripService::Filter;
using Mode = TransportMode;
using Trips = std::vector<Trip>;
using testing::ElementsAre;
using enum TripService::Expansion;
using namespace std::chrono_literals;

std::string tripNamed(const std::string& id) {
  return R"({"tripId":")" + id +
         R"(","tripStatus":"FINISHED","transportMode":"DRIVER","purpose":"BUSINESS"})";
}

// A logbook whose one entry is written so.
std::string logbookOf(const std::string& entry) { return R"({"items":[{"trip":)" + entry + "}]}"; }

Trip trip(std::string id) {
  return {.id = std::move(id),
          .status = Trip::Status::complete,
          .transportMode = TransportMode::driver,
          .purpose = Trip::Purpose::business};
}

TEST(TripServiceTest, sendsRequests) {
  const ScopedDeviceSettings settings({.locale = "de_DE", .timeZone = "UTC"});
  const Filter day = Filter::date(utc(2024y / 5 / 3), utc(2024y / 5 / 3));
  const Filter week = Filter::date(utc(2024y / 5 / 3), utc(2024y / 5 / 9));
  const std::set<Expansion> all = {events, scores, geometry, user, pois, points, vehicles, alerts};
  const std::set<Filter> beyond = {Filter::cursor(least, most), Filter::cursor(most, least)};
  const std::set<Filter> pages = {Filter::cursor(1, 0), Filter::cursor(100, 1)};
  const TripsByVehicle odd{.vehicleTripsLimit = -1, .offset = -1};
  const TripsByVehicle whole{.startDate = "2024-05-03",
                             .endDate = "tomorrow",
                             .vehicleId = "V1",
                             .vehicleTripsLimit = 250,
                             .offset = 1,
                             .role = "OWNER",
                             .expansions = {geometry, events},
                             .userId = "7"};
  expectRequests<TripService>({
      {"GET trips/T1", [](auto& trips) { trips.fetch("T1", {}, nullptr); }},
      {"GET trips/T1?expand=events", [](auto& trips) { trips.fetch("T1", {events}, nullptr); }},
      // The route comes with the points.
      {"GET trips/T1?expand=events&expand=scores&expand=points&expand=user&expand=pois"
       "&expand=points&expand=vehicles&expand=alerts",
       [&](auto& trips) { trips.fetch("T1", all, nullptr); }},

      {"GET users/42/trips", [](auto& trips) { trips.fetch({}, {}, {}, nullptr); }},
      {"GET users/42/trips", [](auto& trips) { trips.fetch(User{}, {}, {}, nullptr); }},
      {"GET users/7/trips", [](auto& trips) { trips.fetch(User{.id = "7"}, {}, {}, nullptr); }},
      {"GET users/7/trips?expand=scores&limit=20&offset=40&startDate=2024-05-03&endDate=2024-05-09",
       [&](auto& trips) {
         trips.fetch(User{.id = "7"}, {week, Filter::cursor(20, 40)}, {scores}, nullptr);
       }},

      {"GET users/42/logbook/trips", [](auto& trips) { trips.fetchAll({}, {}, nullptr); }},
      // Pages of one to a hundred.
      {"GET users/42/logbook/trips?limit=1&offset=0",
       [](auto& trips) { trips.fetchAll({Filter::cursor(0, -5)}, {}, nullptr); }},
      {"GET users/42/logbook/trips?limit=100&offset=3",
       [](auto& trips) { trips.fetchAll({Filter::cursor(250, 3)}, {}, nullptr); }},
      {"GET users/42/logbook/trips?limit=1&offset=9223372036854775807&limit=100&offset=0",
       [&](auto& trips) { trips.fetchAll(beyond, {}, nullptr); }},
      {"GET users/42/logbook/trips?expand=events&limit=1&offset=0&limit=100&offset=1",
       [&](auto& trips) { trips.fetchAll(pages, {events}, nullptr); }},
      {"GET users/42/logbook/trips?startDate=2024-05-03&endDate=2024-05-03",
       [&](auto& trips) { trips.fetchAll({day}, {}, nullptr); }},

      {"POST trips/T1?transportMode=PUBLIC_TRANSPORTATION",
       [](auto& trips) { trips.update(Trip{.id = "T1"}, Mode::publicTransit, {}, nullptr); }},
      {"POST trips/T1?transportMode=",
       [](auto& trips) { trips.update("T1", Mode::unknown, {}, nullptr); }},
      {"POST trips/T1?purpose=BUSINESS",
       [](auto& trips) { trips.update("T1", {}, Trip::Purpose::business, nullptr); }},
      {"POST trips/T%202?transportMode=TAXI&purpose=UNKNOWN",
       [](auto& trips) { trips.update("T 2", Mode::taxi, Trip::Purpose::unknown, nullptr); }},

      {"GET vehicles/V1/trips?startDate=&endDate=&limit=100&user=",
       [](auto& trips) { trips.fetchTripsByVehicle({.vehicleId = "V1"}, nullptr); }},
      {"GET vehicles/V1/trips?startDate=2024-05-03&endDate=tomorrow&limit=250&offset=1"
       "&role=OWNER&user=7&expand=events,geometry",
       [&](auto& trips) { trips.fetchTripsByVehicle(whole, nullptr); }},
      {"GET vehicles//trips?startDate=&endDate=&limit=-1&user=",
       [&](auto& trips) { trips.fetchTripsByVehicle(odd, nullptr); }},
  });
}

// The year is that of the week: which one that is depends on where the week begins.
TEST(TripComposerTest, namesDaysAsTheDeviceDoes) {
  struct Row {
    const char* locale;
    const char* zone;
    Date date;
    const char* day;
  };
  const Date sunday = utc(2024y / 12 / 29);
  const Date lateOnSaturday = utc(2024y / 12 / 28, 23h + 30min);
  const Row rows[] = {
      {"en_US", "UTC", utc(2024y / 12 / 28), "2024-12-28"},
      {"de_DE", "UTC", utc(2024y / 12 / 28), "2024-12-28"},
      {"en_US", "UTC", sunday, "2025-12-29"},
      {"de_DE", "UTC", sunday, "2024-12-29"},
      {"en_US", "UTC", utc(2024y / 12 / 30), "2025-12-30"},
      {"de_DE", "UTC", utc(2024y / 12 / 30), "2025-12-30"},
      {"en_US", "UTC", utc(2023y / 1 / 1), "2023-01-01"},
      {"de_DE", "UTC", utc(2023y / 1 / 1), "2022-01-01"},
      {"de_DE", "UTC", utc(2023y / 1 / 2), "2023-01-02"},
      {"de_DE", "UTC", utc(2021y / 1 / 3), "2020-01-03"},
      {"en_US", "Europe/Zurich", lateOnSaturday, "2025-12-29"},
      {"de_DE", "Europe/Zurich", lateOnSaturday, "2024-12-29"},
      {"en_US", "America/Los_Angeles", lateOnSaturday, "2024-12-28"},
      {"ar_EG", "UTC", utc(2024y / 5 / 3), "٢٠٢٤-٠٥-٠٣"},
  };
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings({.locale = row.locale, .timeZone = row.zone});
    const TripComposer::Collection trips{true, std::nullopt, {Filter::date(row.date, row.date)}};
    const std::string day = row.day;
    EXPECT_EQ(TripComposer(trips).query(), "startDate=" + day + "&endDate=" + day)
        << row.locale << ' ' << row.zone;
  }
}

TEST(TripServiceTest, sendsNoRangeThatIsNone) {
  const ScopedDeviceSettings settings({.locale = "de_DE", .timeZone = "UTC"});
  constexpr const char* inverted = "Not filtering by date because start > end.";
  constexpr const char* noDay =
      "Not filtering by date because start or end is on no day of the calendar.";
  const Date noon = utc(2024y / 5 / 3);
  const Date never = dateFromSeconds(notANumber);
  const std::pair<DateRange, const char*> rows[] = {
      {{noon + Seconds(0.001), noon}, inverted},
      {{dateFromSeconds(infinity), noon}, inverted},
      {{noon, never}, noDay},
      {{never, noon}, noDay},
      {{never, never}, noDay},
      {{noon, dateFromSeconds(infinity)}, noDay},
      {{dateFromSeconds(-infinity), noon}, noDay},
      {{dateFromSeconds(-1e300), dateFromSeconds(1e300)}, noDay},
  };
  for (const auto& [range, warning] : rows) {
    const RecordingLogger logger;
    const std::set<Filter> filters{Filter(range), Filter::cursor(5, 0)};
    expectRequest("GET users/42/logbook/trips?limit=5&offset=0", [&](const Identity& identity) {
      TripService(identity).fetchAll(filters, {}, nullptr);
    });
    const auto lines = logger.lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, Logger::Level::warning);
    EXPECT_EQ(lines[0].message, warning);
    EXPECT_EQ(lines[0].file + ' ' + lines[0].function, "Services/Trip/TripComposer query");
    EXPECT_GT(lines[0].line, 0U);
  }
}

TEST(TripFilterTest, hasAnOrderWhateverItHolds) {
  std::vector<Filter> all{Filter::cursor(1, 2), Filter::cursor(1, 3), Filter::cursor(2, 0)};
  for (const double start : {notANumber, -notANumber, 0.0, infinity, -infinity, 1.0}) {
    for (const double end : {notANumber, -notANumber, 0.0, 2.0}) {
      all.push_back(Filter::date(dateFromSeconds(start), dateFromSeconds(end)));
    }
  }
  const std::set<Filter> once(all.begin(), all.end());
  std::set<Filter> twice(all.rbegin(), all.rend());
  twice.insert(all.begin(), all.end());
  EXPECT_EQ(once.size(), all.size());
  EXPECT_EQ(twice, once);
  for (const Filter& left : all) {
    for (const Filter& right : all) {
      EXPECT_EQ(left == right, !(left < right) && !(right < left));
      EXPECT_TRUE(left != right || left.hashValue() == right.hashValue());
    }
  }
  const auto zeros = [](double start, double end) {
    return Filter::date(dateFromSeconds(start), dateFromSeconds(end));
  };
  for (const Filter& filter : {zeros(-0.0, 0.0), zeros(0.0, -0.0), zeros(-0.0, -0.0)}) {
    EXPECT_EQ(filter, zeros(0.0, 0.0));
    EXPECT_EQ(filter.hashValue(), zeros(0.0, 0.0).hashValue());
  }
}

class TripAnswerTest : public testing::Test {
 protected:
  const ScopedFoundation foundation_;
  const TripService service_{freshIdentity()};
};

TEST_F(TripAnswerTest, isTheTripsOfALogbookOrWhyThereAreNone) {
  const auto refused = NetworkError::invalidStatusCode(500);
  const std::pair<ScriptedRequestManager::Answer, Result<Trips>> rows[] = {
      {logbookOf(tripNamed("a") + R"(},{"trip":)" + tripNamed("b")), Trips{trip("a"), trip("b")}},
      {R"({"items":[]})", Trips{}},
      {"", Trips{}},
      {Error(NetworkError::noData), Trips{}},
      {"[" + tripNamed("a") + "]", NetworkError::invalidResponseData},
      {logbookOf("{}"), NetworkError::invalidResponseData},
      {refused, refused},
      {Result<std::string>(), NetworkError::invalidResponseData},
  };
  for (const auto& [answer, trips] : rows) {
    foundation_.requestManager->answer(answer);
    for (const auto& fetch : {service_.fetchAll(), service_.fetchAllChecked()}) {
      EXPECT_EQ(fetch.wait(), trips);
    }
  }
}

TEST_F(TripAnswerTest, isNoEmptyLogbookWhereTheLogbookWasNotAskedFor) {
  foundation_.detailsResolver->answer(NetworkError::noData);
  for (const auto& fetch :
       {service_.fetchAll(), service_.fetchAllChecked(), service_.fetchPages({})}) {
    EXPECT_EQ(fetch.wait(), Result<Trips>(NetworkError::noData));
  }
}

TEST_F(TripAnswerTest, isCheckedWhereItIsAskedFor) {
  for (const char* broken :
       {"{}", R"({"items":null})", R"({"items":[{}]})", R"({"items":[{"trip":null}]})"}) {
    foundation_.requestManager->answer(broken);
    EXPECT_EQ(
        resultOf<Trips>([&](auto then) { service_.fetchAllChecked({}, {}, std::move(then)); }),
        NetworkError::invalidResponseData)
        << broken;
  }
}

TEST_F(TripAnswerTest, isAnErrorAtOnceWhereNothingIsToChange) {
  const Outcome<Trip> outcome;
  const auto request = service_.update(Trip{}, std::nullopt, std::nullopt, outcome.handler());
  EXPECT_EQ(outcome.result(), NetworkError::malformedRequest);
  EXPECT_NE(dynamic_cast<EmptyRequest*>(request.get()), nullptr);
  service_.update("T1", std::nullopt, std::nullopt, nullptr);
  EXPECT_TRUE(foundation_.requestManager->calls().empty());
  EXPECT_TRUE(foundation_.detailsResolver->calls().empty());
}

class TripServiceDeathTest : public DeathTest {
 protected:
  static void fetchAll(const std::string& answer) {
    const ScopedFoundation foundation;
    foundation.requestManager->answer(answer);
    TripService(freshIdentity()).fetchAll({}, {}, nullptr);
  }
};

TEST_F(TripServiceDeathTest, stopsTheProcessOverALogbookThatIsNone) {
  EXPECT_DEATH(fetchAll("{}"), "Fatal error: a logbook has no list of entries");
  EXPECT_DEATH(fetchAll(R"({"items":null})"), "Fatal error: a logbook has no list of entries");
  EXPECT_DEATH(fetchAll(R"({"items":[{"trip":)" + tripNamed("a") + "},{}]}"),
               "Fatal error: an entry of a logbook has no trip");
}

TEST_F(TripServiceDeathTest, stopsTheProcessOverAnUpdateOfNothing) {
  const ScopedFoundation foundation;
  EXPECT_DEATH(
      TripService(freshIdentity()).update(Trip{}, TransportMode::bus, std::nullopt, nullptr),
      "Fatal error: a trip without an id can't be updated");
}

// A backend that has so many trips and answers pages of them.
class TripPagesTest : public testing::Test {
 protected:
  void answerPages(std::size_t trips, std::size_t pageSize, AnswerTime time,
                   bool asLogbook = true) {
    std::vector<ScriptedRequestManager::Answer> pages;
    for (std::size_t offset = 0; offset <= trips; offset += pageSize) {
      std::string page;
      for (std::size_t i = offset; i < std::min(trips, offset + pageSize); ++i) {
        if (!page.empty()) page += ',';
        const std::string one = tripNamed(std::to_string(i));
        page += asLogbook ? R"({"trip":)" + one + "}" : one;
      }
      pages.emplace_back(asLogbook ? R"({"items":[)" + page + "]}" : "[" + page + "]", time);
    }
    foundation_.requestManager->answerInTurn(std::move(pages));
  }

  // What was asked for, below the API root.
  std::vector<std::string> asked() const {
    std::vector<std::string> asked;
    for (const RecordedRequest& request : foundation_.requestManager->questions()) {
      asked.push_back(request.url.absoluteString().substr(apiRoot.size() + 1));
    }
    return asked;
  }

  const ScopedFoundation foundation_;
  const TripService service_{freshIdentity()};
};

TEST_F(TripPagesTest, endWithTheFirstThatIsNotFull) {
  const std::string list = "users/42/logbook/trips?limit=2&offset=";
  for (const AnswerTime time :
       {AnswerTime::atOnce, AnswerTime::onMainQueue, AnswerTime::onAnotherThread}) {
    foundation_.requestManager->forgetCalls();
    answerPages(5, 2, time);
    const Outcome<Trips> outcome;
    ASSERT_TRUE(finishes(service_.fetchPages({.pageSize = 2}, outcome.handler())));
    EXPECT_EQ(outcome.result(), (Trips{trip("0"), trip("1"), trip("2"), trip("3"), trip("4")}));
    EXPECT_THAT(asked(), ElementsAre(list + "0", list + "2", list + "4"));
  }
}

TEST_F(TripPagesTest, areReadOneAfterTheOther) {
  bool isBroken = false;
  for (int offset = 0; offset < 6; offset += 2) {
    const auto isAsked = [offset](const RecordedRequest& request) {
      return request.url.absoluteString().ends_with("offset=" + std::to_string(offset));
    };
    std::string items = R"({"trip":)" + tripNamed(std::to_string(offset)) + "}";
    if (offset < 4) items += R"(,{"trip":)" + tripNamed(std::to_string(offset + 1)) + "}";
    foundation_.requestManager->answerWhere(
        isAsked, {{R"({"items":[)" + items + "]}", AnswerTime::onMainQueue}});
  }
  foundation_.requestManager->answerWhere([&](const auto&) { return isBroken; },
                                          {NetworkError::unknown});

  const TripPageReader pages = service_.pages({.pageSize = 2});
  EXPECT_EQ(pages.next().wait(), Result<Trips>(Trips{trip("0"), trip("1")}));
  // One that has been given up is asked for again, and changes nothing when it comes after all.
  const Outcome<Trips> late;
  pages.next().start(late.handler());
  EXPECT_EQ(pages.error(), Error(Cancelled{}));
  EXPECT_EQ(pages.next().wait(), Result<Trips>(Trips{trip("2"), trip("3")}));
  EXPECT_EQ(late.count(), 1U);
  EXPECT_FALSE(pages.error());
  // A failure passes.
  isBroken = true;
  EXPECT_EQ(pages.next().wait(), Result<Trips>(NetworkError::unknown));
  EXPECT_EQ(pages.error(), Error(NetworkError::unknown));
  isBroken = false;
  EXPECT_EQ(pages.next().wait(), Result<Trips>(Trips{trip("4")}));
  foundation_.requestManager->forgetCalls();
  EXPECT_EQ(pages.next().wait(), Result<Trips>());
  EXPECT_TRUE(asked().empty());
  EXPECT_FALSE(pages.error());
}

TEST_F(TripPagesTest, areAskedForAsTheListIs) {
  const ScopedDeviceSettings settings({.locale = "de_DE", .timeZone = "UTC"});
  const Date day = utc(2024y / 5 / 3);
  answerPages(4, 2, AnswerTime::atOnce, false);
  std::vector<Trips> pages;
  const Outcome<Unit> outcome;
  service_.fetchPages(
      {.list = TripPages::List::trips,
       .user = User{.id = "7"},
       .dates = DateRange{day, day},
       .expansions = {events},
       .pageSize = 2},
      [&](Trips page) { pages.push_back(std::move(page)); }, outcome.handler());
  EXPECT_EQ(outcome.result(), Unit{});
  EXPECT_THAT(pages,
              ElementsAre(Trips{trip("0"), trip("1")}, Trips{trip("2"), trip("3")}, Trips{}));
  const std::string list = "users/7/trips?expand=events&limit=2&offset=";
  const std::string dates = "&startDate=2024-05-03&endDate=2024-05-03";
  EXPECT_THAT(asked(), ElementsAre(list + "0" + dates, list + "2" + dates, list + "4" + dates));
}

TEST_F(TripPagesTest, haveOneToAHundredTrips) {
  const std::pair<std::int64_t, std::string> rows[] = {
      {0, "1"}, {least, "1"}, {100, "100"}, {101, "100"}, {most, "100"}};
  for (const auto& [size, limit] : rows) {
    foundation_.requestManager->forgetCalls();
    foundation_.requestManager->answer("");
    const Outcome<Trips> outcome;
    service_.fetchPages({.pageSize = size}, outcome.handler());
    EXPECT_EQ(outcome.result(), Trips{});
    EXPECT_THAT(asked(), ElementsAre("users/42/logbook/trips?limit=" + limit + "&offset=0"));
  }
}

TEST_F(TripPagesTest, doNotNestHoweverManyTheyAre) {
  answerPages(5'000, 1, AnswerTime::atOnce);
  std::size_t count = 0;
  const Outcome<Unit> outcome;
  service_.fetchPages(
      {.pageSize = 1}, [&](const Trips& page) { count += page.size(); }, outcome.handler());
  EXPECT_EQ(outcome.result(), Unit{});
  EXPECT_EQ(count, 5'000U);
}

TEST_F(TripPagesTest, endWithTheFirstError) {
  const auto refused = NetworkError::invalidStatusCode(503);
  const std::string page = logbookOf(tripNamed("a"));
  const std::pair<ScriptedRequestManager::Answer, NetworkError> rows[] = {
      {refused, refused},
      {"{}", NetworkError::invalidResponseData},
      // The same page again: the backend does not heed the offset.
      {page, NetworkError::invalidResponseData},
  };
  for (const auto& [second, error] : rows) {
    foundation_.requestManager->answerInTurn({page, second});
    std::size_t pages = 0;
    const Outcome<Unit> outcome;
    service_.fetchPages(
        {.pageSize = 1}, [&](const Trips&) { ++pages; }, outcome.handler());
    EXPECT_EQ(outcome.result(), error);
    EXPECT_EQ(pages, 1U);
    foundation_.requestManager->answerInTurn({page, second});
    const Outcome<Trips> collected;
    service_.fetchPages({.pageSize = 1}, collected.handler());
    EXPECT_EQ(collected.result(), error);
  }
  // A list without an answer is no list, as ever.
  foundation_.requestManager->answer("");
  const Outcome<Trips> outcome;
  service_.fetchPages({.list = TripPages::List::trips}, outcome.handler());
  EXPECT_EQ(outcome.result(), NetworkError::noData);
}

TEST_F(TripPagesTest, endWhenTheyAreCancelled) {
  answerPages(6, 2, AnswerTime::whenTold);
  std::size_t pages = 0;
  const Outcome<Unit> outcome;
  const auto request = service_.fetchPages(
      {.pageSize = 2}, [&](const Trips&) { ++pages; }, outcome.handler());
  EXPECT_EQ(foundation_.requestManager->answerWaiting(), 1U);
  EXPECT_FALSE(request->isFinished());
  EXPECT_TRUE(request->cancel() && request->isFinished());
  EXPECT_FALSE(outcome.isHeld()) << "by the handle, which is still there";
  const auto calls = foundation_.requestManager->calls();
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_TRUE(calls[1]->isCancelled());
  EXPECT_EQ(foundation_.requestManager->answerWaiting(), 0U);
  EXPECT_EQ(pages, 1U);
  EXPECT_EQ(outcome.count(), 0U);
}

TEST_F(TripPagesTest, endWhenTheyAreCancelledByAHandler) {
  answerPages(6, 2, AnswerTime::whenTold);
  RequestHandle request;
  const Outcome<Unit> outcome;
  request = service_.fetchPages(
      {.pageSize = 2}, [&](const Trips&) { EXPECT_TRUE(request->cancel()); }, outcome.handler());
  EXPECT_EQ(foundation_.requestManager->answerWaiting(), 1U);
  EXPECT_EQ(foundation_.requestManager->calls().size(), 1U);
  EXPECT_EQ(outcome.count(), 0U);
}

TEST_F(TripPagesTest, letGoOfTheirHandlersAndOutliveTheirService) {
  answerPages(2, 2, AnswerTime::whenTold);
  const Outcome<Trips> outcome;
  TripService(freshIdentity()).fetchPages({.pageSize = 2}, outcome.handler());
  EXPECT_EQ(foundation_.requestManager->answerWaiting(), 1U);
  EXPECT_TRUE(outcome.isHeld());
  EXPECT_EQ(foundation_.requestManager->answerWaiting(), 1U);
  EXPECT_FALSE(outcome.isHeld());
  EXPECT_EQ(outcome.result(), (Trips{trip("0"), trip("1")}));
  // Null handlers are ignored.
  answerPages(3, 2, AnswerTime::atOnce);
  service_.fetchPages({.pageSize = 2}, nullptr, nullptr);
  EXPECT_TRUE(service_.fetchPages({.pageSize = 2}, nullptr)->isFinished());
}

}  // namespace
}  // namespace orvane
