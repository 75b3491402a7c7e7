// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include <Orvane/Common/Await.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/Testing/FixedResolvers.h>
#include <Orvane/Testing/MemoryStores.h>
#include <Orvane/Testing/ScriptedRequestManager.h>

#include <gtest/gtest.h>

#include <coroutine>
#include <exception>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace orvane {
namespace {

class AwaitTest : public testing::TestWithParam<AnswerTime> {
 protected:
  auto operation() {
    return [this](Completion<std::string> then) {
      return tokens.resolve(identity, std::nullopt, std::move(then));
    };
  }

  const Identity identity{"key", {}};
  FixedTokenResolver tokens{{std::string("token"), GetParam()}};
};

INSTANTIATE_TEST_SUITE_P(Answers, AwaitTest,
                         testing::Values(AnswerTime::atOnce, AnswerTime::onMainQueue,
                                         AnswerTime::onAnotherThread));

// A coroutine that starts at once and destroys itself when it is done, or with its handle before.
struct Detached {
  struct promise_type {
    Detached get_return_object() {
      return {std::coroutine_handle<promise_type>::from_promise(*this)};
    }
    std::suspend_never initial_suspend() noexcept { return {}; }
    std::suspend_never final_suspend() noexcept { return {}; }
    void return_void() {}
    void unhandled_exception() { std::terminate(); }
  };
  std::coroutine_handle<promise_type> handle;
};

template <class Start>
Detached awaitInto(Completion<std::string> then, Start start) {
  then(co_await awaiting<std::string>(std::move(start)));
}

TEST_P(AwaitTest, aFutureHasTheOutcome) {
  EXPECT_EQ(wait<std::string>(operation()), Result<std::string>("token"));
  auto first = future<std::string>(operation());
  auto second = future<std::string>(operation());
  EXPECT_EQ(second.get(), Result<std::string>("token"));
  EXPECT_EQ(first.get(), Result<std::string>("token"));
}

// The handles of these have finished before the answer has got through the main queue.
TEST_P(AwaitTest, aFutureHasAnOutcomeThatComesAfterItsRequest) {
  CachedUserIdentifier users(std::make_shared<ScriptedRequestManager>(ScriptedAnswer<std::string>(
                                 std::string(R"({"userId":"42"})"), GetParam())),
                             std::make_shared<MemoryUserIDStore>());
  const auto lookup = [&](Completion<std::string> then) {
    return users.userID(identity, *URL::parse("https://h"), {}, std::move(then));
  };
  EXPECT_EQ(wait<std::string>(lookup), Result<std::string>("42")) << "of the backend";
  EXPECT_EQ(wait<std::string>(lookup), Result<std::string>("42")) << "of the store";
  EXPECT_EQ(wait<std::string>([&](Completion<std::string> then) {
              return tokens.resolve(identity, std::nullopt, onMain(std::move(then)));
            }),
            Result<std::string>("token"));
}

TEST_P(AwaitTest, aThreadWaitsForWhoDrainsTheQueue) {
  MainQueue::main().drain();
  std::thread waiting([&] {
    EXPECT_EQ(wait<std::string>(operation()), Result<std::string>("token"));
    MainQueue::main().async([] { MainQueue::main().stop(); });
  });
  MainQueue::main().run();
  waiting.join();
}

TEST_P(AwaitTest, aCoroutineGoesOnWithTheOutcome) {
  for (int round = 0; round < 500; ++round) {
    const Outcome<std::string> outcome;
    awaitInto(outcome.handler(), operation());
    if (GetParam() == AnswerTime::onMainQueue) MainQueue::main().drain();
    if (GetParam() == AnswerTime::onAnotherThread) waitForAnotherThread();
    ASSERT_EQ(outcome.result(), Result<std::string>("token"));
  }
}

TEST(AwaitCancellationTest, aCancelledOperationSaysSo) {
  FixedTokenResolver tokens(ScriptedAnswer<std::string>::never());
  const auto start = [&](Completion<std::string> then) {
    return tokens.resolve({}, std::nullopt, std::move(then));
  };
  auto pending = future<std::string>(start);
  pending.request()->cancel();
  EXPECT_EQ(pending.get().error(), Error(Cancelled{}));
  // A handler that goes without having been called.
  EXPECT_EQ(wait<std::string>([](const Completion<std::string>&) {
              return std::make_shared<EmptyRequest>();
            }).error(),
            Error(Cancelled{}));
  // A box that has been cancelled by its holder, while its step keeps the handler for ever.
  Completion<std::string> kept;
  auto stuck = future<std::string>([&](Completion<std::string> then) {
    kept = std::move(then);
    return std::make_shared<RequestBox>();
  });
  std::thread([&] { stuck.request()->cancel(); }).join();
  EXPECT_EQ(stuck.get().error(), Error(Cancelled{}));

  const Outcome<std::string> outcome;
  const Detached coroutine = awaitInto(outcome.handler(), start);
  coroutine.handle.destroy();
  EXPECT_TRUE(tokens.calls().back()->isCancelled());
  EXPECT_TRUE(outcome.count() == 0 && !outcome.isHeld());
}

// An answer on one thread and a cancelling on another: the future has the one or the other.
TEST(AwaitRaceTest, aFutureIsAnsweredOrCancelled) {
  const auto store = std::make_shared<MemoryUserIDStore>();
  CachedUserIdentifier users(std::make_shared<ScriptedRequestManager>(ScriptedAnswer<std::string>(
                                 std::string(R"({"userId":"42"})"), AnswerTime::onAnotherThread)),
                             store);
  for (int round = 0; round < 2000; ++round) {
    store->set({}, std::nullopt);
    auto pending = future<std::string>([&](Completion<std::string> then) {
      return users.userID({}, *URL::parse("https://h"), {}, std::move(then));
    });
    bool isCancelled = false;
    std::thread cancelling([&] { isCancelled = pending.request()->cancel(); });
    const Result<std::string> result = pending.get();
    cancelling.join();
    ASSERT_EQ(result, isCancelled ? Result<std::string>(Cancelled{}) : Result<std::string>("42"));
  }
}

}  // namespace
}  // namespace orvane
