// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Printing.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/RewardToken.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

TEST(RewardTokenTest, isATextAsAWhole) {
  struct Row {
    std::string_view json;
    std::string token;
  };
  const Row rows[] = {{R"("eyJhbGciOiJIUzI1NiJ9.e30.c2ln")", "eyJhbGciOiJIUzI1NiJ9.e30.c2ln"},
                      {R"("")", ""},
                      {R"("a\"b\\c")", R"(a"b\c)"}};
  for (const Row& row : rows) {
    EXPECT_EQ(decode<RewardToken>(row.json), RewardToken{row.token});
    EXPECT_EQ(encode(RewardToken{row.token}), std::string(row.json));
  }
  EXPECT_EQ(decode<RewardToken>(" \"\\u0061\"\n"), RewardToken{"a"});
  EXPECT_EQ(encode(RewardToken{}), std::string("null"));
  EXPECT_EQ(encode(std::vector<RewardToken>{{"a"}, {}}), std::string(R"(["a",null])"));

  for (const std::string_view refused :
       {R"({"token":"a"})", "7", "null", "true", R"(["a"])", "a", "'a'", "", R"("a" "b")"}) {
    EXPECT_FALSE(decode<RewardToken>(refused)) << refused;
  }
  EXPECT_FALSE(encode(RewardToken{"\xFF"}));
}

}  // namespace
}  // namespace orvane
