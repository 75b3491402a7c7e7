// SPDX-License-Identifier: Apache-2.0
// How values read in the message of a failed test.
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Location.h>
#include <Orvane/Models/Trip.h>
#include <Orvane/Models/User.h>

#include <limits>

namespace orvane {
namespace {

TEST(Printing, TellsValuesAsTheyAreWritten) {
  const Date noon = dateFromSeconds(1'715'601'600);
  const Location place{.latitude = 47.5, .longitude = 7.5, .date = noon};
  User user;
  user.id = "42";
  user.displayName = "a \"b\"";
  const URL url = *URL::parse("https://backend.example/users/42");
  const Error refusal = Error(NetworkError::noData).with({.operation = "GET users/42"});
  const struct {
    std::string text;
    const char* expected;
  } rows[] = {
      {testing::PrintToString(user), R"({"userId":"42","publicDisplayName":"a \"b\""})"},
      {testing::PrintToString(std::vector<Location>{place, {}}),
       R"({ {"lat":47.5,"lng":7.5,"utcDateTime":1715601600000},)"
       R"( {"lat":null,"lng":null} (a record without "utcDateTime" can't be encoded) })"},
      {testing::PrintToString(Indirect<User>(user)),
       R"({"userId":"42","publicDisplayName":"a \"b\""})"},
      {testing::PrintToString(Indirect<User>()), "nothing"},
      {testing::PrintToString(TransportMode::driver), "DRIVER"},
      {testing::PrintToString(url), "https://backend.example/users/42"},
      {testing::PrintToString(refusal), "GET users/42: the backend's answer is empty"},
      {testing::PrintToString(Result<User>(user)),
       R"(success: {"userId":"42","publicDisplayName":"a \"b\""})"},
      {testing::PrintToString(Result<std::vector<User>>(std::vector<User>(2))),
       "success: [{}, {}]"},
      {testing::PrintToString(Result<std::vector<User>>(std::vector<User>())), "success: []"},
      {testing::PrintToString(Result<bool>(true)), "success: true"},
      {testing::PrintToString(Result<Unit>(Unit())), "success: ()"},
      {testing::PrintToString(Result<Date>(noon)), "success: 2024-05-13T12:00:00Z"},
      {testing::PrintToString(Result<std::optional<std::string>>(std::optional<std::string>())),
       "success: nothing"},
      {testing::PrintToString(Result<User>(NetworkError::noData)),
       "failure: the backend's answer is empty"},
      {testing::PrintToString(Result<User>()), "failure without an error"},
      {testing::PrintToString(noon), "2024-05-13T12:00:00Z"},
      {testing::PrintToString(std::optional(noon)), "(2024-05-13T12:00:00Z)"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(text, expected);
}

TEST(Printing, TellsPointsInTimeAsRFC3339) {
  const struct {
    double seconds;
    const char* expected;
  } rows[] = {
      {0, "1970-01-01T00:00:00Z"},
      {0.25, "1970-01-01T00:00:00.25Z"},
      {-0.001, "1969-12-31T23:59:59.999Z"},
      {59.9996, "1970-01-01T00:01:00Z"},
      {1'709'164'800, "2024-02-29T00:00:00Z"},
      {-62'167'219'200, "0000-01-01T00:00:00Z"},
      {-62'167'219'201, "-62167219201 s since 1970"},
      {253'402'300'799, "9999-12-31T23:59:59Z"},
      {253'402'300'799.9996, "253402300799.9996 s since 1970"},
      {1e300, "1.0000000000000001e+300 s since 1970"},
      {std::numeric_limits<double>::quiet_NaN(), "nan s since 1970"},
  };
  for (const auto& [seconds, expected] : rows) {
    EXPECT_EQ(rfc3339Text(dateFromSeconds(seconds)), expected);
  }
}

}  // namespace
}  // namespace orvane
