// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Printing.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/Content.h>

#include <gtest/gtest.h>

#include <string>

namespace orvane {
namespace {

TEST(ContentTest, isReadAndWrittenWhole) {
  EXPECT_EQ(decode<Content>(R"({"body":"a \"b\""})"), Content{"a \"b\""});
  EXPECT_EQ(decode<Content>(R"({"body":null,"title":"x"})"), Content{});
  EXPECT_FALSE(decode<Content>(R"({"body":1})").value());
  EXPECT_EQ(encode(Content{"a \"b\""}), std::string(R"({"body":"a \"b\""})"));
}

}  // namespace
}  // namespace orvane
