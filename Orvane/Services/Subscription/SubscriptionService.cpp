// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Subscription/SubscriptionComposer.h>
#include <Orvane/Services/Subscription/SubscriptionService.h>

namespace orvane {

Operation<std::vector<Subscription>> SubscriptionService::fetchContractDates() const {
  return get<std::vector<Subscription>>(*this, SubscriptionComposer());
}

RequestHandle SubscriptionService::fetchContractDates(
    Completion<std::vector<Subscription>> completionHandler) const {
  return fetchContractDates().start(std::move(completionHandler));
}

}  // namespace orvane
