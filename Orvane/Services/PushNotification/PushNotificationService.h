// SPDX-License-Identifier: Apache-2.0
// How push notifications reach this device.
#pragma once

#include <Orvane/Core/DeviceNamingService.h>
#include <Orvane/Models/Device.h>
#include <Orvane/Platform/Export.h>

#include <string>
#include <utility>

namespace orvane {

/// Registers this device for push notifications.
class ORVANE_EXPORT PushNotificationService : public DeviceNamingService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit PushNotificationService(Identity identity) : DeviceNamingService(std::move(identity)) {}

  /// Tells the backend the platform's push token, as a text, and answers the device. The token is
  /// sent as it is, an empty one included.
  Operation<Device> setToken(std::string deviceToken) const;
  RequestHandle setToken(std::string deviceToken, Completion<Device> then) const;
};

}  // namespace orvane
