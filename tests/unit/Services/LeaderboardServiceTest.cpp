// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Leaderboard/LeaderboardComposer.h>
#include <Orvane/Services/Leaderboard/LeaderboardService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace orvane {
namespace {

using Filter = LeaderboardService::Filter;

constexpr DateComponents day{2024, 3, 10};

Filter young() { return Filter::age({18, 25}); }
Filter old() { return Filter::age({70, 99}); }

TEST(LeaderboardFilterTest, isComparedByItsKindAlone) {
  struct Row {
    Filter left, right;
    bool equal;
  };
  const Row rows[] = {
      {Filter::gender(User::Gender::male()), Filter::gender(User::Gender::female()), true},
      {Filter::gender(User::Gender::male()), Filter::gender(User::Gender::custom("x")), true},
      {young(), old(), true},
      {Filter::postalCode("8000"), Filter::postalCode("3000"), true},
      {Filter::gender(User::Gender::male()), young(), false},
      {young(), Filter::postalCode("8000"), false},
      {Filter::postalCode("male"), Filter::gender(User::Gender::custom("male")), false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.left == row.right, row.equal);
    EXPECT_EQ(row.left < row.right || row.right < row.left, !row.equal);
    EXPECT_EQ(std::hash<Filter>{}(row.left) == std::hash<Filter>{}(row.right), row.equal);
  }
}

template <class Set>
class LeaderboardFilterSetTest : public testing::Test {};
using Sets = testing::Types<std::set<Filter>, std::unordered_set<Filter>>;
TYPED_TEST_SUITE(LeaderboardFilterSetTest, Sets);

TYPED_TEST(LeaderboardFilterSetTest, keepsTheFirstOfEachKind) {
  TypeParam filters{Filter::postalCode("8000"), young(), Filter::postalCode("3000")};
  EXPECT_FALSE(filters.insert(old()).second);
  EXPECT_TRUE(filters.insert(Filter::gender(User::Gender::female())).second);
  EXPECT_FALSE(filters.insert(Filter::gender(User::Gender::male())).second);

  ASSERT_EQ(filters.size(), 3U);
  for (const Filter& filter : filters) {
    filter.match(
        [](const LeaderboardService::GenderFilter& by) {
          EXPECT_EQ(by.gender, User::Gender::female());
        },
        [](const LeaderboardService::AgeFilter& by) { EXPECT_EQ(by.years.upperBound(), 25); },
        [](const LeaderboardService::PostalCodeFilter& by) { EXPECT_EQ(by.postalCode, "8000"); });
  }
}

void expectFetch(const DateComponents& date, const std::set<Filter>& filters,
                 const std::string& resource) {
  expectRequests({{resource,
                   [&](const Identity& identity) {
                     LeaderboardService(identity).fetch(date, filters, nullptr);
                   },
                   "GET " + resource}});
}

class LeaderboardServiceTest : public testing::Test {
 protected:
  const ScopedDeviceSettings settings_{{.locale = "en_US", .timeZone = "Europe/Zurich"}};
  const ScopedFoundation foundation_;
  const LeaderboardService service_{freshIdentity()};
};

TEST_F(LeaderboardServiceTest, asksForADayAndItsFilters) {
  constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
  struct Row {
    DateComponents date;
    std::set<Filter> filters;
    std::string resource;
  };
  const Row rows[] = {
      {day, {}, "leaderboards?userId=42&localDate=2024-03-10"},
      {{2024, {}, {}}, {}, "leaderboards?userId=42&localDate=2024-01-01"},
      {day,
       {Filter::gender(User::Gender::male())},
       "leaderboards?userId=42&localDate=2024-03-10&gender=male"},
      {day,
       {Filter::gender(User::Gender::female())},
       "leaderboards?userId=42&localDate=2024-03-10&gender=female"},
      {day,
       {Filter::gender(User::Gender::custom("non binary"))},
       "leaderboards?userId=42&localDate=2024-03-10&gender=non%20binary"},
      {day, {young()}, "leaderboards?userId=42&localDate=2024-03-10&age_lower=18&age_upper=25"},
      {day,
       {Filter::age({lowest, lowest})},
       "leaderboards?userId=42&localDate=2024-03-10&age_lower=-9223372036854775808"
       "&age_upper=-9223372036854775808"},
      {day,
       {Filter::postalCode("SW1A 1AA&x=é+/?")},
       "leaderboards?userId=42&localDate=2024-03-10&location=SW1A%201AA&x=%C3%A9+/?"},
      {day, {Filter::postalCode("")}, "leaderboards?userId=42&localDate=2024-03-10&location="},
      // Days that the calendar can't form: no query at all, the filters' items neither.
      {{}, {young()}, "leaderboards"},
      {{{}, 3, 10}, {}, "leaderboards"},
      {{2023, 2, 29}, {}, "leaderboards"},
      {{2024, 13, 1}, {Filter::postalCode("8000")}, "leaderboards"},
      {{std::numeric_limits<std::int64_t>::max(), 1, 1}, {}, "leaderboards"},
  };
  for (const Row& row : rows) expectFetch(row.date, row.filters, row.resource);
}

TEST_F(LeaderboardServiceTest, severalFiltersAreSeveralItems) {
  expectFetch(day, {Filter::postalCode("8000"), young(), Filter::gender(User::Gender::female())},
              "leaderboards?userId=42&localDate=2024-03-10&age_lower=18&age_upper=25"
              "&gender=female&location=8000");
}

TEST_F(LeaderboardServiceTest, theDayIsTheDevicesWhereverItIs) {
  struct Row {
    DeviceSettings device;
    DateComponents date;
    std::string day;
  };
  const Row rows[] = {
      {{.locale = "en_US", .timeZone = "Pacific/Kiritimati"}, day, "2024-03-10"},
      {{.locale = "en_US", .timeZone = "Pacific/Pago_Pago"}, day, "2024-03-10"},
      // A day without a midnight.
      {{.locale = "pt_BR", .timeZone = "America/Sao_Paulo"}, {2017, 10, 15}, "2017-10-15"},
      {{.locale = "th_TH", .timeZone = "Asia/Bangkok"}, {2567, 3, 10}, "2567-03-10"},
      {{.locale = "ar_EG", .timeZone = "Africa/Cairo"},
       day,
       "%D9%A2%D9%A0%D9%A2%D9%A4-%D9%A0%D9%A3-%D9%A1%D9%A0"},
  };
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings(row.device);
    expectFetch(row.date, {}, "leaderboards?userId=42&localDate=" + row.day);
  }
}

TEST_F(LeaderboardServiceTest, optsInAndOutWithoutABody) {
  expectRequests({
      {"in", [](const Identity& identity) { LeaderboardService(identity).optIn(nullptr); },
       "POST leaderboards?userId=42&action=optin"},
      {"out", [](const Identity& identity) { LeaderboardService(identity).optOut(nullptr); },
       "POST leaderboards?userId=42&action=optout"},
  });
}

TEST_F(LeaderboardServiceTest, anySuccessOptsInAndOut) {
  const auto refused = NetworkError::invalidStatusCode(409, std::nullopt);
  struct Row {
    Result<std::string> response;
    Result<Unit> result;
  };
  const Row rows[] = {{std::string(), Unit{}},
                      {std::string("{}"), Unit{}},
                      {std::string("whatever"), Unit{}},
                      {refused, refused}};
  for (const Row& row : rows) {
    foundation_.requestManager->answer(row.response);
    const Outcome<Unit> optedIn;
    service_.optIn(optedIn.handler());
    EXPECT_EQ(optedIn.result(), row.result);
    const Outcome<Unit> optedOut;
    service_.optOut(optedOut.handler());
    EXPECT_EQ(optedOut.result(), row.result);
  }
}

TEST_F(LeaderboardServiceTest, theComposersOwnQueryIsAbsent) {
  using Composer = LeaderboardComposer;
  for (const Composer& composer : {Composer(Composer::Request{day, {young()}}),
                                   Composer(Composer::OptIn{}), Composer(Composer::OptOut{})}) {
    EXPECT_EQ(composer.path("42"), "leaderboards");
    EXPECT_EQ(composer.query(), std::nullopt);
    EXPECT_FALSE(composer.body());
  }
}

TEST_F(LeaderboardServiceTest, answersTheLeaderboardOrWhyThereIsNone) {
  const auto refused = NetworkError::invalidStatusCode(404, std::nullopt);
  struct Row {
    Result<std::string> response;
    Result<Leaderboard> result;
  };
  const Row rows[] = {
      {std::string(R"({"optedIn":true,"leaderboardEntries":[{"leaderboardEntryId":"1"}]})"),
       Leaderboard{.isOptedIn = true, .entries = std::vector<LeaderboardEntry>{{.id = "1"}}}},
      {std::string(R"({"optedIn":true,"leaderboardEntries":[{"position":"1"}]})"),
       NetworkError::invalidResponseData},
      {std::string(), NetworkError::noData},
      {refused, refused},
  };
  for (const Row& row : rows) {
    foundation_.requestManager->answer(row.response);
    const Outcome<Leaderboard> outcome;
    service_.fetch(day, {}, outcome.handler());
    EXPECT_EQ(outcome.result(), row.result);
  }
}

TEST_F(LeaderboardServiceTest, whatFormsNoURLIsNotSent) {
  OrvaneDetails details = exampleDetails();
  details.userID = "\xFF";
  foundation_.detailsResolver->answer(details);
  const Outcome<Unit> outcome;
  service_.optIn(outcome.handler());
  EXPECT_EQ(outcome.result(), Result<Unit>(NetworkError::malformedRequest));

  foundation_.detailsResolver->answer(exampleDetails());
  const Outcome<Leaderboard> fetched;
  service_.fetch(day, {Filter::postalCode("\xFF")}, fetched.handler());
  EXPECT_EQ(fetched.result(), Result<Leaderboard>(NetworkError::malformedRequest));
  EXPECT_TRUE(foundation_.requestManager->questions().empty());
}

}  // namespace
}  // namespace orvane
