// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Discount/DiscountComposer.h>

namespace orvane {

std::string DiscountComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/discount"});
}

std::optional<std::string> DiscountComposer::query() const {
  QueryItems items;
  for (const DiscountService::Expansion expansion : expansions) {
    items.add("expand", wireText(expansion));
  }
  return std::move(items).joined();
}

}  // namespace orvane
