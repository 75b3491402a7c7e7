// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request that registers a push token.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Registers the push token of one of the current user's devices.
class PushNotificationComposer final : public URLComposer {
 public:
  PushNotificationComposer(std::string token, std::string device, std::int64_t appID)
      : deviceToken(std::move(token)), deviceIdentifier(std::move(device)), apnsIOSAppID(appID) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  std::string deviceToken;
  std::string deviceIdentifier;
  std::int64_t apnsIOSAppID;
};

}  // namespace orvane
