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

Operation<Leaderboard> LeaderboardService::fetch(DateComponents dateComponents,
                                                 SetOf<Filter> filters) const {
  return get<Leaderboard>(*this, LeaderboardComposer(LeaderboardComposer::Request{
                                     dateComponents, std::move(filters).elements()}));
}

RequestHandle LeaderboardService::fetch(DateComponents dateComponents, std::set<Filter> filters,
                                        Completion<Leaderboard> then) const {
  return fetch(dateComponents, std::move(filters)).start(std::move(then));
}

Operation<Unit> LeaderboardService::optIn() const {
  return post<Unit>(*this, LeaderboardComposer(LeaderboardComposer::OptIn{}));
}

RequestHandle LeaderboardService::optIn(Completion<Unit> then) const {
  return optIn().start(std::move(then));
}

Operation<Unit> LeaderboardService::optOut() const {
  return post<Unit>(*this, LeaderboardComposer(LeaderboardComposer::OptOut{}));
}

RequestHandle LeaderboardService::optOut(Completion<Unit> then) const {
  return optOut().start(std::move(then));
}

}  // namespace orvane
