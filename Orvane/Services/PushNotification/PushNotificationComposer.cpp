// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/PushNotification/PushNotificationComposer.h>

namespace orvane {

std::string PushNotificationComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/devices/", deviceIdentifier});
}

std::optional<std::string> PushNotificationComposer::query() const {
  QueryItems items;
  items.add("deviceToken", deviceToken).add("appId", apnsIOSAppID);
  return std::move(items).joined();
}

}  // namespace orvane
