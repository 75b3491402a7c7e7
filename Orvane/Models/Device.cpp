// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Device.h>

namespace orvane {
namespace {

constexpr KeyRow deviceKeys[] = {
    key<&Device::identifier>("identifier"),
    key<&Device::deviceType>("deviceType"),
    key<&Device::enrollmentDeviceId>("enrollmentDeviceId"),
    key<&Device::serialNumber>("serialNumber"),
    key<&Device::pushNotificationToken>("pushNotificationToken"),
    key<&Device::pushNotificationsAreEnabled>("enablePushNotifications"),
    key<&Device::dataCollectionIsActive>("activeForDataCollection"),
};

}  // namespace

KeyTables keysOf(RecordTag<Device>) { return deviceKeys; }

template struct RecordCoding<Device>;
template struct RecordCoding<std::vector<Device>>;

bool Device::operator==(const Device&) const noexcept = default;

}  // namespace orvane
