// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Printing.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/Leaderboard.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
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
  User ann{.id = "7"};
  ann.gender = User::Gender::female();
  ann.displayName = "Ann";
  const Leaderboard leaderboard{
      .isOptedIn = true,
      .isInLeaderboard = false,
      .isInTop = true,
      .entries = std::vector<Entry>{{.id = "le-1", .position = 1, .points = -250, .user = ann},
                                    {.id = ""}}};
  EXPECT_EQ(decode<Leaderboard>(json), leaderboard);
  EXPECT_EQ(encode(leaderboard), std::string(json));
}

TEST(LeaderboardTest, leavesOutWhatIsAbsent) {
  for (const std::string_view json :
       {"{}", R"({"optedIn":null,"inLeaderboard":null,"inTop":null,"leaderboardEntries":null})"}) {
    EXPECT_EQ(decode<Leaderboard>(json), Leaderboard{});
  }
  EXPECT_EQ(encode(Leaderboard{}), std::string("{}"));
  EXPECT_EQ(decode<Leaderboard>(R"({"leaderboardEntries":[]})"),
            (Leaderboard{.entries = std::vector<Entry>{}}));
  EXPECT_FALSE(decode<Leaderboard>(R"({"optedIn":"true"})"));

  // The identifier alone is written in any case, though null does not read back.
  EXPECT_EQ(encode(Entry{}), std::string(R"({"leaderboardEntryId":null})"));
}

TEST(LeaderboardEntryTest, readsIntegersFromTexts) {
  constexpr auto highest = std::numeric_limits<std::int64_t>::max();
  constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
  struct Row {
    std::string_view text;
    std::optional<std::int64_t> number;
  };
  const Row rows[] = {
      {"7", 7},
      {"0", 0},
      {"-7", -7},
      {"+7", 7},
      {"-0", 0},
      {"+0", 0},
      {"007", 7},
      {"9223372036854775807", highest},
      {"+9223372036854775807", highest},
      {"-9223372036854775808", lowest},
      {"00000000000000000000000000000001", 1},
      {"9223372036854775808", {}},
      {"-9223372036854775809", {}},
      {"99999999999999999999999999", {}},
      {"", {}},
      {"+", {}},
      {"-", {}},
      {"+-7", {}},
      {"-+7", {}},
      {"--7", {}},
      {"++7", {}},
      {" 7", {}},
      {"7 ", {}},
      {"7.0", {}},
      {"7e2", {}},
      {"0x7", {}},
      {"1,000", {}},
      {"seventh", {}},
      {"7th", {}},
      {"٧", {}},
      {"7\\u0000", {}},
  };
  for (const Row& row : rows) {
    for (const bool isPosition : {true, false}) {
      const std::string json = R"({"leaderboardEntryId":"1",")" +
                               std::string(isPosition ? "position" : "points") + R"(":")" +
                               std::string(row.text) + "\"}";
      Entry entry{.id = "1"};
      (isPosition ? entry.position : entry.points) = row.number;
      EXPECT_EQ(decode<Entry>(json), entry) << json;
    }
  }
  EXPECT_EQ(encode(Entry{.id = "1", .position = highest, .points = lowest}),
            std::string(R"({"leaderboardEntryId":"1","position":"9223372036854775807",)"
                        R"("points":"-9223372036854775808"})"));
}

TEST(LeaderboardEntryTest, failsTheWholeLeaderboard) {
  struct Row {
    std::string_view entry;
    DecodingError::Kind kind;
    std::string_view location;
  };
  using enum DecodingError::Kind;
  const Row rows[] = {
      {R"({"position":"1"})", keyNotFound, "leaderboardEntries[1].leaderboardEntryId"},
      {R"({"leaderboardEntryId":null})", valueNotFound, "leaderboardEntries[1].leaderboardEntryId"},
      {R"({"leaderboardEntryId":7})", typeMismatch, "leaderboardEntries[1].leaderboardEntryId"},
      {R"({"leaderboardEntryId":"1","position":7})", typeMismatch,
       "leaderboardEntries[1].position"},
      {R"({"leaderboardEntryId":"1","points":7.5})", typeMismatch, "leaderboardEntries[1].points"},
      {R"({"leaderboardEntryId":"1","points":true})", typeMismatch, "leaderboardEntries[1].points"},
      {R"({"leaderboardEntryId":"1","publicUserResource":"7"})", typeMismatch,
       "leaderboardEntries[1].publicUserResource"},
      {R"({"leaderboardEntryId":"1","publicUserResource":{"driverType":"RACER"}})", dataCorrupted,
       "leaderboardEntries[1].publicUserResource.driverType"},
      {"null", valueNotFound, "leaderboardEntries[1]"},
  };
  for (const Row& row : rows) {
    const std::string json =
        R"({"leaderboardEntries":[{"leaderboardEntryId":"0"},)" + std::string(row.entry) + "]}";
    const auto result = decode<Leaderboard>(json);
    const auto* error = result.error() ? result.error()->as<DecodingError>() : nullptr;
    ASSERT_NE(error, nullptr) << row.entry;
    EXPECT_EQ(error->kind, row.kind) << row.entry;
    EXPECT_EQ(error->location, row.location) << row.entry;
  }
  EXPECT_EQ(decode<Entry>(R"({"leaderboardEntryId":"1","position":null,"points":null,)"
                          R"("publicUserResource":null})"),
            Entry{.id = "1"});
}

}  // namespace
}  // namespace orvane
