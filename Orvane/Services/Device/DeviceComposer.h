// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests of the device resource.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace orvane {

/// Reads or switches one of the current user's devices, or reads them all.
class DeviceComposer final : public URLComposer {
 public:
  struct Activate {
    std::string deviceIdentifier;
  };
  struct Deactivate {
    std::string deviceIdentifier;
  };
  struct Resource {
    std::string deviceIdentifier;
  };
  struct Collection {};
  using RequestType = std::variant<Activate, Deactivate, Resource, Collection>;

  explicit DeviceComposer(RequestType type) : requestType(std::move(type)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  RequestType requestType;
};

}  // namespace orvane
