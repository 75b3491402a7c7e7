// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Rewards/RewardsComposer.h>
#include <Orvane/Services/Rewards/RewardsService.h>

namespace orvane {

RequestHandle RewardsService::fetchToken(Completion<RewardToken> then) const {
  return get(*this, RewardsComposer(), std::move(then));
}

}  // namespace orvane
