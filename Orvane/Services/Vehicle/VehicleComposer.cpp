// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Vehicle/VehicleComposer.h>

namespace orvane {

// The list keeps the slash before the identifier that it lacks.
std::string VehicleComposer::path(std::string_view userID) const {
  const auto* one = std::get_if<OneVehicle>(&requestType);
  return concatenated({"users/", userID, "/vehicles/",
                       one != nullptr ? std::string_view(one->vehicleIdentifier) : ""});
}

std::optional<std::string> VehicleComposer::query() const {
  QueryItems items;
  if (!expansions.empty()) items.add("expand", commaSeparated(expansions));
  if (plate) items.add("plate", *plate);
  return std::move(items).joined();
}

}  // namespace orvane
