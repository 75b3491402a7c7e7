// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Services/Leaderboard/LeaderboardComposer.h>

namespace orvane {
namespace {

using Service = LeaderboardService;

void add(const Service::Filter& filter, QueryItems& items) {
  filter.match(
      [&](const Service::GenderFilter& by) { items.add("gender", by.gender.wireText()); },
      [&](const Service::AgeFilter& by) {
        items.add("age_lower", by.years.lowerBound()).add("age_upper", by.years.upperBound());
      },
      [&](const Service::PostalCodeFilter& by) { items.add("location", by.postalCode); });
}

// The queries for the user, by the kind of request.
struct QueryOf {
  std::string_view userID;

  std::optional<std::string> operator()(const LeaderboardComposer::Request& request) const {
    const std::optional<std::string> day = localDayText(request.dateComponents);
    if (!day) return std::nullopt;
    QueryItems items;
    items.add("userId", userID).add("localDate", *day);
    for (const Service::Filter& filter : request.filters) add(filter, items);
    return std::move(items).joined();
  }
  std::optional<std::string> operator()(LeaderboardComposer::OptIn) const { return opt("optin"); }
  std::optional<std::string> operator()(LeaderboardComposer::OptOut) const { return opt("optout"); }

  [[nodiscard]] std::optional<std::string> opt(std::string_view action) const {
    QueryItems items;
    items.add("userId", userID).add("action", action);
    return std::move(items).joined();
  }
};

}  // namespace

std::string LeaderboardComposer::path(std::string_view) const { return "leaderboards"; }

std::optional<URL> LeaderboardComposer::url(const OrvaneDetails& details) const {
  const std::optional<URL> resource = details.apiURL.appendingPathComponent(path(details.userID));
  if (!resource) return std::nullopt;
  return resource->settingQuery(std::visit(QueryOf{details.userID}, requestType));
}

}  // namespace orvane
