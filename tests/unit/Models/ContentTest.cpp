// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Content.h>

namespace orvane {
namespace {

TEST(ContentTest, isReadAndWrittenWhole) {
  expectMirrored(R"({"body":"a \"b\""})", Content{"a \"b\""});
  EXPECT_EQ(decode<Content>(R"({"body":null,"title":"x"})"), Content{});
  EXPECT_EQ(failure<Content>(R"({"body":1})"), "typeMismatch body");
}

}  // namespace
}  // namespace orvane
