// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Resolvers.h>
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/PushNotification/PushNotificationComposer.h>
#include <Orvane/Services/PushNotification/PushNotificationService.h>

namespace orvane {
namespace {

// The application as the backend's push gateway knows it: there is one.
constexpr std::int64_t pushAppID = 1;

}  // namespace

Operation<Device> PushNotificationService::setToken(std::string deviceToken) const {
  return post<Device>(*this, PushNotificationComposer(std::move(deviceToken),
                                                      deviceIdentifier()->current(), pushAppID));
}

RequestHandle PushNotificationService::setToken(std::string deviceToken,
                                                Completion<Device> then) const {
  return setToken(std::move(deviceToken)).start(std::move(then));
}

}  // namespace orvane
