// SPDX-License-Identifier: Apache-2.0
// How the programme's drivers rank.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Indirect.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// A driver's place on a leaderboard.
struct ORVANE_EXPORT LeaderboardEntry {
  /// Always there in an entry that the backend sent.
  std::optional<std::string> id{};
  /// Absent, too, when the backend sent a text that is no integer of 64 bits; likewise the points.
  std::optional<std::int64_t> position{};
  /// What the place was earned with, in the backend's scale.
  std::optional<std::int64_t> points{};
  /// The public profile of the driver.
  Indirect<User> user{};

  ORVANE_EXPORT bool operator==(const LeaderboardEntry& other) const noexcept;
};

/// The ranking of a day, and how the current user stands to it.
struct ORVANE_EXPORT Leaderboard {
  /// Whether the current user agreed to appear on leaderboards.
  std::optional<bool> isOptedIn{};
  std::optional<bool> isInLeaderboard{};  ///< Whether the current user is on this one.
  /// Whether the current user is among the best, as the backend counts them.
  std::optional<bool> isInTop{};
  std::optional<std::vector<LeaderboardEntry>> entries{};  ///< The places, in the backend's order.

  ORVANE_EXPORT bool operator==(const Leaderboard& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<LeaderboardEntry> = true;
template <>
inline constexpr bool hasCoding<Leaderboard> = true;

}  // namespace orvane
