// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/MainQueue.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Testing/Script.h>

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using MainQueueDeathTest = DeathTest;
using Call = ScriptedCall<std::string, int>;
using testing::ElementsAre;
using namespace std::chrono_literals;

TEST(MainQueueTest, runsJobsInOrderAndNeverInsideTheCall) {
  MainQueue queue;
  std::vector<int> order;
  queue.async([&] {
    order.push_back(1);
    queue.async([&] { order.push_back(3); });
  });
  queue.async([&] { order.push_back(2); });
  queue.async(nullptr);
  EXPECT_TRUE(order.empty());
  EXPECT_EQ(queue.drain(), 4U);
  EXPECT_EQ(queue.drain(), 0U);
  EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST(MainQueueTest, aJobThatDrainsRunsTheJobsBehindIt) {
  MainQueue queue;
  std::vector<int> order;
  queue.async([&] {
    EXPECT_EQ(queue.drain(), 1U);
    order.push_back(2);
  });
  queue.async([&] { order.push_back(1); });
  EXPECT_EQ(queue.drain(), 1U);
  EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST(MainQueueTest, runEndsWithStopFromAJobOrAnotherThread) {
  MainQueue queue;
  queue.stop();
  queue.run();  // the stop before it counts

  std::vector<int> order;
  queue.async([&] { queue.stop(); });
  queue.async([&] { order.push_back(1); });
  queue.run();
  EXPECT_TRUE(order.empty());

  std::thread stopping([&] {
    queue.async([&] { order.push_back(2); });
    queue.async([&] { queue.stop(); });
  });
  queue.run();
  stopping.join();
  EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST(MainQueueTest, keepsTheOrderOfEachOfManyThreads) {
  MainQueue queue;
  constexpr int count = 2000;
  std::vector<int> last(4, -1);
  std::atomic<int> left{4};
  std::vector<std::thread> threads;
  for (int& mine : last) {
    threads.emplace_back([&] {
      for (int i = 0; i < count; ++i) {
        queue.async([&mine, i] { EXPECT_EQ(std::exchange(mine, i), i - 1); });
      }
      queue.async([&] {
        if (--left == 0) queue.stop();
      });
    });
  }
  queue.run();
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(last, ElementsAre(count - 1, count - 1, count - 1, count - 1));
}

TEST(MainQueueTest, runUntilEndsWithItsRequest) {
  MainQueue& queue = MainQueue::main();
  queue.runUntil(nullptr);
  queue.runUntil(std::make_shared<EmptyRequest>());

  const auto call = std::make_shared<Call>("never answered", nullptr);
  std::vector<int> order;
  queue.async([&] { order.push_back(1); });
  EXPECT_FALSE(queue.runUntil(call, 1ms));
  EXPECT_FALSE(queue.runUntil(call, 0ms));
  queue.async([&] {
    order.push_back(2);
    call->cancel();
  });
  queue.async([&] { order.push_back(3); });
  EXPECT_TRUE(queue.runUntil(call, std::chrono::milliseconds::max()));
  EXPECT_THAT(order, ElementsAre(1, 2));
  queue.drain();
}

// A missed wake-up would leave the queue asleep for ever.
TEST(MainQueueTest, runUntilWakesForARequestThatFinishesElsewhere) {
  for (int round = 0; round < 3000; ++round) {
    std::atomic<bool> handled{false};
    const auto call = std::make_shared<Call>("", [&](const auto&) { handled = true; });
    runOnAnotherThread([&] {
      if (round % 3 == 0) {
        call->cancel();
      } else {
        call->answer(round);
      }
    });
    if (round % 2 == 0) {
      MainQueue::main().runUntil(call);
    } else {
      MainQueue::main().wait(call);
    }
    ASSERT_EQ(handled, round % 3 != 0);
    waitForAnotherThread();
  }
}

TEST(MainQueueTest, anotherThreadWaitsWithoutDraining) {
  MainQueue& queue = MainQueue::main();
  queue.drain();
  EXPECT_TRUE(queue.isDrainedByThisThread());
  const auto call = std::make_shared<Call>("", nullptr);
  std::thread waiting([&] {
    EXPECT_FALSE(queue.isDrainedByThisThread());
    queue.wait(call);
    queue.async([&] { queue.stop(); });
  });
  queue.async([&] { call->answer(1); });
  queue.run();
  waiting.join();
}

TEST(MainQueueTest, handsItsJobsToAnApplicationsLoop) {
  MainQueue queue;
  std::vector<MainQueue::Job> loop;
  std::vector<int> order;
  queue.async([&] { order.push_back(1); });
  queue.async([&] { order.push_back(2); });
  queue.forward([&](MainQueue::Job job) { loop.push_back(std::move(job)); });
  EXPECT_TRUE(queue.isDrainedByThisThread());
  std::thread([&] { queue.async([&] { order.push_back(3); }); }).join();
  EXPECT_TRUE(order.empty());
  for (auto& job : loop) job();
  EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(MainQueueDeathTest, aForwardedQueueIsDrainedByItsLoopAlone) {
  MainQueue queue;
  queue.forward([](const MainQueue::Job&) {});
  EXPECT_DEATH(queue.drain(), "Fatal error: the main queue is the application's loop's");
  EXPECT_DEATH(queue.run(), "Fatal error: the main queue is the application's loop's");
  EXPECT_DEATH(queue.forward(nullptr), "Fatal error: the main queue has been handed to a loop");
}

TEST(MainQueueTest, onMainBringsAnAnswerToTheQueue) {
  const Outcome<int> outcome;
  auto handler = onMain<int>(outcome.handler());
  std::thread([&] { handler(7); }).join();
  EXPECT_EQ(outcome.count(), 0U);
  MainQueue::main().drain();
  EXPECT_EQ(outcome.result().value(), 7);
  EXPECT_EQ(outcome.thread(), std::this_thread::get_id());
}

std::chrono::steady_clock::time_point queueTime;
std::chrono::steady_clock::time_point readQueueTime() { return queueTime; }

TEST(MainQueueTest, warnsOnceWhenNobodyDrainsIt) {
  const RecordingLogger logger;
  MainQueue queue(&readQueueTime);
  const auto post = [&] { queue.async([] {}); };
  EXPECT_EQ(queue.warnWhenStalled(), 0ms);
  post();
  queueTime += 4s;
  post();
  EXPECT_EQ(queue.warnWhenStalled(), 1s);
  EXPECT_TRUE(logger.lines().empty());
  queueTime += 2s;
  post();
  post();
  EXPECT_EQ(queue.warnWhenStalled(), 0ms);
  ASSERT_EQ(logger.lines().size(), 1U);
  EXPECT_EQ(logger.lines()[0].level, Logger::Level::warning);
  EXPECT_THAT(logger.lines()[0].message, testing::HasSubstr("Nobody drains the main queue"));

  queue.drain();
  queueTime += 60s;
  post();
  EXPECT_EQ(logger.lines().size(), 1U);
  queueTime += 6s;
  post();
  EXPECT_EQ(logger.lines().size(), 2U);
}

}  // namespace
}  // namespace orvane
