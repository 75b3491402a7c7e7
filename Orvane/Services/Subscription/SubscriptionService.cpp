// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Subscription/SubscriptionComposer.h>
#include <Orvane/Services/Subscription/SubscriptionService.h>

namespace orvane {

RequestHandle SubscriptionService::fetchContractDates(
    Completion<std::vector<Subscription>> completionHandler) const {
  return get(*this, SubscriptionComposer(), std::move(completionHandler));
}

}  // namespace orvane
