// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests of vehicles.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Services/Vehicle/VehicleService.h>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <variant>

namespace orvane {

/// Reads one of the current user's vehicles, or all of them.
class VehicleComposer final : public URLComposer {
 public:
  struct OneVehicle {
    std::string vehicleIdentifier;
  };
  struct Vehicles {};
  using RequestType = std::variant<OneVehicle, Vehicles>;

  explicit VehicleComposer(RequestType type, std::set<VehicleService::Expansion> expanded = {},
                           std::optional<std::string> plateText = {})
      : requestType(std::move(type)),
        expansions(std::move(expanded)),
        plate(std::move(plateText)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  RequestType requestType;
  std::set<VehicleService::Expansion> expansions;
  std::optional<std::string> plate;
};

}  // namespace orvane
