// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/All.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Task.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/FixedResolvers.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using Text = Result<std::string>;

Operation<std::string> asking(FixedTokenResolver& tokens) {
  return Operation<std::string>([&tokens](Completion<std::string> then) {
    return tokens.resolve({}, std::nullopt, std::move(then));
  });
}

Task<std::string> greeting(const Operation<std::string>& name) {
  const Text result = co_await name;
  co_return result ? "Hello " + *result : result.errorOr(NetworkError::unknown).message();
}

Task<> failing(const Operation<std::string>& name) {
  std::ignore = co_await name;
  throw std::runtime_error("thrown");
}

Task<int> failed(const Operation<std::string>& name) {
  try {
    co_await failing(name);
  } catch (const std::runtime_error&) {
    co_return 1;
  }
  co_return 0;
}

class TaskTest : public testing::TestWithParam<AnswerTime> {
 protected:
  FixedTokenResolver tokens{{std::string("Ann"), GetParam()}};
  const Operation<std::string> name = asking(tokens);
};

INSTANTIATE_TEST_SUITE_P(Answers, TaskTest,
                         testing::Values(AnswerTime::atOnce, AnswerTime::onMainQueue,
                                         AnswerTime::onAnotherThread));

TEST_P(TaskTest, answersItsValueOrThrowsWhatItLetsOut) {
  EXPECT_EQ(MainQueue::main().runUntil(greeting(name)), "Hello Ann");
  EXPECT_EQ(MainQueue::main().runUntil(failed(name)), 1);
  EXPECT_THROW(MainQueue::main().runUntil(failing(name)), std::runtime_error);
}

TEST_P(TaskTest, isAwaitedByOthers) {
  const auto nested = [](const Operation<std::string>& of) -> Task<std::unique_ptr<std::string>> {
    auto text = std::make_unique<std::string>();
    for (int i = 0; i < 3; ++i) *text += co_await greeting(of) + ",";
    co_return text;
  };
  EXPECT_EQ(*MainQueue::main().runUntil(nested(name)), "Hello Ann,Hello Ann,Hello Ann,");
}

TEST_P(TaskTest, isRunByWhoeverDrainsTheQueueElsewhere) {
  MainQueue::main().drain();
  std::thread waiting([&] {
    EXPECT_EQ(MainQueue::main().runUntil(greeting(name)), "Hello Ann");
    MainQueue::main().async([] { MainQueue::main().stop(); });
  });
  MainQueue::main().run();
  waiting.join();
}

// Whoever cancels a task lets it go on to its end, and so lets go of what it holds.
TEST(TaskCancellationTest, endsEveryWaitingWithCancelled) {
  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  std::vector<std::string> seen;
  const auto outer = [&]() -> Task<int> {
    seen.push_back(co_await greeting(asking(tokens)));
    seen.push_back((co_await asking(tokens)).error()->message());
    co_return 1;
  };
  bool isTold = false;
  const RequestHandle request = outer().start([&](int) { isTold = true; });
  EXPECT_TRUE(seen.empty());
  EXPECT_TRUE(request->cancel());
  EXPECT_TRUE(request->isFinished());
  MainQueue::main().drain();
  EXPECT_EQ(seen, std::vector<std::string>(2, Cancelled{}.message()));
  EXPECT_EQ(tokens.calls().size(), 1U) << "nothing is sent any more";
  EXPECT_TRUE(tokens.calls().front()->isCancelled());
  EXPECT_FALSE(isTold);
}

TEST(TaskCancellationTest, aTaskThatNeverRunsLetsGoOfItsArguments) {
  const auto kept = std::make_shared<int>(1);
  const auto keeping = [](std::shared_ptr<int> value) -> Task<int> { co_return *value; };
  { const auto task = keeping(kept); }
  EXPECT_EQ(kept.use_count(), 1);
  auto begun = keeping(kept);
  const auto moved = std::move(begun);
  EXPECT_EQ(kept.use_count(), 2);
}

using TaskDeathTest = DeathTest;

TEST_F(TaskDeathTest, aTaskCanBeRunOnce) {
  const auto one = []() -> Task<int> { co_return 1; };
  auto task = one();
  EXPECT_EQ(MainQueue::main().runUntil(std::move(task)), 1);
  // NOLINTNEXTLINE(bugprone-use-after-move): that is the fault
  EXPECT_DEATH(std::move(task).start(), "can be run only once: file .*TaskTest.cpp");
  const auto awaiting = [](Task<int> begun) -> Task<int> { co_return co_await std::move(begun); };
  // NOLINTNEXTLINE(bugprone-use-after-move): the same
  EXPECT_DEATH(MainQueue::main().runUntil(awaiting(std::move(task))),
               "can be run only once: file .*TaskTest.cpp, line " + std::to_string(__LINE__ - 3));
}

template <class Awaited>
concept Awaitable = requires(Awaited awaited) {
  awaited.operator co_await();
};
static_assert(!Awaitable<Task<int>&>, "a second waiting is refused by the compiler");

// Three threads at one operation that a task awaits: who answers, who asks it to stop, and who
// gives the task up. Each of a round's tasks goes on once, to its end, and destroys itself there.
// As many rounds as there is time for: threads that yield to one another wait for every other
// process, too, where the machine is busy.
TEST(TaskRaceTest, everyTaskGoesOnOnce) {
  constexpr int fewestRounds = 200;
  constexpr int rounds = 100'000;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  std::atomic<int> ended = 0;
  std::atomic<int> told = 0;
  const auto counting = [&](Operation<std::string> operation) -> Task<int> {
    std::ignore = co_await operation;
    std::ignore = co_await operation;
    ended.fetch_add(1);
    co_return 1;
  };
  std::atomic<int> round = 0;
  std::atomic<bool> isOver = false;
  std::shared_ptr<ScriptedCall<TokenQuestion, std::string>> call;
  std::stop_source stop;
  RequestHandle request;
  std::atomic<int> ready = 0;
  const auto inEachRound = [&](auto act) {
    return std::thread([&, act] {
      for (int mine = 1;; ++mine) {
        while (round.load() < mine && !isOver.load()) std::this_thread::yield();
        if (isOver.load()) return;
        act();
        ready.fetch_add(1);
      }
    });
  };
  std::thread threads[] = {inEachRound([&] { call->answer(std::string("Ann")); }),
                           inEachRound([&] { stop.request_stop(); }),
                           inEachRound([&] { request->cancel(); })};
  const auto isDone = [&](int number) {
    const bool isLate = number > fewestRounds && std::chrono::steady_clock::now() > end;
    return number > rounds || isLate;
  };
  int number = 1;
  for (; !isDone(number); ++number) {
    FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
    stop = std::stop_source();
    request = counting(asking(tokens).cancelledBy(stop.get_token())).start([&](int) {
      told.fetch_add(1);
    });
    call = tokens.calls().front();
    ready = 0;
    round = number;
    while (ready.load() < 3) std::this_thread::yield();
    // The second waiting of a task that was answered is ended by the one or by the other.
    stop.request_stop();
    MainQueue::main().drain();
    EXPECT_EQ(ended.load(), number);
    if (HasFailure()) break;
  }
  isOver = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_LT(told.load(), number);
}

}  // namespace
}  // namespace orvane
