// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Printing.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/User.h>
#include <Orvane/Testing/Device.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

using Kind = DecodingError::Kind;

// Every member, in the order in which it is written.
constexpr std::string_view wholeText =
    R"({"userId":"42","externalReferenceId":"ref","userProfileId":"p1","activated":true,)"
    R"("avatar":"https://cdn.example/ann.jpg?s=2","firstName":"Ann","lastName":"Lee",)"
    R"("associatedUsers":[{"userId":"43"},{}],"gender":"female","publicDisplayName":"Ann L.",)"
    R"("city":"Zürich","subdivision":"Zürich","subdivisionCode":"ZH","postalcode":"8001",)"
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
  User user;
  user.id = "42";
  user.externalReferenceID = "ref";
  user.userProfileId = "p1";
  user.activated = true;
  user.avatar = URL::parse("https://cdn.example/ann.jpg?s=2");
  user.firstName = "Ann";
  user.lastName = "Lee";
  user.associatedUsers = std::vector<User>{User{.id = "43"}, User{}};
  user.gender = User::Gender::female();
  user.displayName = "Ann L.";
  user.city = "Zürich";
  user.subdivision = "Zürich";
  user.subdivisionCode = "ZH";
  user.postalCode = "8001";
  user.country = "Switzerland";
  user.countryCode = "CH";
  user.formattedAddress = "1 \"Quai\"";
  user.dateOfBirth = DateComponents{1990, 5, 17};
  user.email = "ann@example.org";
  user.phone = "+41";
  user.acceptedTerms = false;
  user.acceptedTermsDate = dateFromSeconds(1'500'000'000);
  user.selfDescription = "me";
  user.shareUserProfile = true;
  user.driverType = User::DriverType::commuter;
  user.dataCollectionType = User::DataCollectionType::mobile;
  user.scoringType = User::ScoringType::wtw;
  user.enrollmentModelType = User::EnrollmentModelType::wedge;
  user.accountRole = User::AccountRole::accountFleetManager;
  using enum UserRole::RoleName;
  user.userRole = UserRole{.roleNames = std::vector{primaryDriver, roleTier1Support},
                           .supportAccessGranted = "true"};
  user.sharedInformation = User::SharedInformation{.facebookInfo = "fb",
                                                   .selfDescription = "d",
                                                   .totalDistanceDriven = 12.5,
                                                   .city = "c",
                                                   .subdivision = "s",
                                                   .age = 34,
                                                   .gender = User::Gender::male(),
                                                   .utcActivationDateInMillis = 1.5e21,
                                                   .averageDrivingSpeedPerHour = 48.25,
                                                   .overallScore = 0.1,
                                                   .driverType = User::DriverType::weekend_driver};
  user.account = Account{.accountId = "a1", .identifier = "i1"};
  return user;
}

class UserTest : public testing::Test {
 protected:
  const ScopedDeviceSettings settings{{.locale = "en_US", .timeZone = "Europe/Zurich"}};
};

TEST_F(UserTest, isReadAndWrittenWhole) {
  EXPECT_EQ(decode<User>(wholeText), Result<User>(wholeUser()));
  EXPECT_EQ(encode(wholeUser()), Result<std::string>(std::string(wholeText)));
  EXPECT_EQ(encode(User{}), Result<std::string>("{}"));
  EXPECT_EQ(decode<std::vector<User>>("[{}]"), Result<std::vector<User>>({User{}}));

  const UsersByRole byRole{.OPERATOR = std::vector<User>{{.id = "1"}},
                           .OWNER = std::vector<User>{}};
  constexpr std::string_view text = R"({"OPERATOR":[{"userId":"1"}],"OWNER":[]})";
  EXPECT_EQ(decode<UsersByRole>(text), Result<UsersByRole>(byRole));
  EXPECT_EQ(encode(byRole), Result<std::string>(std::string(text)));
}

TEST_F(UserTest, everyMemberMayBeNull) {
  std::string text(wholeText);
  for (const std::string_view key : {"userId",
                                     "externalReferenceId",
                                     "userProfileId",
                                     "activated",
                                     "avatar",
                                     "firstName",
                                     "lastName",
                                     "associatedUsers",
                                     "gender",
                                     "publicDisplayName",
                                     "city",
                                     "subdivision",
                                     "subdivisionCode",
                                     "postalcode",
                                     "country",
                                     "countryCode",
                                     "formattedAddress",
                                     "dateOfBirth",
                                     "email",
                                     "phone",
                                     "acceptedTerms",
                                     "acceptedTermsDate",
                                     "selfDescription",
                                     "shareUserProfile",
                                     "driverType",
                                     "dataCollectionType",
                                     "scoringType",
                                     "enrollmentModelType",
                                     "accountRole",
                                     "userRole",
                                     "sharedInformation",
                                     "account"}) {
    // A later duplicate clears the member, one after the other.
    const auto before = decode<User>(text);
    text.replace(text.size() - 1, 1, ",\"" + std::string(key) + "\":null}");
    const auto after = decode<User>(text);
    ASSERT_TRUE(after.value()) << key;
    EXPECT_FALSE(before == after) << key;
  }
  EXPECT_EQ(decode<User>(text), Result<User>(User{}));
}

TEST_F(UserTest, readsTheWireAsItIs) {
  struct Row {
    std::string_view json;
    User expected;
  };
  User dateless;
  dateless.dateOfBirth = DateComponents{};
  User custom;
  custom.gender = User::Gender::custom("MALE");
  User born;
  born.dateOfBirth = DateComponents{2017, 10, 15};
  User accepted;
  accepted.acceptedTermsDate = dateFromSeconds(-0.001);
  User coded;
  coded.postalCode = "1234";
  User enrolled;
  enrolled.enrollmentModelType = User::EnrollmentModelType::phone_only;
  User unknown;
  unknown.accountRole = User::AccountRole::unknown;
  User named{.id = "42"};
  named.displayName = "Ann";
  const Row rows[] = {
      {R"({"postalcode":"1234","postalCode":"5"})", coded},
      {R"({"userId":"42","publicDisplayName":"Ann","id":"7","displayName":"Bob"})", named},
      {R"({"gender":"MALE"})", custom},
      {R"({"enrollmentModelType":"MOBILE_FLEXIBLE"})", enrolled},
      {R"({"accountRole":"UNKNOWN"})", unknown},
      {R"({"dateOfBirth":"2017-10-15"})", born},
      {R"({"dateOfBirth":"17/05/1990"})", dateless},
      {R"({"dateOfBirth":"2023-02-29"})", dateless},
      {R"({"dateOfBirth":""})", dateless},
      {R"({"dateOfBirth":19900517})", {}},
      {R"({"dateOfBirth":["1990-05-17"]})", {}},
      {R"({"acceptedTermsDate":-1})", accepted},
      {R"({"acceptedTermsDate":-1.0})", accepted},
      {R"({"acceptedTermsDate":"1500000000000"})", {}},
      {R"({"acceptedTermsDate":1.5})", {}},
      {R"({"acceptedTermsDate":1e300})", {}},
      {R"({"acceptedTermsDate":true})", {}},
      {R"({"avatar":""})", {}},
      {R"({"avatar":"no url"})", {}},
      {R"({"avatar":"https://h/é"})", {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(decode<User>(row.json), Result<User>(row.expected)) << row.json;
  }
}

TEST_F(UserTest, writesWhatItWasGiven) {
  User user;
  user.gender = User::Gender::custom("MALE");
  user.dateOfBirth = DateComponents{.year = 2024, .month = 2};
  user.acceptedTermsDate = dateFromSeconds(-0.0025);
  EXPECT_EQ(encode(user),
            Result<std::string>(
                R"({"gender":"MALE","dateOfBirth":"2024-02-01","acceptedTermsDate":-3})"));
  // A day that the calendar can't form is not sent.
  for (const DateComponents& day : {DateComponents{}, DateComponents{2023, 2, 29}}) {
    EXPECT_EQ(encode(User{.id = "1", .dateOfBirth = day}),
              Result<std::string>(R"({"userId":"1"})"));
  }
  const ScopedDeviceSettings thai({.locale = "th_TH", .timeZone = "UTC"});
  EXPECT_EQ(encode(User{.dateOfBirth = DateComponents{2567, 1, 5}}),
            Result<std::string>(R"({"dateOfBirth":"2567-01-05"})"));
}

using UserDeathTest = DeathTest;

TEST_F(UserDeathTest, aMomentBeyondTheWireStopsTheProcess) {
  User user;
  user.acceptedTermsDate = dateFromSeconds(0x1p63 / 1000);
  EXPECT_DEATH((void)encode(user), "Fatal error: a point in time does not fit in 64 bits");
  EXPECT_TRUE(encodeChecked(user).error());
}

TEST_F(UserTest, anUnknownTextOfAnEnumerationFailsIt) {
  struct Row {
    std::string_view json;
    std::string_view name;
    std::string_view location;
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
  for (const Row& row : rows) {
    const auto result = decode<User>(row.json);
    ASSERT_TRUE(result.error()) << row.json;
    const auto& error = *result.error()->as<DecodingError>();
    EXPECT_EQ(error.kind, Kind::dataCorrupted);
    EXPECT_EQ(error.description, "Unknown value found when decoding " + std::string(row.name));
    EXPECT_TRUE(error.codingPath.empty()) << row.json;
    EXPECT_EQ(error.location, row.location);
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
  const auto texts = [](const auto& cases) {
    std::vector<std::string_view> found;
    for (const auto& row : cases) found.push_back(row.wireText);
    return found;
  };
  using testing::ElementsAre;
  EXPECT_THAT(texts(allCases<User::DriverType>()),
              ElementsAre("WEEKEND_DRIVER", "OCCASIONAL_DRIVER", "FREQUENT_DRIVER", "COMMUTER",
                          "PROFESSIONAL_DRIVER"));
  EXPECT_THAT(texts(allCases<User::DataCollectionType>()), ElementsAre("OBD", "MOBILE"));
  EXPECT_THAT(texts(allCases<User::ScoringType>()), ElementsAre("IMS", "WTW"));
  EXPECT_THAT(texts(allCases<User::EnrollmentModelType>()),
              ElementsAre("MOBILE_FLEXIBLE", "MOBILE_WITH_VEHICLE_IDENTIFIER", "OBD"));
  EXPECT_THAT(texts(allCases<User::AccountRole>()),
              ElementsAre("OWNER", "OPERATOR", "FLEET_MANAGER", "FLEET_DRIVER", "UNKNOWN"));
  EXPECT_THAT(texts(allCases<UserRole::RoleName>()),
              ElementsAre("ROLE_OWNER", "ROLE_OPERATOR", "ROLE_ADMIN", "ROLE_BUSINESS_ADMIN",
                          "ROLE_BUSINESS_USER", "ROLE_SHIPPER", "ROLE_TIER1_SUPPORT",
                          "ROLE_BUSINESS_USER_INTERNAL", "ROLE_FLEET_DRIVER", "ROLE_FLEET_OPERATOR",
                          "ROLE_FLEET_ADMIN"));
  EXPECT_EQ(static_cast<int>(UserRole::RoleName::roleFleetAdmin), 10);
}

}  // namespace
}  // namespace orvane
