// SPDX-License-Identifier: Apache-2.0
// Activation, terms, devices and push tokens: what happens when a person starts with the programme.
#include "tests/support/RequestRows.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Activation/ActivationService.h>
#include <Orvane/Services/Device/DeviceComposer.h>
#include <Orvane/Services/Device/DeviceService.h>
#include <Orvane/Services/EULA/EULAService.h>
#include <Orvane/Services/PushNotification/PushNotificationComposer.h>
#include <Orvane/Services/PushNotification/PushNotificationService.h>
#include <Orvane/Testing/ScopedFoundation.h>

namespace orvane {
namespace {

TEST(EnrolmentTest, sendsTheseRequests) {
  const auto activate = [](const Identity& identity) {
    ActivationService(identity).activate("A-1", "C/2+3", "ann b@example.com", nullptr);
  };
  const std::string start =
      "POST activation?activationId=A-1&activationCode=C/2+3&email=ann%20b@example.com";
  const std::string end = "&displayName=ann%20b@example.com&phoneIdentifier=device-1";
  expectRequest(start + "&accountId=reference" + end, activate);
  expectRequest(start + end, activate, std::nullopt);
  expectRequests<EULAService>(
      {{"POST users/42/eula\n"
        "Content-Length: right\n"
        "Content-Type: multipart/form-data; boundary=BOUNDARY\n\n"
        "--BOUNDARY\\r\n"
        "Content-Disposition: form-data; name=\"acceptedTerms\"\\r\n"
        "\\r\n"
        "accept\\r\n"
        "--BOUNDARY--",
        [](auto& terms) { terms.acceptTerms(nullptr); }}});
  expectRequests<DeviceService>({
      {"POST users/42/devices/device-1?action=activateLimitOne",
       [](auto& devices) { devices.activate(nullptr); }},
      {"POST users/42/devices/device-1?action=deactivate",
       [](auto& devices) { devices.deactivate(nullptr); }},
      {"GET users/42/devices/device-1", [](auto& devices) { devices.fetch(nullptr); }},
  });
  expectRequests<PushNotificationService>({
      {"POST users/42/devices/device-1?deviceToken=a&b%20c&appId=1",
       [](auto& tokens) { tokens.setToken("a&b c", nullptr); }},
      {"POST users/42/devices/device-1?deviceToken=&appId=1",
       [](auto& tokens) { tokens.setToken("", nullptr); }},
  });
}

// A new name for every question.
class ChangingDeviceIdentifier final : public DeviceIdentifier {
 public:
  [[nodiscard]] std::string current() const override {
    return "device-" + std::to_string(++asked_);
  }

 private:
  mutable int asked_ = 0;
};

TEST(EnrolmentTest, asksForTheDeviceIdentifierAtEveryCall) {
  const ScopedFoundation foundation;
  Container::common()->register_<DeviceIdentifier>(
      std::shared_ptr<DeviceIdentifier>(std::make_shared<ChangingDeviceIdentifier>()));
  const DeviceService devices(Identity{"key", {}});
  devices.activate(nullptr);
  devices.activate(nullptr);
  const auto requests = foundation.requestManager->questions();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_TRUE(requests[0].url.path().ends_with("/devices/device-1"));
  EXPECT_TRUE(requests[1].url.path().ends_with("/devices/device-2"));
}

TEST(DeviceComposerTest, formsTheCollection) {
  const DeviceComposer collection(DeviceComposer::Collection{});
  EXPECT_EQ(collection.path("42"), "users/42/devices");
  EXPECT_EQ(collection.query(), std::nullopt);
}

TEST(PushNotificationComposerTest, tellsTheApplication) {
  const PushNotificationComposer composer("abc", "D1", 7);
  EXPECT_EQ(composer.path("42"), "users/42/devices/D1");
  EXPECT_EQ(composer.query(), "deviceToken=abc&appId=7");
}

class EnrolmentDeathTest : public DeathTest {};

TEST_F(EnrolmentDeathTest, stopsWithoutADeviceIdentifier) {
  const auto without = [](auto make) {
    const ScopedFoundation foundation;
    Container::common()->register_<DeviceIdentifier>(std::shared_ptr<DeviceIdentifier>());
    make(Identity{"key", {}});
  };
  constexpr const char* report =
      "nothing is registered for orvane::DeviceIdentifier: file Container.Network, line 30";
  EXPECT_DEATH(without([](const Identity& identity) { ActivationService{identity}; }), report);
  EXPECT_DEATH(without([](const Identity& identity) { DeviceService{identity}; }), report);
  EXPECT_DEATH(without([](const Identity& identity) { PushNotificationService{identity}; }),
               report);
}

}  // namespace
}  // namespace orvane
