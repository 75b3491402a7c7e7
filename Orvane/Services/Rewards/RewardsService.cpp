// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Rewards/RewardsComposer.h>
#include <Orvane/Services/Rewards/RewardsService.h>

namespace orvane {

Operation<RewardToken> RewardsService::fetchToken() const {
  return get<RewardToken>(*this, RewardsComposer());
}

RequestHandle RewardsService::fetchToken(Completion<RewardToken> then) const {
  return fetchToken().start(std::move(then));
}

}  // namespace orvane
