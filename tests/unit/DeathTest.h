// SPDX-License-Identifier: Apache-2.0
// Tests of what stops the process. They run in a process of their own, so that threads of other
// tests do not matter.
#pragma once

#include <Orvane/GoogleTest.h>

namespace orvane {

/// What is to die from here on does so in a process that is started for it; under an emulator,
/// which alone could start one, in a forked process.
inline void dieInAnotherProcess() {
#ifdef ORVANE_TESTS_ARE_EMULATED
  testing::GTEST_FLAG(death_test_style) = "fast";
#else
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
#endif
}

class DeathTest : public testing::Test {
 protected:
  DeathTest() { dieInAnotherProcess(); }
};

}  // namespace orvane
