// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/All.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Operation.h>
#include <Orvane/Common/Retrying.h>
#include <Orvane/Common/Task.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/FixedResolvers.h>
#include <Orvane/Testing/MemoryStores.h>
#include <Orvane/Testing/MovableTimers.h>
#include <Orvane/Testing/ScriptedRequestManager.h>

#include <atomic>
#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using Text = Result<std::string>;

const Text token = std::string("token");
const Text cancelled = Cancelled{};
const Text timedOut = TimedOut{};

Operation<std::string> asking(FixedTokenResolver& tokens) {
  return Operation<std::string>(
      [&tokens](Completion<std::string> then) {
        return tokens.resolve({}, std::nullopt, std::move(then));
      },
      Effect::reads);
}

// A coroutine of somebody else's, which starts at once; destroyed with its handle.
struct Foreign {
  struct promise_type {
    Foreign get_return_object() {
      return {std::coroutine_handle<promise_type>::from_promise(*this)};
    }
    std::suspend_never initial_suspend() noexcept { return {}; }
    std::suspend_never final_suspend() noexcept { return {}; }
    void return_void() {}
    void unhandled_exception() { std::terminate(); }
  };
  std::coroutine_handle<promise_type> handle;
};

template <class Awaited, class Then>
Foreign awaitInto(Then then, Awaited awaited) {
  then(co_await awaited);
}

class OperationTest : public testing::TestWithParam<AnswerTime> {
 protected:
  void letAnswer() {
    if (GetParam() == AnswerTime::onMainQueue) MainQueue::main().drain();
    if (GetParam() == AnswerTime::onAnotherThread) waitForAnotherThread();
  }

  FixedTokenResolver tokens{{std::string("token"), GetParam()}};
  const Operation<std::string> operation = asking(tokens);
};

INSTANTIATE_TEST_SUITE_P(Answers, OperationTest,
                         testing::Values(AnswerTime::atOnce, AnswerTime::onMainQueue,
                                         AnswerTime::onAnotherThread));

TEST_P(OperationTest, isStartedAnyNumberOfTimesAndInAllWays) {
  EXPECT_TRUE(tokens.calls().empty());
  EXPECT_EQ(operation.wait(), token);
  EXPECT_EQ(operation.wait(1h), token);
  auto first = operation.future();
  auto second = operation.future();
  EXPECT_EQ(second.get(), token);
  EXPECT_EQ(first.get(1h), token);
  const Outcome<std::string> outcome;
  operation.start(outcome.handler());
  letAnswer();
  EXPECT_EQ(outcome.result(), token);
  EXPECT_EQ(tokens.calls().size(), 5U);
}

// The handles of these have finished before the answer has got through the main queue.
TEST_P(OperationTest, isWaitedForUntilItsAnswerIsThere) {
  CachedUserIdentifier users(std::make_shared<ScriptedRequestManager>(ScriptedAnswer<std::string>(
                                 std::string(R"({"userId":"42"})"), GetParam())),
                             std::make_shared<MemoryUserIDStore>());
  const Operation<std::string> lookup([&](Completion<std::string> then) {
    return users.userID({}, *URL::parse("https://h"), {}, std::move(then));
  });
  EXPECT_EQ(lookup.wait(), Text("42")) << "of the backend";
  EXPECT_EQ(lookup.wait(1h), Text("42")) << "of the store";
  EXPECT_EQ(operation.onMain().wait(), token);
}

TEST_P(OperationTest, isWaitedForWhileAnotherThreadDrainsTheQueue) {
  MainQueue::main().drain();
  std::thread waiting([&] {
    EXPECT_EQ(operation.wait(), token);
    EXPECT_EQ(operation.wait(1h), token);
    MainQueue::main().async([] { MainQueue::main().stop(); });
  });
  MainQueue::main().run();
  waiting.join();
}

TEST_P(OperationTest, isAwaitedInAnyCoroutine) {
  for (int round = 0; round < 500; ++round) {
    const Outcome<std::string> outcome;
    awaitInto(outcome.handler(), operation);
    letAnswer();
    ASSERT_EQ(outcome.result(), token);
  }
}

TEST_P(OperationTest, answersThroughWhatHasBeenPutAroundIt) {
  MovableTimers timers;
  std::stop_source stop;
  const auto wrapped = operation.within(1s, timers).cancelledBy(stop.get_token()).onMain();
  EXPECT_EQ(wrapped.wait(), token);
  if (GetParam() == AnswerTime::onAnotherThread) waitForAnotherThread();
  EXPECT_EQ(timers.waiting(), 0U) << "the timer goes with the answer";
  EXPECT_EQ(wrapped.effect(), Effect::reads);

  const auto [one, other] = all(operation, operation.within(0s)).wait();
  EXPECT_EQ(one, token);
  EXPECT_EQ(other, timedOut);
}

// What ends an operation that never answers, and whoever waits for it.
struct Ending {
  const char* name;
  Operation<std::string> (*wrap)(const Operation<std::string>&, MovableTimers&, std::stop_source&);
  void (*end)(MovableTimers&, std::stop_source&, ScriptedCall<TokenQuestion, std::string>&);
  Text outcome;
};

class EndingTest : public testing::TestWithParam<Ending> {
 protected:
  void end() {
    GetParam().end(timers, stop, *tokens.calls().back());
    MainQueue::main().drain();
  }

  MovableTimers timers;
  std::stop_source stop;
  FixedTokenResolver tokens{ScriptedAnswer<std::string>::never()};
  const Operation<std::string> operation = GetParam().wrap(asking(tokens), timers, stop);
};

INSTANTIATE_TEST_SUITE_P(
    Endings, EndingTest,
    testing::Values(
        Ending{"timeIsUp", [](auto& bare, auto& timers, auto&) { return bare.within(1s, timers); },
               [](auto& timers, auto&, auto&) { timers.advance(1s); }, timedOut},
        Ending{"askedToStop",
               [](auto& bare, auto&, auto& stop) { return bare.cancelledBy(stop.get_token()); },
               [](auto&, auto& stop, auto&) { stop.request_stop(); }, cancelled},
        Ending{"askedToStopOnMain",
               [](auto& bare, auto& timers, auto& stop) {
                 return bare.onMain().within(1h, timers).cancelledBy(stop.get_token()).onMain();
               },
               [](auto&, auto& stop, auto&) { stop.request_stop(); }, cancelled},
        Ending{"cancelledBySomebodyElse", [](auto& bare, auto&, auto&) { return bare; },
               [](auto&, auto&, auto& call) { EXPECT_TRUE(call.cancel()); }, cancelled},
        Ending{"cancelledBySomebodyElseBelow",
               [](auto& bare, auto& timers, auto& stop) {
                 return bare.within(1h, timers).cancelledBy(stop.get_token()).onMain();
               },
               [](auto&, auto&, auto& call) { EXPECT_TRUE(call.cancel()); }, cancelled}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_P(EndingTest, letsGoOnWhoAwaits) {
  const Outcome<std::string> outcome;
  awaitInto(outcome.handler(), operation);
  end();
  EXPECT_EQ(outcome.result(), GetParam().outcome);
  EXPECT_TRUE(tokens.calls().back()->isCancelled());
  EXPECT_EQ(timers.waiting(), 0U);
}

TEST_P(EndingTest, letsGoOnWhoWaits) {
  auto future = operation.future();
  end();
  EXPECT_EQ(future.get(), GetParam().outcome);
}

TEST_P(EndingTest, isOneOutcomeAmongSeveral) {
  Result<Outcomes<std::string, std::string>> outcomes;
  all(operation, Operation<std::string>::answering(token)).start([&](auto both) {
    outcomes = std::move(both);
  });
  end();
  const auto [ended, whole] = outcomes;
  EXPECT_EQ(ended, GetParam().outcome);
  EXPECT_EQ(whole, token);
}

TEST_P(EndingTest, comesNotAfterTheHandleHasCancelled) {
  const Outcome<std::string> outcome;
  const RequestHandle request = operation.start(outcome.handler());
  EXPECT_TRUE(request->cancel());
  EXPECT_TRUE(tokens.calls().back()->isCancelled());
  EXPECT_TRUE(request->isFinished());
  end();
  EXPECT_EQ(outcome.count(), 0U);
  EXPECT_FALSE(outcome.isHeld());
}

TEST_P(EndingTest, comesNotAfterTheCoroutineIsGone) {
  const Outcome<std::string> outcome;
  const Foreign coroutine = awaitInto(outcome.handler(), operation);
  coroutine.handle.destroy();
  EXPECT_TRUE(tokens.calls().back()->isCancelled());
  end();
  EXPECT_EQ(outcome.count(), 0U);
  EXPECT_FALSE(outcome.isHeld());
}

// On which thread a coroutine goes on.
TEST(OperationThreadTest, isTheOneOnWhichTheOutcomeComes) {
  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  std::stop_source stop;
  struct Row {
    const char* name;
    Operation<std::string> operation;
    std::function<void()> end;
    bool isOnMain;
  };
  const Row rows[] = {
      {"answer", asking(tokens), [&] { tokens.calls().back()->answer(token); }, false},
      {"answer, on main", asking(tokens).onMain(), [&] { tokens.calls().back()->answer(token); },
       true},
      {"cancelled", asking(tokens), [&] { tokens.calls().back()->cancel(); }, true},
      {"asked to stop", asking(tokens).cancelledBy(stop.get_token()), [&] { stop.request_stop(); },
       false},
  };
  for (const Row& row : rows) {
    const Outcome<std::string> outcome;
    awaitInto(outcome.handler(), row.operation);
    std::thread::id other;
    std::thread ending([&] {
      other = std::this_thread::get_id();
      row.end();
    });
    ending.join();
    MainQueue::main().drain();
    EXPECT_EQ(outcome.thread(), row.isOnMain ? std::this_thread::get_id() : other) << row.name;
  }
}

// A coroutine that is destroyed on the main queue's thread while another one cancels what it waits
// for neither goes on nor stays.
TEST(OperationRaceTest, aCoroutineIsDestroyedWhileItsOperationIsCancelled) {
  for (int round = 0; round < 20'000; ++round) {
    FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
    const Outcome<std::string> outcome;
    const Foreign coroutine = awaitInto(outcome.handler(), asking(tokens));
    const auto call = tokens.calls().back();
    std::atomic<bool> isCancelled = false;
    runOnAnotherThread([&] {
      call->cancel();
      isCancelled = true;
    });
    coroutine.handle.destroy();
    while (!isCancelled) std::this_thread::yield();
    MainQueue::main().drain();
    ASSERT_EQ(outcome.count(), 0U);
    ASSERT_FALSE(outcome.isHeld());
  }
}

TEST(OperationEdgesTest, whatHasEndedBeforeItStartsSendsNothing) {
  FixedTokenResolver tokens;
  std::stop_source stop;
  stop.request_stop();
  EXPECT_EQ(asking(tokens).cancelledBy(stop.get_token()).wait(), cancelled);
  EXPECT_EQ(asking(tokens).within(-1s).wait(), timedOut);
  EXPECT_TRUE(tokens.calls().empty());
}

TEST(OperationEdgesTest, aFutureSaysSoWhenNobodyAnswers) {
  const Operation<std::string> forgetful(
      [](const Completion<std::string>&) { return std::make_shared<EmptyRequest>(); });
  EXPECT_EQ(forgetful.wait(), cancelled);

  // A box that has been cancelled by its holder, while its step keeps the handler for ever.
  Completion<std::string> kept;
  const Operation<std::string> stuck([&](Completion<std::string> then) {
    kept = std::move(then);
    return std::make_shared<RequestBox>();
  });
  auto future = stuck.future();
  std::thread([&] { future.request()->cancel(); }).join();
  EXPECT_EQ(future.get(), cancelled);
  EXPECT_EQ(stuck.wait(1ms), timedOut);

  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  EXPECT_EQ(asking(tokens).wait(1ms), timedOut);
  EXPECT_TRUE(tokens.calls().back()->isCancelled());
}

TEST(OperationEdgesTest, theTimersOfTheProcessEndWhatTakesTooLong) {
  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  const auto slow = asking(tokens).within(2ms);
  const auto slower = asking(tokens).within(1ms);
  const auto [one, other] = all(slow, slower.onMain()).wait();
  EXPECT_EQ(one, timedOut);
  EXPECT_EQ(other, timedOut);
  std::vector<Operation<std::string>> many(200, asking(tokens).within(1h));
  auto pending = all(std::move(many)).within(5ms).future();
  EXPECT_EQ(pending.get().errorOr(Cancelled{}).description(),
            "the operation took too long: there was no answer within 5 ms");
  for (const auto& call : tokens.calls()) EXPECT_TRUE(call->isCancelled());
}

using OperationDeathTest = DeathTest;

TEST_F(OperationDeathTest, whatWasMovedFromStopsTheProcess) {
  auto moved = Operation<std::string>::answering(token);
  const auto kept = std::move(moved);
  EXPECT_EQ(kept.wait(), token);
  const std::string fault = "moved from can't be used: file .*OperationTest.cpp, line ";
  // NOLINTBEGIN(bugprone-use-after-move,clang-analyzer-cplusplus.Move): that is the fault
  EXPECT_DEATH(moved.start({}), (fault + std::to_string(__LINE__)).c_str());
  EXPECT_DEATH(std::ignore = moved.wait(), (fault + std::to_string(__LINE__)).c_str());
  EXPECT_DEATH(std::ignore = moved.onMain(), (fault + std::to_string(__LINE__)).c_str());
  EXPECT_DEATH(std::ignore = retrying(moved), (fault + std::to_string(__LINE__)).c_str());
  EXPECT_DEATH(std::ignore = all(std::vector{moved}), (fault + std::to_string(__LINE__)).c_str());
  EXPECT_DEATH(std::ignore = all(kept, moved).wait(), (fault + std::to_string(__LINE__)).c_str());
  EXPECT_DEATH(awaitInto([](const Text&) {}, std::move(moved)),
               "moved from can't be used: file .*OperationTest.cpp");
  // NOLINTEND(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
}

// --- Several at once -----------------------------------------------------------------------------

TEST(AllTest, startsInOrderAndNoMoreAtOnceThanAllowed) {
  struct Row {
    std::size_t count;
    std::size_t limit;
    std::size_t firstAtOnce;
  };
  for (const auto& [count, limit, firstAtOnce] :
       {Row{0, 3, 0}, Row{1, 3, 1}, Row{7, 3, 3}, Row{3, 100, 3}, Row{2, 0, 1}}) {
    FixedTokenResolver tokens({std::string("token"), AnswerTime::whenTold});
    std::vector<Operation<std::string>> operations(count, asking(tokens));
    auto future = all(std::move(operations), {.limit = limit}).future();
    EXPECT_EQ(tokens.calls().size(), firstAtOnce);
    while (tokens.answerWaiting() > 0) {
    }
    EXPECT_EQ(future.get(), (Result<std::vector<Text>>(std::vector<Text>(count, token))));
    EXPECT_EQ(tokens.calls().size(), count);
  }
}

TEST(AllTest, aFailureOfOneIsNoneOfTheWhole) {
  const auto good = Operation<int>::answering(1);
  const auto bad = Operation<std::string>::answering(NetworkError::noData);
  auto whole = all(good, bad, Operation<Unit>::answering(Result<Unit>()));
  const auto [number, text, nothing] = whole.wait();
  EXPECT_EQ(number, Result<int>(1));
  EXPECT_EQ(text, Text(NetworkError::noData));
  EXPECT_EQ(nothing, Result<Unit>());
  const auto [only] = all(bad).wait();
  EXPECT_EQ(only, Text(NetworkError::noData));
  const auto [late] = all(bad).within(0s).wait();
  EXPECT_EQ(late, timedOut);
  EXPECT_EQ(all(good, Operation<int>([](auto) { return nullptr; })).effect(), Effect::writes);
}

TEST(AllTest, cancellingTheWholeCancelsThoseUnderWayAndStartsNoMore) {
  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  const std::vector<Operation<std::string>> operations(5, asking(tokens));
  const Outcome<std::vector<Text>> outcome;
  const RequestHandle request = all(operations, {.limit = 2}).start(outcome.handler());
  tokens.calls().front()->answer(token);
  EXPECT_TRUE(request->cancel());
  EXPECT_FALSE(tokens.calls()[0]->isCancelled());
  EXPECT_TRUE(tokens.calls()[1]->isCancelled() && tokens.calls()[2]->isCancelled());
  MainQueue::main().drain();
  EXPECT_EQ(tokens.calls().size(), 3U);
  EXPECT_EQ(outcome.count(), 0U);
  EXPECT_FALSE(outcome.isHeld());
}

// A thousand answers inside their calls don't nest.
TEST(AllTest, hasRoomForMany) {
  const std::vector<Operation<int>> operations(100'000, Operation<int>::answering(1));
  EXPECT_EQ(all(operations, {.limit = 1}).wait()->size(), operations.size());
}

}  // namespace
}  // namespace orvane
