// SPDX-License-Identifier: Apache-2.0
// What services are made of whose requests name this device.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Platform/Export.h>

#include <memory>

namespace orvane {

class DeviceIdentifier;

/// The base of the services that work on the device they run on. They ask the `DeviceIdentifier`
/// anew whenever an operation is called.
class ORVANE_EXPORT DeviceNamingService : public SerializableService {
 public:
  /// Who names this device.
  [[nodiscard]] const std::shared_ptr<DeviceIdentifier>& deviceIdentifier() const noexcept {
    return deviceIdentifier_;
  }

 protected:
  /// Takes the collaborators from the container. Nothing registered there for one of them is a
  /// programming fault that stops the process.
  explicit DeviceNamingService(Identity identity);
  DeviceNamingService(const DeviceNamingService&) = default;
  DeviceNamingService(DeviceNamingService&&) = default;
  DeviceNamingService& operator=(const DeviceNamingService&) = default;
  DeviceNamingService& operator=(DeviceNamingService&&) = default;
  ~DeviceNamingService() = default;

 private:
  std::shared_ptr<DeviceIdentifier> deviceIdentifier_;
};

}  // namespace orvane
