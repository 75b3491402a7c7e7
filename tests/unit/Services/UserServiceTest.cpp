// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/User/UserComposer.h>
#include <Orvane/Services/User/UserService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane {
namespace {

// The request of an update with these parts, each a name and a value.
std::string posting(const std::vector<std::pair<std::string, std::string>>& parts) {
  std::string text =
      "POST users/42\nContent-Length: right\n"
      "Content-Type: multipart/form-data; boundary=BOUNDARY\n\n";
  for (const auto& [name, value] : parts) {
    text += "--BOUNDARY\\r\nContent-Disposition: form-data; name=\"" + name + "\"\\r\n\\r\n" +
            value + "\\r\n";
  }
  return text + "--BOUNDARY--";
}

TEST(UserServiceTest, sendsTheseRequests) {
  using enum UserService::Expansion;
  const std::set<UserService::Expansion> all = {role, customFields, associatedAccount,
                                                sharedInformation, associatedUsers};
  expectRequests<UserService>({
      {"GET users/42", [](auto& users) { users.fetch({}, {}, nullptr); }},
      {"GET users/17", [](auto& users) { users.fetch("17", {}, nullptr); }},
      {"GET users/a%20b/c%3F", [](auto& users) { users.fetch("a b/c?", {}, nullptr); }},
      {"GET users/42?expand=associatedUsers",
       [](auto& users) { users.fetch({}, {associatedUsers}, nullptr); }},
      {"GET users/17?expand=associatedUsers&expand=sharedInformation&expand=associatedAccount"
       "&expand=customFields&expand=role",
       [&](auto& users) { users.fetch("17", all, nullptr); }},
  });
}

TEST(UserServiceTest, sendsWhatIsToChange) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Europe/Zurich"});
  const UserUpdate profile{.displayName = "Ann",
                           .postalCode = "8001",
                           .avatar = "https://cdn.example/ann.jpg",
                           .gender = User::Gender::female(),
                           .dateOfBirth = DateComponents{1990, 5, 17},
                           .firstName = "Ann",
                           .lastName = "Lée",
                           .email = "ann+x@example.org",
                           .phone = "+41 1",
                           .selfDescription = "\"me\"\r\n--",
                           .shareUserProfile = false,
                           .driverType = User::DriverType::professional_driver,
                           .dataCollectionType = User::DataCollectionType::obd,
                           .scoringType = User::ScoringType::ims,
                           .enrollmentModelType = User::EnrollmentModelType::phone_only};
  const UserAddressUpdate address{.city = "Zürich",
                                  .subdivision = "Zürich canton",
                                  .subdivisionCode = "ZH",
                                  .postalCode = "8001",
                                  .country = "Switzerland",
                                  .countryCode = "CH",
                                  .formattedAddress = "1, Quai"};
  expectRequests<UserService>({
      {posting({}), [](auto& users) { users.update({}, nullptr); }},
      {posting({{"publicDisplayName", "Ann"},
                {"postalcode", "8001"},
                {"avatar", "https://cdn.example/ann.jpg"},
                {"gender", "female"},
                {"dateOfBirth", "1990-05-17"},
                {"firstName", "Ann"},
                {"lastName", "Lée"},
                {"email", "ann+x@example.org"},
                {"phone", "+41 1"},
                {"selfDescription", "\"me\"\\r\n--"},
                {"shareUserProfile", "false"},
                {"driverType", "PROFESSIONAL_DRIVER"},
                {"dataCollectionType", "OBD"},
                {"scoringType", "IMS"},
                {"enrollmentModelType", "MOBILE_FLEXIBLE"}}),
       [&](auto& users) { users.update(profile, nullptr); }},
      {posting({{"gender", "x"}}),
       [](auto& users) { users.update({.gender = User::Gender::custom("x")}, nullptr); }},
      {posting({{"publicDisplayName", ""}}),
       [](auto& users) { users.update({.displayName = ""}, nullptr); }},
      {posting({}), [](auto& users) { users.updateAddress({}, nullptr); }},
      {posting({{"city", "Zürich"},
                {"subdivision", "Zürich canton"},
                {"subdivisionCode", "ZH"},
                {"postalcode", "8001"},
                {"country", "Switzerland"},
                {"countryCode", "CH"},
                {"formattedAddress", "1, Quai"}}),
       [&](auto& users) { users.updateAddress(address, nullptr); }},
  });
  const ScopedDeviceSettings egypt({.locale = "ar_EG", .timeZone = "Africa/Cairo"});
  expectRequests<UserService>({
      {posting({{"dateOfBirth", "1990-05-17"}}),
       [](auto& users) {
         users.update({.dateOfBirth = DateComponents{1990, 5, 17}}, nullptr);
       }},
  });
}

// A host's resolver may send headers of its own along; they do not describe the body.
TEST(UserServiceTest, theHeadersOfABodyAreItsOwn) {
  const ScopedFoundation foundation;
  OrvaneDetails details = exampleDetails();
  details.headers["Content-Type"] = "text/plain";
  details.headers["X-Host"] = "kept";
  foundation.detailsResolver->answer(details);
  UserService({"key", {}}).update({.displayName = "Ann"}, nullptr);
  const Headers headers = foundation.requestManager->questions().at(0).headers;
  EXPECT_TRUE(headers.at("Content-Type").starts_with("multipart/form-data; boundary="));
  EXPECT_EQ(headers.at("X-Host"), "kept");
  EXPECT_EQ(headers.at("Authorization"), "Bearer token");
}

TEST(UserServiceTest, refusesADayOfBirthThatIsNone) {
  const ScopedFoundation foundation;
  for (const DateComponents& day : {DateComponents{2023, 2, 29}, DateComponents{}}) {
    const Outcome<User> outcome;
    UserService({"key", {}})
        .update({.dateOfBirth = day, .shareUserProfile = true}, outcome.handler());
    EXPECT_EQ(outcome.result(), NetworkError::malformedRequest);
  }
  EXPECT_TRUE(foundation.requestManager->calls().empty());
}

TEST(UserServiceTest, refusesTextsThatAreNotUTF8) {
  const ScopedFoundation foundation;
  const UserService users({"key", {}});
  const Outcome<User> fetched;
  const Outcome<User> updated;
  const Outcome<User> moved;
  users.fetch("\xFF", {}, fetched.handler());
  users.update({.firstName = "fine", .lastName = "\xFF"}, updated.handler());
  users.updateAddress({.city = "\xC3"}, moved.handler());
  EXPECT_EQ(fetched.result(), NetworkError::malformedRequest);
  EXPECT_EQ(updated.result(), DataError{});
  EXPECT_EQ(moved.result(), DataError{});
  EXPECT_TRUE(foundation.requestManager->calls().empty());
}

TEST(UserAddressComposerTest, carriesTheQueryItIsGiven) {
  const UserAddressComposer composer({}, "a=b");
  EXPECT_EQ(composer.url(exampleDetails())->query(), "a=b");
}

}  // namespace
}  // namespace orvane
