// SPDX-License-Identifier: Apache-2.0
// Versions, identities, stores and the log.
#include <Orvane/Common/Identity.h>
#include <Orvane/Common/Logger.h>
#include <Orvane/Common/Version.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/MemoryStores.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Version.h>

#include <gmock/gmock.h>

#include <string_view>
#include <thread>
#include <unordered_set>
#include <vector>

namespace orvane {
namespace {

using namespace std::chrono_literals;

TEST(VersionTest, comparesComponentByComponent) {
  // Each is strictly higher than all before it, whatever its form.
  const std::vector<std::vector<std::string_view>> ascending = {
      {"", "0", "0.0", "00", ".", "x", "v9", "-1"},
      {"0.0.1", "0.00.01", "..1"},
      {"0.9"},
      {"1", "1.0", "01.0.0", "1x", "1-beta", "1.x"},
      {"1.0.0.1"},
      {"1.2"},
      {"1.9"},
      {"1.10", "1.010"},
      {"1.18446744073709551616"},
      {"1.18446744073709551617"},
      {"2"},
      {"99999999999999999999999999999999"},
      {"100000000000000000000000000000000"},
  };
  for (std::size_t high = 0; high < ascending.size(); ++high) {
    for (std::size_t low = 0; low < ascending.size(); ++low) {
      for (const auto version : ascending[high]) {
        for (const auto other : ascending[low]) {
          EXPECT_EQ(isVersion(version, other), high > low) << version << " > " << other;
        }
      }
    }
  }
}

TEST(VersionTest, theLibraryIsThatOfItsHeaders) {
  EXPECT_EQ(libraryVersion(), headerVersion);
  // Ordered as the texts are.
  EXPECT_TRUE(ORVANE_MAKE_VERSION(0, 2, 0) > ORVANE_MAKE_VERSION(0, 1, 999));
  EXPECT_TRUE(isVersion(libraryVersionText(), "0.0.999"));
}

TEST(IdentityTest, differsByBothMembers) {
  const std::vector<Identity> identities = {
      {"a", {}}, {"a", ""}, {"a", "b"}, {"b", "a"}, {"", "a"}};
  const std::unordered_set<Identity> set(identities.begin(), identities.end());
  EXPECT_EQ(set.size(), identities.size());
  EXPECT_TRUE(set.contains(Identity{"a", "b"}) && !set.contains(Identity{"b", "b"}));
}

TEST(TimeMonitoringStoreTest, forgetsWhatTheMonitorCallsExpired) {
  const auto monitor = std::make_shared<MovableTimeMonitor>(100s);
  TimeMonitoringUserIDStore store(monitor);
  const Identity ann{"key", "ann"};
  const Identity bob{"key", "bob"};
  EXPECT_EQ(store.get(ann), std::nullopt);
  store.set(ann, "1");
  monitor->advance(60s);
  store.set(bob, "2");
  EXPECT_EQ(store.get(ann), "1");
  monitor->advance(40s);
  EXPECT_EQ(store.get(ann), std::nullopt);
  EXPECT_EQ(store.get(bob), "2");
  store.set(ann, "3");  // counts from now on
  monitor->advance(99s);
  EXPECT_EQ(store.get(ann), "3");
  store.set(ann, std::nullopt);
  EXPECT_EQ(store.get(ann), std::nullopt);
  store.set(bob, "4");
  monitor->expireAll();
  EXPECT_EQ(store.get(bob), std::nullopt);
}

TEST(MemoryStoreTest, servesManyThreads) {
  MemoryTimeOffsetStore store;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&store, own = Identity{std::to_string(thread), {}}] {
      for (int i = 0; i < 500; ++i) {
        store.set(own, i);
        EXPECT_EQ(store.get(own), i);
        store.set(Identity{"shared", {}}, i % 2 == 0 ? std::optional<double>(i) : std::nullopt);
        (void)store.get(Identity{"shared", {}});
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(LogTest, tellsLevelTextAndPlace) {
  const RecordingLogger outer;
  {
    const RecordingLogger inner;
    log.w("warning");
    const auto line = static_cast<std::uint_least32_t>(__LINE__ - 1);
    log.e("error", "Container+Network", "function", 30);
    log.i("information");
    const auto lines = inner.lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].level, Logger::Level::warning);
    EXPECT_EQ(lines[0].message, "warning");
    EXPECT_THAT(lines[0].file, testing::EndsWith("tests/unit/Common/SmallTypesTest.cpp"));
    EXPECT_EQ(lines[0].function, "TestBody");
    EXPECT_EQ(lines[0].line, line);
    EXPECT_EQ(lines[1].level, Logger::Level::error);
    EXPECT_EQ(lines[1].file + '|' + lines[1].function, "Container+Network|function");
    EXPECT_EQ(lines[1].line, 30U);
    EXPECT_EQ(lines[2].level, Logger::Level::information);
  }
  log.i("put back");
  EXPECT_EQ(outer.lines().size(), 1U);
}

}  // namespace
}  // namespace orvane
