// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Services/NamedDriver/NamedDriverComposer.h>

namespace orvane {

std::string NamedDriverComposer::path(std::string_view) const {
  const auto* update = std::get_if<UpdateNamedDriver>(&requestType);
  return update != nullptr ? "namedDrivers/" + std::to_string(update->userId) : "namedDrivers";
}

std::optional<std::string> NamedDriverComposer::query() const {
  QueryItems items;
  if (const auto* update = std::get_if<UpdateNamedDriver>(&requestType)) {
    items.add("namedDriverEmail", update->email).add("namedDriverPhone", update->phone);
  }
  return std::move(items).joined();
}

}  // namespace orvane
