// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Subscription/SubscriptionComposer.h>

namespace orvane {

std::string SubscriptionComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/subscriptions"});
}

}  // namespace orvane
