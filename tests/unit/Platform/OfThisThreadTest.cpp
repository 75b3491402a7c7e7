// SPDX-License-Identifier: Apache-2.0
// What threads keep for themselves, to the end of the process and after it.
#include "tests/unit/DeathTest.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Common/Container.h>
#include <Orvane/Common/Logger.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/OfThisThread.h>

#include <cstdlib>
#include <string>
#include <thread>

namespace orvane {
namespace {

class ProcessEndDeathTest : public DeathTest {};

struct Kept {
  int value = 7;
  ~Kept() { value = -1; }
};

TEST(OfThisThreadTest, everyThreadHasItsOwn) {
  ofThisThread<Kept>().value = 8;
  std::thread([] { EXPECT_EQ(ofThisThread<Kept>().value, 7); }).join();
  EXPECT_EQ(ofThisThread<Kept>().value, 8);
}

TEST_F(ProcessEndDeathTest, whatAThreadKeepsIsMadeAnewAfterItsEnd) {
  const auto end = [] {
    ofThisThread<Kept>().value = 8;
    std::atexit([] {
      if (ofThisThread<Kept>().value != 7) std::_Exit(1);
      ofThisThread<Kept>().value = 9;
      if (ofThisThread<Kept>().value != 9) std::_Exit(2);
    });
    std::exit(0);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
}

// Exit handlers, and destructors of an application's objects, may still use the library, as long as
// they are younger than its first use: simdjson ends what it keeps for itself in the order of exit
// handlers, too.
TEST_F(ProcessEndDeathTest, theLibraryServesExitHandlers) {
  static constexpr auto use = [] {
    constexpr std::string_view text = R"({"userId":"42","dateOfBirth":"1500-02-29"})";
    const auto user = decode<User>(text);
    if (!user || encode(*user.value()).value() != text) std::_Exit(1);
    bool hasRun = false;
    MainQueue::main().async([&] { hasRun = true; });
    MainQueue::main().drain();
    if (!hasRun || Container::common()->find<std::string>()) std::_Exit(2);
    log.i("still here");
  };
  const auto end = [] {
    use();
    std::atexit(use);
    std::exit(0);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace orvane
