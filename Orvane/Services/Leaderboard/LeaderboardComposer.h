// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests of the leaderboard resource.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Services/Leaderboard/LeaderboardService.h>

#include <set>
#include <string>
#include <utility>
#include <variant>

namespace orvane {

/// Reads a leaderboard, or opts in to them or out of them.
///
/// The query names the current user, whom only the details tell, so that the composer forms the URL
/// itself and its separate `query` is always absent.
class LeaderboardComposer final : public URLComposer {
 public:
  struct Request {
    DateComponents dateComponents;
    std::set<LeaderboardService::Filter> filters;
  };
  struct OptIn {};
  struct OptOut {};
  using RequestType = std::variant<Request, OptIn, OptOut>;

  explicit LeaderboardComposer(RequestType type) : requestType(std::move(type)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<URL> url(const OrvaneDetails& details) const override;

  RequestType requestType;
};

}  // namespace orvane
