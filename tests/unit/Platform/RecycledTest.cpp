// SPDX-License-Identifier: Apache-2.0
// Memory that is used again, whichever thread gave it back.
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Recycled.h>

#include <array>
#include <cstddef>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace orvane {
namespace {

TEST(SpareBlocksTest, keepAFewAndGiveEachOnce) {
  std::array<std::array<void*, 4>, SpareBlocks::most + 1> memory{};
  SpareBlocks spares;
  EXPECT_EQ(spares.take(), nullptr);
  std::set<void*> kept;
  for (auto& block : memory) {
    if (spares.keep(&block)) kept.insert(&block);
  }
  EXPECT_EQ(kept.size(), SpareBlocks::most);
  while (void* block = spares.take()) EXPECT_EQ(kept.erase(block), 1U);
  EXPECT_TRUE(kept.empty());
}

TEST(RecycledTest, usesWhatAnotherThreadGaveBack) {
  if (!recyclesMemory) GTEST_SKIP() << "AddressSanitizer has it left alone";
  struct Large {
    std::array<char, 300> bytes{};
  };
  auto first = makeRecycled<Large>();
  const void* place = first.get();
  std::thread([taken = std::move(first)]() mutable { taken.reset(); }).join();
  EXPECT_EQ(makeRecycled<Large>().get(), place);
}

// Each object has its memory for itself, however many threads make and destroy them.
TEST(RecycledTest, sharesNothingBetweenThreads) {
  struct Marked {
    explicit Marked(std::size_t value) { marks.fill(value); }
    std::array<std::size_t, 80> marks{};
  };
  constexpr std::size_t count = 20'000;
  std::vector<std::thread> threads;
  std::array<std::size_t, 4> damaged{};
  for (std::size_t own = 0; own < damaged.size(); ++own) {
    threads.emplace_back([own, &damaged] {
      std::array<std::shared_ptr<Marked>, 8> held;
      for (std::size_t i = 0; i < count; ++i) {
        const std::size_t mark = own * count + i;
        std::shared_ptr<Marked>& place = held.at(i % held.size());
        if (place && place->marks != Marked(mark - held.size()).marks) ++damaged.at(own);
        place = makeRecycled<Marked>(mark);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(damaged, decltype(damaged){});
}

}  // namespace
}  // namespace orvane
