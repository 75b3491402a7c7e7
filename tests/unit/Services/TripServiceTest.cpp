// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include "tests/support/Requests.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Trip/TripComposer.h>
#include <Orvane/Services/Trip/TripService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

using Expansion = TripService::Expansion;
using Filter = TripService::Filter;
using Trips = std::vector<Trip>;
using namespace std::chrono_literals;

constexpr Date utc(std::chrono::year_month_day day, std::chrono::minutes time = 12h) {
  return std::chrono::sys_days(day) + time;
}

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

std::string tripNamed(const std::string& id) {
  return R"({"tripId":")" + id +
         R"(","tripStatus":"FINISHED","transportMode":"DRIVER","purpose":"BUSINESS"})";
}

Trip trip(std::string id) {
  return {.id = std::move(id),
          .status = Trip::Status::complete,
          .transportMode = TransportMode::driver,
          .purpose = Trip::Purpose::business};
}

TEST(TripServiceTest, sendsRequests) {
  const ScopedDeviceSettings settings({.locale = "de_DE", .timeZone = "UTC"});
  const Date may3 = utc(2024y / 5 / 3);
  const Date may9 = utc(2024y / 5 / 9);
  const auto fetch = [](std::set<Expansion> expansions) {
    return
        [=](const Identity& identity) { TripService(identity).fetch("T1", expansions, nullptr); };
  };
  const auto fetchOf = [](std::optional<User> user, std::set<Filter> filters,
                          std::set<Expansion> expansions = {}) {
    return [=](const Identity& identity) {
      TripService(identity).fetch(user, filters, expansions, nullptr);
    };
  };
  const auto fetchAll = [](std::set<Filter> filters, std::set<Expansion> expansions = {}) {
    return [=](const Identity& identity) {
      TripService(identity).fetchAll(filters, expansions, nullptr);
    };
  };
  const auto update = [](std::optional<TransportMode> mode, std::optional<Trip::Purpose> purpose) {
    return [=](const Identity& identity) {
      TripService(identity).update(Trip{.id = "T1"}, mode, purpose, nullptr);
    };
  };
  const auto byVehicle = [](TripsByVehicle trips) {
    return [=](const Identity& identity) {
      TripService(identity).fetchTripsByVehicle(trips, nullptr);
    };
  };
  using enum TripService::Expansion;
  expectRequests({
      {"one trip", fetch({}), "GET trips/T1"},
      {"one with events", fetch({events}), "GET trips/T1?expand=events"},
      {"one with everything",
       fetch({events, scores, geometry, user, pois, points, vehicles, alerts}),
       "GET trips/T1?expand=events&expand=scores&expand=points&expand=user&expand=pois"
       "&expand=points&expand=vehicles&expand=alerts"},
      {"the route comes with the points", fetch({geometry, points}),
       "GET trips/T1?expand=points&expand=points"},

      {"the current user's", fetchOf(std::nullopt, {}), "GET users/42/trips"},
      {"those of a user without an id", fetchOf(User{.firstName = "Ann"}, {}),
       "GET users/42/trips"},
      {"another user's", fetchOf(User{.id = "7"}, {}), "GET users/7/trips"},
      {"expansions, then filters",
       fetchOf(User{.id = "7"}, {Filter::date(may3, may9), Filter::cursor(20, 40)}, {scores}),
       "GET users/7/trips?expand=scores&limit=20&offset=40&startDate=2024-05-03"
       "&endDate=2024-05-09"},

      {"the logbook", fetchAll({}), "GET users/42/logbook/trips"},
      {"a page too small", fetchAll({Filter::cursor(0, -5)}),
       "GET users/42/logbook/trips?limit=1&offset=0"},
      {"a page too large", fetchAll({Filter::cursor(250, 3)}),
       "GET users/42/logbook/trips?limit=100&offset=3"},
      {"pages beyond all bounds",
       fetchAll({Filter::cursor(least, most), Filter::cursor(most, least)}),
       "GET users/42/logbook/trips?limit=1&offset=9223372036854775807&limit=100&offset=0"},
      {"pages as they are", fetchAll({Filter::cursor(1, 0), Filter::cursor(100, 1)}, {events}),
       "GET users/42/logbook/trips?expand=events&limit=1&offset=0&limit=100&offset=1"},
      {"a day", fetchAll({Filter::date(may3, may3)}),
       "GET users/42/logbook/trips?startDate=2024-05-03&endDate=2024-05-03"},

      {"another mode", update(TransportMode::publicTransit, std::nullopt),
       "POST trips/T1?transportMode=PUBLIC_TRANSPORTATION"},
      {"no known mode", update(TransportMode::unknown, std::nullopt),
       "POST trips/T1?transportMode="},
      {"another purpose", update(std::nullopt, Trip::Purpose::business),
       "POST trips/T1?purpose=BUSINESS"},
      {"another mode and purpose", update(TransportMode::taxi, Trip::Purpose::unknown),
       "POST trips/T1?transportMode=TAXI&purpose=UNKNOWN"},
      {"by its id",
       [](const Identity& identity) {
         TripService(identity).update("T 2", TransportMode::bus, Trip::Purpose::personal, nullptr);
       },
       "POST trips/T%202?transportMode=BUS&purpose=PERSONAL"},

      {"a vehicle's", byVehicle({.vehicleId = "V1"}),
       "GET vehicles/V1/trips?startDate=&endDate=&limit=100&user="},
      {"a vehicle's, as they are asked for",
       byVehicle({.startDate = "2024-05-03",
                  .endDate = "tomorrow",
                  .vehicleId = "V1",
                  .vehicleTripsLimit = 250,
                  .offset = 1,
                  .role = "OWNER",
                  .expansions = {geometry, events},
                  .userId = "7"}),
       "GET vehicles/V1/trips?startDate=2024-05-03&endDate=tomorrow&limit=250&offset=1"
       "&role=OWNER&user=7&expand=events,geometry"},
      {"a vehicle's, with odd numbers", byVehicle({.vehicleTripsLimit = -1, .offset = -1}),
       "GET vehicles//trips?startDate=&endDate=&limit=-1&user="},
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
  const Date noon = utc(2024y / 5 / 3);
  const auto soon = noon + Seconds(0.001);
  for (const DateRange& range :
       {DateRange{soon, noon}, DateRange{noon, dateFromSeconds(notANumber)},
        DateRange{dateFromSeconds(notANumber), noon},
        DateRange{dateFromSeconds(notANumber), dateFromSeconds(notANumber)},
        DateRange{noon, dateFromSeconds(infinity)}, DateRange{dateFromSeconds(-infinity), noon},
        DateRange{dateFromSeconds(-1e300), dateFromSeconds(1e300)}}) {
    const bool isInOrder = range.start <= range.end;
    const RecordingLogger logger;
    const ScopedFoundation foundation;
    TripService(freshIdentity()).fetchAll({Filter(range), Filter::cursor(5, 0)}, {}, nullptr);
    EXPECT_EQ(requestText(foundation.requestManager->questions().at(0)),
              "GET users/42/logbook/trips?limit=5&offset=0\n\n");
    const auto lines = logger.lines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].level, Logger::Level::warning);
    EXPECT_EQ(lines[0].message,
              isInOrder ? "Not filtering by date because the calendar does not reach so far."
                        : "Not filtering by date because start > end.");
    EXPECT_EQ(lines[0].file, "Services/Trip/TripComposer");
    EXPECT_EQ(lines[0].function, "query");
    EXPECT_GT(lines[0].line, 0U);
  }
}

TEST(TripFilterTest, hasAnOrderWhateverItHolds) {
  std::vector<Filter> all{Filter::cursor(1, 2), Filter::cursor(1, 3), Filter::cursor(2, 0)};
  for (const double start : {notANumber, -notANumber, 0.0, -0.0, infinity, -infinity, 1.0}) {
    for (const double end : {notANumber, -notANumber, 0.0, 2.0}) {
      all.push_back(Filter::date(dateFromSeconds(start), dateFromSeconds(end)));
    }
  }
  const std::set<Filter> once(all.begin(), all.end());
  std::set<Filter> twice(all.rbegin(), all.rend());
  twice.insert(all.begin(), all.end());
  EXPECT_EQ(once.size(), all.size());
  EXPECT_EQ(twice, once);
  for (const Filter& filter : all) EXPECT_EQ(once.count(filter), 1U);
  for (const Filter& left : all) {
    for (const Filter& right : all) {
      EXPECT_EQ(left == right, !(left < right) && !(right < left));
      if (left == right) {
        EXPECT_EQ(left.hashValue(), right.hashValue());
      }
    }
  }
}

class TripAnswerTest : public testing::Test {
 protected:
  const ScopedFoundation foundation_;
  const TripService service_{freshIdentity()};
};

TEST_F(TripAnswerTest, isAListOrWhyThereIsNone) {
  const NetworkError garbage = NetworkError::invalidResponseData;
  const auto refused = NetworkError::invalidStatusCode(500);
  const std::string one = tripNamed("a");
  struct Row {
    Result<std::string> response;
    Result<Trips> list;
    Result<Trips> logbook;
  };
  const Row rows[] = {
      {"[" + one + "," + tripNamed("b") + "]", Trips{trip("a"), trip("b")}, garbage},
      {R"({"items":[{"trip":)" + one + R"(},{"trip":)" + tripNamed("b") + "}]}", garbage,
       Trips{trip("a"), trip("b")}},
      {std::string("[]"), Trips{}, garbage},
      {std::string(R"({"items":[]})"), garbage, Trips{}},
      {std::string(), NetworkError::noData, Trips{}},
      {"[" + one + ",{}]", garbage, garbage},
      {R"({"items":[{"trip":)" + one + R"(},{"trip":{}}]})", garbage, garbage},
      {refused, refused, refused},
      {Result<std::string>(), garbage, garbage},
  };
  for (const Row& row : rows) {
    foundation_.requestManager->answer(row.response);
    const Outcome<Trips> ofUser;
    service_.fetch(std::nullopt, {}, {}, ofUser.handler());
    EXPECT_EQ(ofUser.result(), row.list);
    const Outcome<Trips> ofVehicle;
    service_.fetchTripsByVehicle({}, ofVehicle.handler());
    EXPECT_EQ(ofVehicle.result(), row.list);
    const Outcome<Trips> logbook;
    service_.fetchAll({}, {}, logbook.handler());
    EXPECT_EQ(logbook.result(), row.logbook);
    const Outcome<Trips> checked;
    service_.fetchAllChecked({}, {}, checked.handler());
    EXPECT_EQ(checked.result(), row.logbook);
  }
}

TEST_F(TripAnswerTest, isCheckedWhereItIsAskedFor) {
  for (const char* broken :
       {"{}", R"({"items":null})", R"({"items":[{}]})", R"({"items":[{"trip":null}]})"}) {
    foundation_.requestManager->answer(std::string(broken));
    const Outcome<Trips> outcome;
    service_.fetchAllChecked({}, {}, outcome.handler());
    EXPECT_EQ(outcome.result(), Result<Trips>(NetworkError::invalidResponseData)) << broken;
  }
}

TEST_F(TripAnswerTest, isACorrectedTrip) {
  foundation_.requestManager->answer(tripNamed("a"));
  const Outcome<Trip> one;
  service_.fetch("a", {}, one.handler());
  EXPECT_EQ(one.result(), trip("a"));
  const Outcome<Trip> corrected;
  service_.update(trip("a"), TransportMode::bus, std::nullopt, corrected.handler());
  EXPECT_EQ(corrected.result(), trip("a"));
}

TEST_F(TripAnswerTest, isAnErrorAtOnceWhereNothingIsToChange) {
  const Outcome<Trip> outcome;
  const auto request = service_.update(Trip{}, std::nullopt, std::nullopt, outcome.handler());
  EXPECT_EQ(outcome.result(), Result<Trip>(NetworkError::malformedRequest));
  EXPECT_NE(dynamic_cast<EmptyRequest*>(request.get()), nullptr);
  const Outcome<Trip> byID;
  service_.update("T1", std::nullopt, std::nullopt, byID.handler());
  EXPECT_EQ(byID.result(), Result<Trip>(NetworkError::malformedRequest));
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

  std::vector<std::string> queries() const {
    std::vector<std::string> queries;
    for (const RecordedRequest& request : foundation_.requestManager->questions()) {
      const std::string text(request.url.absoluteString());
      queries.push_back(text.substr(apiRoot.size()));
    }
    return queries;
  }

  static std::vector<std::string> idsOf(const Trips& trips) {
    std::vector<std::string> ids;
    for (const Trip& trip : trips) ids.push_back(trip.id.value_or("none"));
    return ids;
  }

  const ScopedFoundation foundation_;
  const TripService service_{freshIdentity()};
};

TEST_F(TripPagesTest, endWithTheFirstThatIsNotFull) {
  for (const AnswerTime time :
       {AnswerTime::atOnce, AnswerTime::onMainQueue, AnswerTime::onAnotherThread}) {
    foundation_.requestManager->forgetCalls();
    answerPages(5, 2, time);
    const Outcome<Trips> outcome;
    ASSERT_TRUE(finishes(service_.fetchPages({.pageSize = 2}, outcome.handler())));
    const Result<Trips> result = outcome.result();
    ASSERT_TRUE(result);
    EXPECT_EQ(idsOf(*result.value()), (std::vector<std::string>{"0", "1", "2", "3", "4"}));
    EXPECT_EQ(queries(), (std::vector<std::string>{"/users/42/logbook/trips?limit=2&offset=0",
                                                   "/users/42/logbook/trips?limit=2&offset=2",
                                                   "/users/42/logbook/trips?limit=2&offset=4"}));
  }
}

TEST_F(TripPagesTest, areAskedForAsTheListIs) {
  const ScopedDeviceSettings settings({.locale = "de_DE", .timeZone = "UTC"});
  const Date day = utc(2024y / 5 / 3);
  answerPages(4, 2, AnswerTime::atOnce, false);
  std::vector<std::vector<std::string>> pages;
  const Outcome<Unit> outcome;
  service_.fetchPages(
      {.list = TripPages::List::trips,
       .user = User{.id = "7"},
       .dates = DateRange{day, day},
       .expansions = {Expansion::events},
       .pageSize = 2},
      [&](Trips page) { pages.push_back(idsOf(page)); }, outcome.handler());
  EXPECT_EQ(outcome.result(), Unit{});
  EXPECT_EQ(pages, (std::vector<std::vector<std::string>>{{"0", "1"}, {"2", "3"}, {}}));
  const std::string dates = "&startDate=2024-05-03&endDate=2024-05-03";
  const std::string list = "/users/7/trips?expand=events&limit=2&offset=";
  EXPECT_EQ(queries(),
            (std::vector<std::string>{list + "0" + dates, list + "2" + dates, list + "4" + dates}));
}

TEST_F(TripPagesTest, haveOneToAHundredTrips) {
  const std::pair<std::int64_t, const char*> rows[] = {
      {0, "1"}, {least, "1"}, {100, "100"}, {101, "100"}, {most, "100"}};
  for (const auto& [size, limit] : rows) {
    foundation_.requestManager->forgetCalls();
    foundation_.requestManager->answer(std::string());
    const Outcome<Trips> outcome;
    service_.fetchPages({.pageSize = size}, outcome.handler());
    EXPECT_EQ(outcome.result(), Trips{});
    EXPECT_EQ(queries(), std::vector<std::string>{
                             "/users/42/logbook/trips?limit=" + std::string(limit) + "&offset=0"});
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
  const std::string page = R"({"items":[{"trip":)" + tripNamed("a") + "}]}";
  struct Row {
    ScriptedRequestManager::Answer second;
    NetworkError error;
  };
  const Row rows[] = {
      {{refused}, refused},
      {{std::string("{}")}, NetworkError::invalidResponseData},
      // The same page again: the backend does not heed the offset.
      {{page}, NetworkError::invalidResponseData},
  };
  for (const Row& row : rows) {
    foundation_.requestManager->answerInTurn({{page}, row.second});
    std::size_t pages = 0;
    const Outcome<Unit> outcome;
    service_.fetchPages(
        {.pageSize = 1}, [&](const Trips&) { ++pages; }, outcome.handler());
    EXPECT_EQ(outcome.result(), Result<Unit>(row.error));
    EXPECT_EQ(pages, 1U);
    foundation_.requestManager->answerInTurn({{page}, row.second});
    const Outcome<Trips> collected;
    service_.fetchPages({.pageSize = 1}, collected.handler());
    EXPECT_EQ(collected.result(), Result<Trips>(row.error));
  }
  // A list without an answer is no list, as ever.
  foundation_.requestManager->answer(std::string());
  const Outcome<Trips> outcome;
  service_.fetchPages({.list = TripPages::List::trips}, outcome.handler());
  EXPECT_EQ(outcome.result(), Result<Trips>(NetworkError::noData));
}

TEST_F(TripPagesTest, endWhenTheyAreCancelled) {
  answerPages(6, 2, AnswerTime::whenTold);
  std::size_t pages = 0;
  const Outcome<Unit> outcome;
  const auto request = service_.fetchPages(
      {.pageSize = 2}, [&](const Trips&) { ++pages; }, outcome.handler());
  EXPECT_EQ(foundation_.requestManager->answerWaiting(), 1U);
  EXPECT_EQ(pages, 1U);
  EXPECT_FALSE(request->isFinished());
  EXPECT_TRUE(request->cancel());
  EXPECT_TRUE(request->isFinished());
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
  EXPECT_EQ(idsOf(*outcome.result().value()), (std::vector<std::string>{"0", "1"}));
  // Null handlers are ignored.
  answerPages(3, 2, AnswerTime::atOnce);
  service_.fetchPages({.pageSize = 2}, nullptr, nullptr);
  EXPECT_TRUE(service_.fetchPages({.pageSize = 2}, nullptr)->isFinished());
}

}  // namespace
}  // namespace orvane
