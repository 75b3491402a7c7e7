// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

namespace orvane {
namespace {

using UniqueFunctionDeathTest = DeathTest;

int alive = 0;
int calls = 0;

// A callable that counts its copies and calls, of a size and alignment that make it live in place
// or on the heap.
template <std::size_t size, std::size_t alignment = 1, bool movesSafely = true>
struct Counting {
  Counting() { ++alive; }
  Counting(const Counting&) = delete;
  Counting(Counting&&) noexcept(movesSafely) { ++alive; }
  ~Counting() { --alive; }
  void operator()() {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&content) % alignment, 0U);
    ++calls;
  }
  alignas(alignment) std::array<char, size> content{};
};

template <class T>
class UniqueFunctionTest : public testing::Test {};
using Callables = testing::Types<Counting<1>, Counting<48>, Counting<49>, Counting<500>,
                                 Counting<16, 16>, Counting<64, 64>, Counting<8, 8, false>>;
TYPED_TEST_SUITE(UniqueFunctionTest, Callables);

TYPED_TEST(UniqueFunctionTest, movesCallsAndDestroysItsCallableOnce) {
  alive = calls = 0;
  {
    UniqueFunction<void()> first = TypeParam();
    EXPECT_EQ(alive, 1);
    UniqueFunction<void()> second = std::move(first);
    EXPECT_EQ(alive, 1);
    // Moved from, it does nothing.
    first();  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
    EXPECT_EQ(calls, 0);
    second();
    first = std::move(second);
    first();
    EXPECT_EQ(calls, 2);
    first = TypeParam();
    EXPECT_EQ(alive, 1);
    UniqueFunction<void()>& itself = first;
    first = std::move(itself);
    first();
    EXPECT_EQ(calls, 3);
  }
  EXPECT_EQ(alive, 0);
}

TEST(UniqueFunctionTest, takesMoveOnlyCallablesArgumentsAndResults) {
  UniqueFunction<std::unique_ptr<int>(std::unique_ptr<int>)> add =
      [one = std::make_unique<int>(1)](std::unique_ptr<int> number) {
        *number += *one;
        return number;
      };
  EXPECT_EQ(*add(std::make_unique<int>(41)), 42);
}

TEST(UniqueFunctionTest, isEmptyWhenMadeOfNothing) {
  void (*nowhere)(int) = nullptr;
  UniqueFunction<void(int)> functions[] = {nullptr, {}, nowhere, std::function<void(int)>()};
  for (auto& function : functions) {
    EXPECT_FALSE(function);
    function(1);
  }
}

// A callable whose end comes back to the function that held it.
TEST(UniqueFunctionTest, mayBeReassignedByItsOwnCallablesDestructor) {
  UniqueFunction<void()> function;
  int replacements = 0;
  std::shared_ptr<void> onDestruction(nullptr, [&](void*) { function = [&] { ++replacements; }; });
  function = [kept = std::move(onDestruction)] {};
  function = nullptr;
  function();
  EXPECT_EQ(replacements, 1);
}

TEST_F(UniqueFunctionDeathTest, letsNoExceptionOut) {
  UniqueFunction<void()> throwing = [] { throw std::runtime_error("from a handler"); };
  EXPECT_DEATH(throwing(), "");
}

}  // namespace
}  // namespace orvane
