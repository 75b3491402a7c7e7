// SPDX-License-Identifier: Apache-2.0
// Tests of what stops the process. They run in a process of their own, so that threads of other
// tests do not matter.
#pragma once

#include <gtest/gtest.h>

namespace orvane {

class DeathTest : public testing::Test {
 protected:
  DeathTest() { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

}  // namespace orvane
