// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Printing.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/EULAStatus.h>

#include <gtest/gtest.h>

#include <string>

namespace orvane {
namespace {

TEST(EULAStatusTest, isReadAndWrittenWhole) {
  EXPECT_EQ(decode<EULAStatus>(R"({"acceptedTerms":true})"), EULAStatus{true});
  EXPECT_EQ(decode<EULAStatus>(R"({"acceptedTerms":null})"), EULAStatus{});
  EXPECT_FALSE(decode<EULAStatus>(R"({"acceptedTerms":"accept"})").value());
  EXPECT_EQ(encode(EULAStatus{false}), std::string(R"({"acceptedTerms":false})"));
  EXPECT_EQ(encode(EULAStatus{}), std::string("{}"));
}

}  // namespace
}  // namespace orvane
