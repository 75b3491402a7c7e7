// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Device/DeviceComposer.h>

namespace orvane {

std::string DeviceComposer::path(std::string_view userID) const {
  return std::visit(
      [&](const auto& type) {
        if constexpr (requires { type.deviceIdentifier; }) {
          return concatenated({"users/", userID, "/devices/", type.deviceIdentifier});
        } else {
          return concatenated({"users/", userID, "/devices"});
        }
      },
      requestType);
}

std::optional<std::string> DeviceComposer::query() const {
  if (std::holds_alternative<Activate>(requestType)) return "action=activateLimitOne";
  if (std::holds_alternative<Deactivate>(requestType)) return "action=deactivate";
  return std::nullopt;
}

}  // namespace orvane
