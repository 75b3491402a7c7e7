// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Resolvers.h>
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Device/DeviceComposer.h>
#include <Orvane/Services/Device/DeviceService.h>

namespace orvane {

Operation<Device> DeviceService::activate() const {
  return post<Device>(*this,
                      DeviceComposer(DeviceComposer::Activate{deviceIdentifier()->current()}));
}

Operation<Device> DeviceService::deactivate() const {
  return post<Device>(*this,
                      DeviceComposer(DeviceComposer::Deactivate{deviceIdentifier()->current()}));
}

Operation<Device> DeviceService::fetch() const {
  return get<Device>(*this,
                     DeviceComposer(DeviceComposer::Resource{deviceIdentifier()->current()}));
}

}  // namespace orvane
