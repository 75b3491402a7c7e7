// SPDX-License-Identifier: Apache-2.0
// The application's entry to the device it runs on, as the backend knows it.
#pragma once

#include <Orvane/Core/DeviceNamingService.h>
#include <Orvane/Models/Device.h>
#include <Orvane/Platform/Export.h>

#include <utility>

namespace orvane {

/// Activates, deactivates and fetches this device. Nothing is remembered between calls.
class ORVANE_EXPORT DeviceService : public DeviceNamingService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit DeviceService(Identity identity) : DeviceNamingService(std::move(identity)) {}

  /// Makes this device the one that collects the current user's driving, and answers it. How many
  /// devices may do so is up to the backend.
  Operation<Device> activate() const;
  RequestHandle activate(Completion<Device> then) const;

  /// Ends that, and answers the device.
  Operation<Device> deactivate() const;
  RequestHandle deactivate(Completion<Device> then) const;

  /// Fetches this device.
  Operation<Device> fetch() const;
  RequestHandle fetch(Completion<Device> then) const;
};

}  // namespace orvane
