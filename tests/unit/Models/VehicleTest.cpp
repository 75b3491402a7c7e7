// SPDX-License-Identifier: Apache-2.0
// Vehicles and devices.
#include "tests/support/Records.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Device.h>
#include <Orvane/Models/Vehicle.h>

#include <functional>
#include <string>
#include <vector>

namespace orvane {
namespace {

TEST(DeviceTest, isReadAndWrittenWhole) {
  const std::string json =
      R"({"identifier":"D1","deviceType":"PHONE","enrollmentDeviceId":"E1","serialNumber":"S1",)"
      R"("pushNotificationToken":"abc","enablePushNotifications":true,)"
      R"("activeForDataCollection":false})";
  const Device device{.deviceType = "PHONE",
                      .enrollmentDeviceId = "E1",
                      .identifier = "D1",
                      .serialNumber = "S1",
                      .pushNotificationToken = "abc",
                      .pushNotificationsAreEnabled = true,
                      .dataCollectionIsActive = false};
  expectMirrored(json, device);
  expectMirrored("{}", Device{});
  EXPECT_EQ(decode<Device>(R"({"pushNotificationsAreEnabled":1,"dataCollectionIsActive":"x"})"),
            Device{});
}

const Vehicle vehicle{.vehicleId = "V1",
                      .make = "Make",
                      .model = "Model",
                      .nickName = "Nick",
                      .year = 2021,
                      .vin = "WVWZZZ1JZXW000001",
                      .plate = "ZH 1",
                      .timeZoneName = "Europe/Zurich",
                      .timeZoneOffset = "+01:00",
                      .enrollmentDate = 1700000000000.25,
                      .usersByRole = UsersByRole{.OWNER = {{User{.id = "42"}}}},
                      .backgroundImageEnabled = false,
                      .devices = {{Device{.identifier = "D1"}}},
                      .requireOdometerSnapshot = true};

TEST(VehicleTest, isReadAndWrittenWhole) {
  const std::string json =
      R"({"vehicleId":"V1","make":"Make","model":"Model","nickName":"Nick","year":2021,)"
      R"("vin":"WVWZZZ1JZXW000001","plate":"ZH 1","timeZoneName":"Europe/Zurich",)"
      R"("timeZoneOffset":"+01:00","enrollmentDate":1700000000000.25,)"
      R"("usersByRole":{"OWNER":[{"userId":"42"}]},"backgroundImageEnabled":false,)"
      R"("devices":[{"identifier":"D1"}],"requireOdometerSnapshot":true})";
  expectMirrored(json, vehicle);
  EXPECT_TRUE(decode<Vehicle>(json).value()->isIdentical(vehicle));
  expectMirrored("{}", Vehicle{});
  EXPECT_FALSE(decode<Vehicle>(R"({"timeZoneOffset":3600})"));
  EXPECT_FALSE(decode<Vehicle>(R"({"year":"2021"})"));
}

TEST(VehicleTest, isEqualByItsIdAlone) {
  EXPECT_EQ((Vehicle{.vehicleId = "V1", .plate = "a"}), vehicle);
  EXPECT_EQ((Vehicle{.plate = "a"}), (Vehicle{.plate = "b"}));
  EXPECT_NE((Vehicle{.vehicleId = "V2", .plate = "ZH 1"}), vehicle);
  EXPECT_NE(Vehicle{.plate = "ZH 1"}, vehicle);

  EXPECT_TRUE(vehicle.isIdentical(vehicle));
  const std::function<void(Vehicle&)> changes[] = {
      [](Vehicle& v) { v.vehicleId = "V2"; },
      [](Vehicle& v) { v.make.reset(); },
      [](Vehicle& v) { v.model.reset(); },
      [](Vehicle& v) { v.nickName.reset(); },
      [](Vehicle& v) { v.year = 2022; },
      [](Vehicle& v) { v.vin.reset(); },
      [](Vehicle& v) { v.plate = "ZH 2"; },
      [](Vehicle& v) { v.timeZoneName.reset(); },
      [](Vehicle& v) { v.timeZoneOffset.reset(); },
      [](Vehicle& v) { v.enrollmentDate = 1; },
      [](Vehicle& v) { v.usersByRole->OWNER->front().id = "43"; },
      [](Vehicle& v) { v.backgroundImageEnabled = true; },
      [](Vehicle& v) { v.devices->clear(); },
      [](Vehicle& v) { v.requireOdometerSnapshot.reset(); },
  };
  for (const auto& change : changes) {
    Vehicle other = vehicle;
    change(other);
    EXPECT_FALSE(other.isIdentical(vehicle));
  }
}

}  // namespace
}  // namespace orvane
