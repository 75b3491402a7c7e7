// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/User/UserComposer.h>
#include <Orvane/Services/User/UserService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using enum UserService::Expansion;

RequestRow fetching(std::string name, std::optional<std::string> id,
                    std::set<UserService::Expansion> expansions, const std::string& target) {
  return {std::move(name),
          [=](const Identity& identity) { UserService(identity).fetch(id, expansions, nullptr); },
          "GET " + target};
}

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

RequestRow updating(std::string name, UserUpdate update,
                    const std::vector<std::pair<std::string, std::string>>& parts) {
  return {std::move(name),
          [=](const Identity& identity) { UserService(identity).update(update, nullptr); },
          posting(parts)};
}

RequestRow updatingAddress(std::string name, UserAddressUpdate update,
                           const std::vector<std::pair<std::string, std::string>>& parts) {
  return {std::move(name),
          [=](const Identity& identity) { UserService(identity).updateAddress(update, nullptr); },
          posting(parts)};
}

TEST(UserServiceTest, sendsTheseRequests) {
  const ScopedDeviceSettings settings({.locale = "en_US", .timeZone = "Europe/Zurich"});
  expectRequests({
      fetching("the current user", {}, {}, "users/42"),
      fetching("another user", "17", {}, "users/17"),
      fetching("a user whose id needs encoding", "a b/c?", {}, "users/a%20b/c%3F"),
      fetching("one expansion", {}, {associatedUsers}, "users/42?expand=associatedUsers"),
      fetching("every expansion", "17",
               {role, customFields, associatedAccount, sharedInformation, associatedUsers},
               "users/17?expand=associatedUsers&expand=sharedInformation&expand=associatedAccount"
               "&expand=customFields&expand=role"),
      updating("nothing", {}, {}),
      updating("everything",
               {.displayName = "Ann",
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
                .enrollmentModelType = User::EnrollmentModelType::phone_only},
               {{"publicDisplayName", "Ann"},
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
      updating("a gender of one's own", {.gender = User::Gender::custom("x")}, {{"gender", "x"}}),
      updating("an empty name is not an absent one", {.displayName = ""},
               {{"publicDisplayName", ""}}),
      updating("a day that does not exist is left out",
               {.dateOfBirth = DateComponents{2023, 2, 29}, .shareUserProfile = true},
               {{"shareUserProfile", "true"}}),
      updatingAddress("nothing of an address", {}, {}),
      updatingAddress("all of an address",
                      {.city = "Zürich",
                       .subdivision = "Zürich canton",
                       .subdivisionCode = "ZH",
                       .postalCode = "8001",
                       .country = "Switzerland",
                       .countryCode = "CH",
                       .formattedAddress = "1, Quai"},
                      {{"city", "Zürich"},
                       {"subdivision", "Zürich canton"},
                       {"subdivisionCode", "ZH"},
                       {"postalcode", "8001"},
                       {"country", "Switzerland"},
                       {"countryCode", "CH"},
                       {"formattedAddress", "1, Quai"}}),
  });
}

TEST(UserServiceTest, answersTheUpdatedUser) {
  const ScopedFoundation foundation;
  foundation.requestManager->answer(R"({"userId":"42","postalcode":"8001"})");
  User expected{.id = "42"};
  expected.postalCode = "8001";
  const UserService users({"key", {}});
  const Outcome<User> profile;
  const Outcome<User> address;
  users.update({.displayName = "Ann"}, profile.handler());
  users.updateAddress({.postalCode = "8001"}, address.handler());
  EXPECT_EQ(profile.result(), Result<User>(expected));
  EXPECT_EQ(address.result(), Result<User>(expected));
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

TEST(UserServiceTest, refusesTextsThatAreNotUTF8) {
  const ScopedFoundation foundation;
  const UserService users({"key", {}});
  const Outcome<User> fetched;
  const Outcome<User> updated;
  const Outcome<User> moved;
  users.fetch("\xFF", {}, fetched.handler());
  users.update({.firstName = "fine", .lastName = "\xFF"}, updated.handler());
  users.updateAddress({.city = "\xC3"}, moved.handler());
  EXPECT_EQ(fetched.result().error(), Error(NetworkError::malformedRequest));
  EXPECT_EQ(updated.result().error(), Error(DataError{}));
  EXPECT_EQ(moved.result().error(), Error(DataError{}));
  EXPECT_TRUE(foundation.requestManager->calls().empty());
}

TEST(UserAddressComposerTest, carriesTheQueryItIsGiven) {
  const UserAddressComposer composer({}, "a=b");
  EXPECT_EQ(composer.url(exampleDetails())->query(), "a=b");
}

}  // namespace
}  // namespace orvane
