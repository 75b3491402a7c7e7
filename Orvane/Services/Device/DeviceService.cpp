// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Resolvers.h>
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Device/DeviceComposer.h>
#include <Orvane/Services/Device/DeviceService.h>

namespace orvane {

RequestHandle DeviceService::activate(Completion<Device> then) const {
  return post(*this, DeviceComposer(DeviceComposer::Activate{deviceIdentifier()->current()}),
              std::move(then));
}

RequestHandle DeviceService::deactivate(Completion<Device> then) const {
  return post(*this, DeviceComposer(DeviceComposer::Deactivate{deviceIdentifier()->current()}),
              std::move(then));
}

RequestHandle DeviceService::fetch(Completion<Device> then) const {
  return get(*this, DeviceComposer(DeviceComposer::Resource{deviceIdentifier()->current()}),
             std::move(then));
}

}  // namespace orvane
