// SPDX-License-Identifier: Apache-2.0
// The library through its Runtime against a backend in another process, over TLS.
#include "SandboxProcess.h"
#include <Orvane/Common/Await.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Runtime/Runtime.h>
#include <Orvane/Runtime/SelfSignedTokenResolver.h>
#include <Orvane/Services/User/UserService.h>

#include <gtest/gtest.h>

#include <optional>

namespace orvane::test {
namespace {

using Arrival = SandboxProcess::Arrival;
using Expansion = UserService::Expansion;

// A device clock that tests can set wrong.
Seconds clockError{0};
Date wrongNow() { return Date(std::chrono::system_clock::now()) + clockError; }

class LibraryTest : public testing::Test {
 protected:
  // Signs in at `sandbox` as the first of its people.
  void install(const SandboxProcess& sandbox) {
    Result<Runtime> installed =
        Runtime::install({.baseURL = sandbox.baseURL(),
                          .tokens = SelfSignedTokenResolver::make(
                              {.key = bytesFromHexadecimal(sandbox.signingKey()).value_or("")}),
                          .transport = {.caFile = sandbox.caFile()}});
    ASSERT_TRUE(installed) << installed.error()->message();
    identity_ = sandbox.identity();
    signOut();
    runtime_ = *std::move(installed).value();
    runtime_->signOut(identity_);
  }

  // What one test looked up is not to be there for the next.
  void signOut() {
    if (!runtime_) return;
    runtime_->signOut(identity_);
    EXPECT_TRUE(runtime_->shutdown());
    runtime_.reset();
  }

  void TearDown() override {
    DeviceClock::setSource(nullptr);
    signOut();
  }

  [[nodiscard]] Result<User> fetch(std::set<Expansion> expansions = {}) const {
    return wait<User>([&](Completion<User> then) {
      return UserService(identity_).fetch(std::nullopt, std::move(expansions), std::move(then));
    });
  }

  Identity identity_;

 private:
  std::optional<Runtime> runtime_;
};

TEST_F(LibraryTest, FetchesAndUpdatesTheUser) {
  SandboxProcess sandbox;
  install(sandbox);
  const UserService users(identity_);

  const Result<User> plain = fetch();
  ASSERT_TRUE(plain) << plain.error()->message();
  EXPECT_EQ(plain.value()->id, sandbox.userID());
  EXPECT_EQ(plain.value()->externalReferenceID, identity_.externalReferenceID);
  EXPECT_FALSE(plain.value()->userRole);

  const Result<User> whole =
      fetch({Expansion::associatedUsers, Expansion::sharedInformation, Expansion::associatedAccount,
             Expansion::customFields, Expansion::role});
  ASSERT_TRUE(whole) << whole.error()->message();
  ASSERT_TRUE(whole.value()->associatedUsers && !whole.value()->associatedUsers->empty());
  EXPECT_TRUE(whole.value()->sharedInformation);
  EXPECT_TRUE(whole.value()->account);
  EXPECT_TRUE(whole.value()->userRole);

  // Another member of the account, by id.
  const std::optional<std::string> other = whole.value()->associatedUsers->front().id;
  const Result<User> associated =
      wait<User>([&](Completion<User> then) { return users.fetch(other, {}, std::move(then)); });
  ASSERT_TRUE(associated) << associated.error()->message();
  EXPECT_EQ(associated.value()->id, other);

  // Every field of both forms, texts that a form could stumble over among them.
  UserUpdate update{.displayName = "Zoë \"Z\" – 测试",
                    .postalCode = "8001",
                    .avatar = "https://pictures.example/z.jpg",
                    .gender = User::Gender::custom("non-binary"),
                    .dateOfBirth = DateComponents{1990, 5, 17},
                    .firstName = "Zoë",
                    .lastName = "O'Neill",
                    .email = "zoe+orvane@example.org",
                    .phone = "+41 44 000 00 00",
                    .selfDescription = "first line\r\nsecond line",
                    .shareUserProfile = false,
                    .driverType = User::DriverType::weekend_driver,
                    .dataCollectionType = User::DataCollectionType::obd,
                    .scoringType = User::ScoringType::wtw,
                    .enrollmentModelType = User::EnrollmentModelType::obd};
  const Result<User> updated =
      wait<User>([&](Completion<User> then) { return users.update(update, std::move(then)); });
  ASSERT_TRUE(updated) << updated.error()->message();
  const UserAddressUpdate address{.city = "Zürich",
                                  .subdivision = "Zürich",
                                  .subdivisionCode = "CH-ZH",
                                  .postalCode = "8004",
                                  .country = "Switzerland",
                                  .countryCode = "CH",
                                  .formattedAddress = "Langstrasse 1\n8004 Zürich"};
  const Result<User> moved = wait<User>(
      [&](Completion<User> then) { return users.updateAddress(address, std::move(then)); });
  ASSERT_TRUE(moved) << moved.error()->message();

  User expected = *plain.value();
  expected.displayName = update.displayName;
  expected.avatar = URL::parse(*update.avatar);
  expected.gender = update.gender;
  expected.dateOfBirth = update.dateOfBirth;
  expected.firstName = update.firstName;
  expected.lastName = update.lastName;
  expected.email = update.email;
  expected.phone = update.phone;
  expected.selfDescription = update.selfDescription;
  expected.shareUserProfile = update.shareUserProfile;
  expected.driverType = update.driverType;
  expected.dataCollectionType = update.dataCollectionType;
  expected.scoringType = update.scoringType;
  expected.enrollmentModelType = update.enrollmentModelType;
  expected.city = address.city;
  expected.subdivision = address.subdivision;
  expected.subdivisionCode = address.subdivisionCode;
  expected.postalCode = address.postalCode;
  expected.country = address.country;
  expected.countryCode = address.countryCode;
  expected.formattedAddress = address.formattedAddress;
  EXPECT_EQ(*moved.value(), expected);
  EXPECT_EQ(fetch(), moved);
}

TEST_F(LibraryTest, CorrectsAWrongClockWithOneRetry) {
  SandboxProcess sandbox;
  for (const double error : {-300.0, 86400.0}) {
    SCOPED_TRACE(error);
    install(sandbox);
    sandbox.behave();
    clockError = Seconds(error);
    DeviceClock::setSource(wrongNow);
    const Result<User> first = fetch();
    ASSERT_TRUE(first) << first.error()->message();
    const Result<User> second = fetch();
    ASSERT_TRUE(second) << second.error()->message();
    const std::string user = "GET users/" + sandbox.userID();
    // The correction lasts: the second fetch starts right, and knows the user already.
    EXPECT_EQ(sandbox.arrivals(),
              (std::vector<Arrival>{
                  {"GET identity", 401}, {"GET identity", 200}, {user, 200}, {user, 200}}));
  }
}

}  // namespace
}  // namespace orvane::test
