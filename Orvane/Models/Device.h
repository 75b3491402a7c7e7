// SPDX-License-Identifier: Apache-2.0
// The phones on which a person uses the application.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Export.h>

#include <optional>
#include <string>

namespace orvane {

/// A phone that a user has signed in on. Every member is absent where the backend did not tell it.
struct ORVANE_EXPORT Device {
  std::optional<std::string> deviceType{};  ///< What kind of device it is, in the backend's words.
  std::optional<std::string> enrollmentDeviceId{};  ///< Its identifier within the enrolment.
  std::optional<std::string> identifier{};    ///< What `DeviceIdentifier` answers on that phone.
  std::optional<std::string> serialNumber{};  ///< As its maker has it.
  /// The platform's, as `PushNotificationService::setToken` sent it.
  std::optional<std::string> pushNotificationToken{};
  /// Whether push notifications reach the phone.
  std::optional<bool> pushNotificationsAreEnabled{};
  /// Whether it is the phone that records the driving.
  std::optional<bool> dataCollectionIsActive{};

  ORVANE_EXPORT bool operator==(const Device& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<Device> = true;

}  // namespace orvane
