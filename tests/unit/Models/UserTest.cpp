// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/User.h>
#include <Orvane/Testing/Device.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

// Every member, in the order in which it is written.
constexpr std::string_view wholeText =
    R"({"userId":"42","externalReferenceId":"ref","userProfileId":"p1","activated":true,)"
    R"("avatar":"https://cdn.example/ann.jpg?s=2","firstName":"Ann","lastName":"Lee",)"
    R"("associatedUsers":[{"userId":"43"},{}],"gender":"female","publicDisplayName":"Ann L.",)"
    R"("city":"Zürich","subdivision":"Canton","subdivisionCode":"ZH","postalcode":"8001",)"
    R"("country":"Switzerland","countryCode":"CH","formattedAddress":"1 \"Quai\"",)"
    R"("dateOfBirth":"1990-05-17","email":"ann@example.org","phone":"+41","acceptedTerms":false,)"
    R"("acceptedTermsDate":1500000000000,"selfDescription":"me","shareUserProfile":true,)"
    R"("driverType":"COMMUTER","dataCollectionType":"MOBILE","scoringType":"WTW",)"
    R"("enrollmentModelType":"MOBILE_WITH_VEHICLE_IDENTIFIER","accountRole":"FLEET_MANAGER",)"
    R"("userRole":{"roleNames":["ROLE_OWNER","ROLE_TIER1_SUPPORT"],"supportAccessGranted":"true"},)"
    R"("sharedInformation":{"facebookInfo":"fb","selfDescription":"d","totalDistanceDriven":12.5,)"
    R"("city":"c","subdivision":"s","age":34,"gender":"male","utcActivationDateInMillis":1.5e+21,)"
    R"("averageDrivingSpeedPerHour":48.25,"overallScore":0.1,"driverType":"WEEKEND_DRIVER"},)"
    R"("account":{"accountId":"a1","identifier":"i1"}})";

User wholeUser() {
  using enum UserRole::RoleName;
  return {
      .id = "42",
      .externalReferenceID = "ref",
      .userProfileId = "p1",
      .activated = true,
      .avatar = URL::parse("https://cdn.example/ann.jpg?s=2"),
      .firstName = "Ann",
      .lastName = "Lee",
      .associatedUsers = std::vector<User>{User{.id = "43"}, User{}},
      .gender = User::Gender::female(),
      .displayName = "Ann L.",
      .city = "Zürich",
      .subdivision = "Canton",
      .subdivisionCode = "ZH",
      .postalCode = "8001",
      .country = "Switzerland",
      .countryCode = "CH",
      .formattedAddress = "1 \"Quai\"",
      .dateOfBirth = DateComponents{1990, 5, 17},
      .email = "ann@example.org",
      .phone = "+41",
      .acceptedTerms = false,
      .acceptedTermsDate = dateFromSeconds(1'500'000'000),
      .selfDescription = "me",
      .shareUserProfile = true,
      .driverType = User::DriverType::commuter,
      .dataCollectionType = User::DataCollectionType::mobile,
      .scoringType = User::ScoringType::wtw,
      .enrollmentModelType = User::EnrollmentModelType::wedge,
      .accountRole = User::AccountRole::accountFleetManager,
      .userRole = UserRole{.roleNames = std::vector{primaryDriver, roleTier1Support},
                           .supportAccessGranted = "true"},
      .sharedInformation = User::SharedInformation{.facebookInfo = "fb",
                                                   .selfDescription = "d",
                                                   .totalDistanceDriven = 12.5,
                                                   .city = "c",
                                                   .subdivision = "s",
                                                   .age = 34,
                                                   .gender = User::Gender::male(),
                                                   .utcActivationDateInMillis = 1.5e21,
                                                   .averageDrivingSpeedPerHour = 48.25,
                                                   .overallScore = 0.1,
                                                   .driverType = User::DriverType::weekend_driver},
      .account = Account{.accountId = "a1", .identifier = "i1"},
  };
}

class UserTest : public testing::Test {
 protected:
  const ScopedDeviceSettings settings{{.locale = "en_US", .timeZone = "Europe/Zurich"}};
};

TEST_F(UserTest, isReadAndWrittenWhole) {
  expectMirrored(wholeText, wholeUser());
  expectMirrored("[{}]", std::vector<User>{{}});
  expectMirrored(
      R"({"OPERATOR":[{"userId":"1"}],"OWNER":[]})",
      UsersByRole{.OPERATOR = std::vector<User>{{.id = "1"}}, .OWNER = std::vector<User>{}});
}

// What nobody reads may nest as deep as texts do; users are read by recursion.
TEST_F(UserTest, nestsAsDeepAsASmallStackBears) {
  EXPECT_EQ(decode<User>(R"({"unread":)" + std::string(512, '[') + std::string(512, ']') + '}'),
            User{});
  std::string text = "{}";
  for (int users = 2; users <= 400; ++users) {
    text = R"({"associatedUsers":[)" + text + "]}";
    EXPECT_EQ(failure<User>(text) == "none", users <= 64) << users;
  }
  EXPECT_TRUE(failure<User>(text).starts_with("malformedText associatedUsers[0].associated"));
}

TEST_F(UserTest, readsTheWireAsItIs) {
  const std::pair<std::string_view, User> rows[] = {
      {R"({"postalcode":"1234","postalCode":"5"})", {.postalCode = "1234"}},
      {R"({"userId":"42","publicDisplayName":"Ann","id":"7","displayName":"Bob"})",
       {.id = "42", .displayName = "Ann"}},
      {R"({"gender":"MALE"})", {.gender = User::Gender::custom("MALE")}},
      {R"({"enrollmentModelType":"MOBILE_FLEXIBLE"})",
       {.enrollmentModelType = User::EnrollmentModelType::phone_only}},
      {R"({"accountRole":"UNKNOWN"})", {.accountRole = User::AccountRole::unknown}},
      {R"({"dateOfBirth":"2017-10-15"})", {.dateOfBirth = DateComponents{2017, 10, 15}}},
      {R"({"acceptedTermsDate":-1})", {.acceptedTermsDate = dateFromSeconds(-0.001)}},
      {R"({"acceptedTermsDate":-1.0})", {.acceptedTermsDate = dateFromSeconds(-0.001)}},
  };
  for (const auto& [json, user] : rows) EXPECT_EQ(decode<User>(json), user) << json;
  for (const std::string day : {"17/05/1990", "2023-02-29", ""}) {
    EXPECT_EQ(decode<User>(R"({"dateOfBirth":")" + day + "\"}"),
              User{.dateOfBirth = DateComponents{}});
  }
  for (const std::string_view json :
       {R"({"dateOfBirth":19900517})", R"({"dateOfBirth":["1990-05-17"]})",
        R"({"acceptedTermsDate":"1500000000000"})", R"({"acceptedTermsDate":1.5})",
        R"({"acceptedTermsDate":1e300})", R"({"acceptedTermsDate":true})", R"({"avatar":""})",
        R"({"avatar":"no url"})", R"({"avatar":"https://h/é"})",
        R"({"avatar":null,"gender":null,"dateOfBirth":null,"acceptedTermsDate":null})"}) {
    EXPECT_EQ(decode<User>(json), User{}) << json;
  }
}

TEST_F(UserTest, writesWhatItWasGiven) {
  const User user{.gender = User::Gender::custom("MALE"),
                  .dateOfBirth = DateComponents{.year = 2024, .month = 2},
                  .acceptedTermsDate = dateFromSeconds(-0.0025)};
  EXPECT_EQ(encode(user),
            std::string(R"({"gender":"MALE","dateOfBirth":"2024-02-01","acceptedTermsDate":-3})"));
  // A day that the calendar can't form is not sent.
  for (const DateComponents& day : {DateComponents{}, DateComponents{2023, 2, 29}}) {
    EXPECT_EQ(encode(User{.id = "1", .dateOfBirth = day}), std::string(R"({"userId":"1"})"));
  }
  for (const std::string locale : {"th_TH", "ar_EG@calendar=buddhist"}) {
    const ScopedDeviceSettings device({.locale = locale, .timeZone = "UTC"});
    expectMirrored(R"({"dateOfBirth":"2567-01-05"})",
                   User{.dateOfBirth = DateComponents{2567, 1, 5}});
  }
}

using UserDeathTest = DeathTest;

TEST_F(UserDeathTest, aMomentBeyondTheWireStopsTheProcess) {
  const User user{.acceptedTermsDate = dateFromSeconds(0x1p63 / 1000)};
  EXPECT_DEATH((void)encode(user), "Fatal error: a point in time does not fit in 64 bits");
  EXPECT_TRUE(encodeChecked(user).error());
}

TEST_F(UserTest, anUnknownTextOfAnEnumerationFailsIt) {
  struct Row {
    std::string_view json;
    std::string name, location;
  };
  const Row rows[] = {
      {R"({"driverType":"weekend_driver"})", "DriverType", "driverType"},
      {R"({"dataCollectionType":""})", "DataCollectionType", "dataCollectionType"},
      {R"({"scoringType":"IMS "})", "ScoringType", "scoringType"},
      {R"({"enrollmentModelType":"WEDGE"})", "EnrollmentModelType", "enrollmentModelType"},
      {R"({"accountRole":"ROLE_OWNER"})", "AccountRole", "accountRole"},
      {R"({"userRole":{"roleNames":["ROLE_OWNER","ROLE_SUPERVISOR"]}})", "UserRole",
       "userRole.roleNames[1]"},
      {R"({"sharedInformation":{"driverType":"x"}})", "DriverType", "sharedInformation.driverType"},
      {R"({"associatedUsers":[{},{"scoringType":"x"}]})", "ScoringType",
       "associatedUsers[1].scoringType"},
  };
  for (const auto& [json, name, location] : rows) {
    const std::string why = "Unknown value found when decoding " + name;
    const DecodingError error{DecodingError::Kind::dataCorrupted, why, {}, location};
    EXPECT_EQ(decode<User>(json), error) << json;
  }
}

TEST_F(UserTest, aMemberOfAnotherTypeFailsIt) {
  for (const std::string_view json :
       {R"({"userId":42})", R"({"activated":"true"})", R"({"avatar":1})", R"({"gender":1})",
        R"({"associatedUsers":{}})", R"({"associatedUsers":[null]})", R"({"driverType":1})",
        R"({"acceptedTerms":1})", R"({"account":[]})",
        R"({"userRole":{"supportAccessGranted":true}})", R"({"sharedInformation":{"age":34.5}})",
        R"({"sharedInformation":{"overallScore":"1"}})", "[]", "null", "\"42\""}) {
    EXPECT_TRUE(decode<User>(json).error()) << json;
  }
}

// The texts of the wire, spelt out: a slip in a table would be wrong in both directions.
TEST(UserEnumerationsTest, haveTheirWireTexts) {
  EXPECT_EQ(wireTexts<User::DriverType>(),
            "WEEKEND_DRIVER OCCASIONAL_DRIVER FREQUENT_DRIVER COMMUTER PROFESSIONAL_DRIVER");
  EXPECT_EQ(wireTexts<User::DataCollectionType>(), "OBD MOBILE");
  EXPECT_EQ(wireTexts<User::ScoringType>(), "IMS WTW");
  EXPECT_EQ(wireTexts<User::EnrollmentModelType>(),
            "MOBILE_FLEXIBLE MOBILE_WITH_VEHICLE_IDENTIFIER OBD");
  EXPECT_EQ(wireTexts<User::AccountRole>(), "OWNER OPERATOR FLEET_MANAGER FLEET_DRIVER UNKNOWN");
  EXPECT_EQ(wireTexts<UserRole::RoleName>(),
            "ROLE_OWNER ROLE_OPERATOR ROLE_ADMIN ROLE_BUSINESS_ADMIN ROLE_BUSINESS_USER "
            "ROLE_SHIPPER ROLE_TIER1_SUPPORT ROLE_BUSINESS_USER_INTERNAL ROLE_FLEET_DRIVER "
            "ROLE_FLEET_OPERATOR ROLE_FLEET_ADMIN");
}

}  // namespace
}  // namespace orvane
