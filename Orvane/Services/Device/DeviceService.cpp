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

RequestHandle DeviceService::activate(Completion<Device> then) const {
  return activate().start(std::move(then));
}

Operation<Device> DeviceService::deactivate() const {
  return post<Device>(*this,
                      DeviceComposer(DeviceComposer::Deactivate{deviceIdentifier()->current()}));
}

RequestHandle DeviceService::deactivate(Completion<Device> then) const {
  return deactivate().start(std::move(then));
}

Operation<Device> DeviceService::fetch() const {
  return get<Device>(*this,
                     DeviceComposer(DeviceComposer::Resource{deviceIdentifier()->current()}));
}

RequestHandle DeviceService::fetch(Completion<Device> then) const {
  return fetch().start(std::move(then));
}

}  // namespace orvane
