// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Request.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/Script.h>

#include <atomic>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace orvane {
namespace {

using Step = ScriptedCall<std::string, int>;

std::shared_ptr<Step> makeStep() { return std::make_shared<Step>("step", nullptr); }

TEST(RequestBoxTest, cancelsTheStepUnderWay) {
  RequestBox box;
  const auto first = makeStep();
  const auto second = makeStep();
  box.step([&] { return first; });
  box.step([&] { return second; });
  EXPECT_FALSE(box.cancelled() || box.isFinished());
  EXPECT_TRUE(box.cancel());
  EXPECT_TRUE(second->isCancelled() && !first->isCancelled());
  EXPECT_TRUE(box.cancelled() && box.isFinished());
  EXPECT_TRUE(box.cancel());
}

TEST(RequestBoxTest, dropsTheRequestOfAStepThatFinishedBeforeItReturned) {
  RequestBox box;
  const auto first = makeStep();
  const auto second = makeStep();
  box.step([&] {
    box.step([&] { return second; });
    return first;
  });
  EXPECT_EQ(first.use_count(), 1);
  box.cancel();
  EXPECT_TRUE(second->isCancelled() && !first->isCancelled());
}

TEST(RequestBoxTest, cancelsAStepWhoseRequestComesAfterTheCancelling) {
  RequestBox box;
  const auto step = makeStep();
  box.step([&] {
    box.cancel();
    return step;
  });
  EXPECT_TRUE(step->isCancelled());
  const auto later = makeStep();
  box.step([&] { return later; });
  EXPECT_TRUE(later->isCancelled());
  box.step([] { return nullptr; });
}

TEST(RequestBoxTest, callsAHandlerOnceAndLetsGoOfIt) {
  RequestBox box;
  const auto step = makeStep();
  box.step([&] { return step; });
  const auto kept = std::make_shared<int>(0);
  UniqueFunction<void(int)> handler = [&box, kept](int value) {
    EXPECT_FALSE(box.isFinished());
    EXPECT_FALSE(box.cancel());
    *kept += value;
  };
  box.complete(handler, 1);
  EXPECT_EQ(step.use_count(), 1);
  EXPECT_TRUE(box.isFinished() && !box.cancelled() && !box.cancel() && !box.claim());
  EXPECT_EQ(kept.use_count(), 1);
  UniqueFunction<void(int)> second = [kept](int value) { *kept += value; };
  box.complete(second, 1);
  EXPECT_EQ(*kept, 1);

  RequestBox cancelled;
  cancelled.cancel();
  cancelled.complete(second, 1);
  EXPECT_EQ(*kept, 1);
}

TEST(RequestBoxTest, isWonByExactlyOneOfClaimAndCancel) {
  for (int round = 0; round < 2000; ++round) {
    RequestBox box;
    const auto step = makeStep();
    std::latch start(3);
    bool claimed = false;
    bool cancelled = false;
    std::thread claiming([&] {
      start.arrive_and_wait();
      claimed = box.claim();
    });
    std::thread cancelling([&] {
      start.arrive_and_wait();
      cancelled = box.cancel();
    });
    start.arrive_and_wait();
    box.step([&] { return step; });
    claiming.join();
    cancelling.join();
    ASSERT_NE(claimed, cancelled);
    ASSERT_EQ(step->isCancelled(), cancelled);
  }
}

TEST(ScopedRequestTest, cancelsAtTheEndOfItsScopeUnlessReleased) {
  const auto first = makeStep();
  const auto second = makeStep();
  const auto third = makeStep();
  {
    ScopedRequest scoped = RequestHandle(first);
    scoped = ScopedRequest(RequestHandle(second));
    EXPECT_TRUE(first->isCancelled() && !second->isCancelled());
    ScopedRequest moved = std::move(scoped);
    ScopedRequest released = RequestHandle(third);
    EXPECT_EQ(released.release(), third);
    EXPECT_FALSE(second->isCancelled());
    EXPECT_EQ(moved.get(), second);
  }
  EXPECT_TRUE(second->isCancelled() && !third->isCancelled());
  EXPECT_TRUE(EmptyRequest().isFinished() && !EmptyRequest().cancel());
}

}  // namespace
}  // namespace orvane
