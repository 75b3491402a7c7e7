// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/EULAStatus.h>

namespace orvane {
namespace {

TEST(EULAStatusTest, isReadAndWrittenWhole) {
  expectMirrored(R"({"acceptedTerms":true})", EULAStatus{true});
  expectMirrored("{}", EULAStatus{});
  EXPECT_EQ(failure<EULAStatus>(R"({"acceptedTerms":"accept"})"), "typeMismatch acceptedTerms");
}

}  // namespace
}  // namespace orvane
