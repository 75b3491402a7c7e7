// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Services/Activation/ActivationComposer.h>

namespace orvane {

std::string ActivationComposer::path(std::string_view) const { return "activation"; }

std::optional<std::string> ActivationComposer::query() const {
  QueryItems items;
  items.add("activationId", activation.activationID)
      .add("activationCode", activation.activationCode)
      .add("email", activation.email);
  if (activation.accountID) items.add("accountId", *activation.accountID);
  items.add("displayName", activation.displayName).add("phoneIdentifier", activation.deviceID);
  return std::move(items).joined();
}

}  // namespace orvane
