// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include "tests/support/Values.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Leaderboard/LeaderboardComposer.h>
#include <Orvane/Services/Leaderboard/LeaderboardService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>

namespace orvane {
namespace {

using Composer = LeaderboardComposer;
using Filter = LeaderboardService::Filter;
using Gender = User::Gender;

constexpr DateComponents day{2024, 3, 10};

Filter young() { return Filter::age({18, 25}); }
Filter old() { return Filter::age({70, 99}); }

TEST(LeaderboardFilterTest, isComparedByItsKindAlone) {
  struct Row {
    Filter left, right;
    bool equal;
  };
  const Row rows[] = {
      {Filter::gender(Gender::male()), Filter::gender(Gender::female()), true},
      {Filter::gender(Gender::male()), Filter::gender(Gender::custom("x")), true},
      {young(), old(), true},
      {Filter::postalCode("8000"), Filter::postalCode("3000"), true},
      {Filter::gender(Gender::male()), young(), false},
      {young(), Filter::postalCode("8000"), false},
      {Filter::postalCode("male"), Filter::gender(Gender::custom("male")), false},
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
  EXPECT_TRUE(filters.insert(Filter::gender(Gender::female())).second);
  EXPECT_FALSE(filters.insert(Filter::gender(Gender::male())).second);

  ASSERT_EQ(filters.size(), 3U);
  for (const Filter& filter : filters) {
    filter.match(
        [](const LeaderboardService::GenderFilter& by) { EXPECT_EQ(by.gender, Gender::female()); },
        [](const LeaderboardService::AgeFilter& by) { EXPECT_EQ(by.years.upperBound(), 25); },
        [](const LeaderboardService::PostalCodeFilter& by) { EXPECT_EQ(by.postalCode, "8000"); });
  }
}

class LeaderboardServiceTest : public testing::Test {
 protected:
  static void expectFetch(const Composer::Request& fetched, const std::string& query) {
    expectRequest("GET leaderboards" + query, [&](const Identity& identity) {
      LeaderboardService(identity).fetch(fetched.dateComponents, fetched.filters, nullptr);
    });
  }

  const ScopedDeviceSettings settings_{{.locale = "en_US", .timeZone = "Europe/Zurich"}};
};

TEST_F(LeaderboardServiceTest, asksForADayAndItsFilters) {
  const std::string user = "?userId=42&localDate=";
  const std::string that = user + "2024-03-10";
  const std::pair<Composer::Request, std::string> rows[] = {
      {{day, {}}, that},
      {{{2024, {}, {}}, {}}, user + "2024-01-01"},
      {{day, {Filter::gender(Gender::male())}}, that + "&gender=male"},
      {{day, {Filter::gender(Gender::custom("non binary"))}}, that + "&gender=non%20binary"},
      {{day, {Filter::age({least, least})}},
       that + "&age_lower=-9223372036854775808&age_upper=-9223372036854775808"},
      {{day, {Filter::postalCode("SW1A 1AA&x=é+/?")}}, that + "&location=SW1A%201AA&x=%C3%A9+/?"},
      {{day, {Filter::postalCode("")}}, that + "&location="},
      {{day, {Filter::postalCode("8000"), young(), Filter::gender(Gender::female())}},
       that + "&age_lower=18&age_upper=25&gender=female&location=8000"},
      // Days that the calendar can't form: no query at all, the filters' items neither.
      {{{}, {young()}}, ""},
      {{{{}, 3, 10}, {}}, ""},
      {{{2023, 2, 29}, {}}, ""},
      {{{2024, 13, 1}, {Filter::postalCode("8000")}}, ""},
      {{{most, 1, 1}, {}}, ""},
  };
  for (const auto& [fetched, query] : rows) expectFetch(fetched, query);

  const ScopedDeviceSettings egypt({.locale = "ar_EG", .timeZone = "Africa/Cairo"});
  expectFetch({day, {}}, user + "%D9%A2%D9%A0%D9%A2%D9%A4-%D9%A0%D9%A3-%D9%A1%D9%A0");
}

TEST_F(LeaderboardServiceTest, optsInAndOutWithoutABody) {
  expectRequests<LeaderboardService>({
      {"POST leaderboards?userId=42&action=optin", [](auto& board) { board.optIn(nullptr); }},
      {"POST leaderboards?userId=42&action=optout", [](auto& board) { board.optOut(nullptr); }},
  });
}

TEST_F(LeaderboardServiceTest, theComposersOwnQueryIsAbsent) {
  for (const Composer& composer : {Composer(Composer::Request{day, {young()}}),
                                   Composer(Composer::OptIn{}), Composer(Composer::OptOut{})}) {
    EXPECT_EQ(composer.query(), std::nullopt);
  }
}

TEST_F(LeaderboardServiceTest, whatFormsNoURLIsNotSent) {
  const ScopedFoundation foundation;
  const Outcome<Leaderboard> outcome;
  LeaderboardService(freshIdentity()).fetch(day, {Filter::postalCode("\xFF")}, outcome.handler());
  EXPECT_EQ(outcome.result(), NetworkError::malformedRequest);
  EXPECT_TRUE(foundation.requestManager->questions().empty());
}

}  // namespace
}  // namespace orvane
