// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include "tests/support/Values.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Leaderboard.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

using Entry = LeaderboardEntry;

TEST(LeaderboardTest, isReadAndWrittenWhole) {
  constexpr std::string_view json =
      R"({"optedIn":true,"inLeaderboard":false,"inTop":true,"leaderboardEntries":[)"
      R"({"leaderboardEntryId":"le-1","position":"1","points":"-250",)"
      R"("publicUserResource":{"userId":"7","gender":"female","publicDisplayName":"Ann"}},)"
      R"({"leaderboardEntryId":""}]})";
  const User ann{.id = "7", .gender = User::Gender::female(), .displayName = "Ann"};
  const Leaderboard leaderboard{
      .isOptedIn = true,
      .isInLeaderboard = false,
      .isInTop = true,
      .entries = std::vector<Entry>{{.id = "le-1", .position = 1, .points = -250, .user = ann},
                                    {.id = ""}}};
  expectMirrored(json, leaderboard);
}

TEST(LeaderboardTest, leavesOutWhatIsAbsent) {
  expectMirrored("{}", Leaderboard{});
  expectMirrored(R"({"leaderboardEntries":[]})", Leaderboard{.entries = std::vector<Entry>{}});
  EXPECT_EQ(decode<Leaderboard>(
                R"({"optedIn":null,"inLeaderboard":null,"inTop":null,"leaderboardEntries":null})"),
            Leaderboard{});
  EXPECT_FALSE(decode<Leaderboard>(R"({"optedIn":"true"})"));

  // The identifier alone is written in any case, though null does not read back.
  EXPECT_EQ(encode(Entry{}), std::string(R"({"leaderboardEntryId":null})"));
}

TEST(LeaderboardEntryTest, readsIntegersFromTexts) {
  const auto read = [](const std::string& text) {
    const auto entry = decode<Entry>(R"({"leaderboardEntryId":"1","position":")" + text +
                                     R"(","points":")" + text + "\"}");
    EXPECT_TRUE(entry && entry.value()->position == entry.value()->points) << text;
    return entry ? entry.value()->position : std::nullopt;
  };
  const std::pair<std::string, std::int64_t> rows[] = {
      {"7", 7},
      {"-7", -7},
      {"+7", 7},
      {"-0", 0},
      {"+0", 0},
      {"007", 7},
      {"9223372036854775807", most},
      {"+9223372036854775807", most},
      {"-9223372036854775808", least},
      {"00000000000000000000000000000001", 1},
  };
  for (const auto& [text, number] : rows) EXPECT_EQ(read(text), number) << text;
  for (const std::string text :
       {"9223372036854775808", "-9223372036854775809", "99999999999999999999999999", "", "+", "-",
        "+-7", "-+7", "--7", "++7", " 7", "7 ", "7.0", "7e2", "0x7", "1,000", "7th", "٧",
        "7\\u0000"}) {
    EXPECT_EQ(read(text), std::nullopt) << text;
  }
  EXPECT_EQ(encode(Entry{.id = "1", .position = most, .points = least}),
            std::string(R"({"leaderboardEntryId":"1","position":"9223372036854775807",)"
                        R"("points":"-9223372036854775808"})"));
}

TEST(LeaderboardEntryTest, failsTheWholeLeaderboard) {
  expectNeeds<Entry>(R"({"leaderboardEntryId":"1"})", {"leaderboardEntryId"});
  const std::pair<std::string, std::string> rows[] = {
      {R"("leaderboardEntryId":7)", "typeMismatch leaderboardEntries[1].leaderboardEntryId"},
      {R"("position":7)", "typeMismatch leaderboardEntries[1].position"},
      {R"("points":7.5)", "typeMismatch leaderboardEntries[1].points"},
      {R"("points":true)", "typeMismatch leaderboardEntries[1].points"},
      {R"("publicUserResource":"7")", "typeMismatch leaderboardEntries[1].publicUserResource"},
      {R"("publicUserResource":{"driverType":"RACER"})",
       "dataCorrupted leaderboardEntries[1].publicUserResource.driverType"},
      {R"("position":null,"points":null,"publicUserResource":null)", "none"},
  };
  for (const auto& [members, why] : rows) {
    const std::string json =
        R"({"leaderboardEntries":[{"leaderboardEntryId":"0"},{"leaderboardEntryId":"1",)" +
        members + "}]}";
    EXPECT_EQ(failure<Leaderboard>(json), why);
  }
}

}  // namespace
}  // namespace orvane
