// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/RewardToken.h>

#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

TEST(RewardTokenTest, isATextAsAWhole) {
  expectMirrored(R"("eyJhbGciOiJIUzI1NiJ9.e30.c2ln")",
                 RewardToken{"eyJhbGciOiJIUzI1NiJ9.e30.c2ln"});
  expectMirrored(R"("")", RewardToken{""});
  expectMirrored(R"("a\"b\\c")", RewardToken{R"(a"b\c)"});
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
