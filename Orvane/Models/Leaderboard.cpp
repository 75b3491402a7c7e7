// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Leaderboard.h>

#include <charconv>
#include <string_view>
#include <system_error>

namespace orvane {
namespace {

// An integer as a text of digits, a sign before them or not. Any other text leaves the member
// absent.
struct DecimalText {
  using Wire = std::string_view;

  static std::optional<std::int64_t> fromWire(Wire text) {
    if (text.starts_with('+')) {
      text.remove_prefix(1);
      if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
  }

  static std::string toWire(std::int64_t number) { return std::to_string(number); }
};

constexpr KeyRow entryKeys[] = {
    required<&LeaderboardEntry::id>("leaderboardEntryId"),
    key<&LeaderboardEntry::position, DecimalText>("position"),
    key<&LeaderboardEntry::points, DecimalText>("points"),
    key<&LeaderboardEntry::user>("publicUserResource"),
};

constexpr KeyRow leaderboardKeys[] = {
    key<&Leaderboard::isOptedIn>("optedIn"),
    key<&Leaderboard::isInLeaderboard>("inLeaderboard"),
    key<&Leaderboard::isInTop>("inTop"),
    key<&Leaderboard::entries>("leaderboardEntries"),
};

}  // namespace

KeyTables keysOf(RecordTag<LeaderboardEntry>) { return entryKeys; }
KeyTables keysOf(RecordTag<Leaderboard>) { return leaderboardKeys; }

template struct RecordCoding<LeaderboardEntry>;
template struct RecordCoding<std::vector<LeaderboardEntry>>;
template struct RecordCoding<Leaderboard>;
template struct RecordCoding<std::vector<Leaderboard>>;

bool LeaderboardEntry::operator==(const LeaderboardEntry&) const noexcept = default;
bool Leaderboard::operator==(const Leaderboard&) const noexcept = default;

}  // namespace orvane
