// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Regex.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

TEST(RegexTest, findsAPatternAnywhere) {
  struct Row {
    std::string_view pattern;
    std::string_view text;
    bool isFound;
  };
  const Row rows[] = {
      {"b+", "abbc", true}, {"^b+$", "abbc", false}, {"", "abc", true},
      {"x", "", false},     {"ü", "Grüezi", true},   {R"(\d{2})", "1a2b34", true},
  };
  for (const Row& row : rows) EXPECT_EQ(isFound(row.pattern, row.text), row.isFound) << row.pattern;
}

TEST(RegexTest, tellsNamedGroupsOfTheFirstMatch) {
  constexpr std::string_view pattern = R"((?<key>\p{L}+)=(?<value>\d*))";
  using Groups = std::optional<std::vector<std::string>>;
  EXPECT_EQ(findGroups(pattern, "?größe=17&b=2", {"value", "key"}), Groups({"17", "größe"}));
  EXPECT_EQ(findGroups(pattern, "a=", {"key", "value"}), Groups({"a", ""}));
  EXPECT_EQ(findGroups(pattern, "none", {"key"}), std::nullopt);
}

class RegexDeathTest : public DeathTest {};

TEST_F(RegexDeathTest, stopsForAFaultyPattern) {
  EXPECT_DEATH(static_cast<void>(isFound("(", "text")), "a regular expression is malformed");
  EXPECT_DEATH(static_cast<void>(findGroups("(?<a>t)", "text", {"b"})),
               "a regular expression has no group of that name");
}

}  // namespace
}  // namespace orvane
