// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Leaderboard/LeaderboardComposer.h>
#include <Orvane/Services/Leaderboard/LeaderboardService.h>

namespace orvane {

std::string_view LeaderboardService::Filter::kind() const noexcept {
  if (is<GenderFilter>()) return "gender";
  if (is<AgeFilter>()) return "age";
  return "postalCode";
}

RequestHandle LeaderboardService::fetch(DateComponents dateComponents, std::set<Filter> filters,
                                        Completion<Leaderboard> then) const {
  return get(*this,
             LeaderboardComposer(LeaderboardComposer::Request{dateComponents, std::move(filters)}),
             std::move(then));
}

RequestHandle LeaderboardService::optIn(Completion<Unit> then) const {
  return post(*this, LeaderboardComposer(LeaderboardComposer::OptIn{}), std::move(then));
}

RequestHandle LeaderboardService::optOut(Completion<Unit> then) const {
  return post(*this, LeaderboardComposer(LeaderboardComposer::OptOut{}), std::move(then));
}

}  // namespace orvane
