// SPDX-License-Identifier: Apache-2.0
// The application's entry to the current user's contracts.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Subscription.h>
#include <Orvane/Platform/Export.h>

#include <utility>
#include <vector>

namespace orvane {

/// Fetches the contracts under which the current user takes part.
class ORVANE_EXPORT SubscriptionService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit SubscriptionService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the current user's contracts; none is an empty list.
  Operation<std::vector<Subscription>> fetchContractDates() const;
  RequestHandle fetchContractDates(Completion<std::vector<Subscription>> completionHandler) const;
};

}  // namespace orvane
