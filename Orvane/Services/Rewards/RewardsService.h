// SPDX-License-Identifier: Apache-2.0
// The application's entry to the programme's rewards.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/RewardToken.h>
#include <Orvane/Platform/Export.h>

#include <utility>

namespace orvane {

/// Fetches the token with which an application opens the rewards.
class ORVANE_EXPORT RewardsService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit RewardsService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches a token for whom the request is authenticated.
  Operation<RewardToken> fetchToken() const;
  RequestHandle fetchToken(Completion<RewardToken> then) const;
};

}  // namespace orvane
