// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Retrying.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/MovableTimers.h>
#include <Orvane/Testing/ScriptedRequestManager.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using Text = Result<std::string>;
using Answers = std::vector<ScriptedAnswer<std::string>>;
using Pauses = std::vector<std::chrono::milliseconds>;

const Text busy = NetworkError::invalidStatusCode(503);
const Text busyFor(Seconds pause) {
  return NetworkError::invalidStatusCode(429).withRetryAfter(pause);
}

struct Row {
  const char* name;
  Answers answers;
  RetryPolicy policy;
  Verb verb = Verb::get;
  Pauses pauses;
  Text outcome;
};

void PrintTo(const Row& row, std::ostream* stream) { *stream << row.name; }

class RetryingTest : public testing::TestWithParam<Row> {
 protected:
  RetryingTest() { manager->answerInTurn(GetParam().answers); }

  RetryPolicy policy() const {
    RetryPolicy policy = GetParam().policy;
    policy.timers = timers;
    // The longest pause that chance can make.
    if (!policy.chance) policy.chance = [] { return 1.0; };
    return policy;
  }

  // Lets the pauses pass, one after the other.
  Pauses passed() const {
    Pauses pauses;
    while (timers->waiting() > 0) {
      pauses.push_back(timers->untilNext());
      timers->advance(pauses.back());
    }
    return pauses;
  }

  const std::shared_ptr<MovableTimers> timers = std::make_shared<MovableTimers>();
  const std::shared_ptr<ScriptedRequestManager> manager =
      std::make_shared<ScriptedRequestManager>();
  const Outcome<std::string> outcome;
};

INSTANTIATE_TEST_SUITE_P(
    Rows, RetryingTest,
    testing::Values(
        Row{"successIsNotTriedAgain", {std::string("a")}, {}, Verb::get, {}, std::string("a")},
        Row{"pausesDoubleUpToTheLongest",
            {busy},
            {.attempts = 6, .firstPause = 100ms, .longestPause = 500ms},
            Verb::get,
            {100ms, 200ms, 400ms, 500ms, 500ms},
            busy},
        Row{"chanceShortensThePauses",
            {busy},
            {.attempts = 3, .firstPause = 100ms, .chance = [] { return 0.25; }},
            Verb::get,
            {25ms, 50ms},
            busy},
        Row{"theServersPauseIsKept",
            {busyFor(Seconds(2.0005)), busyFor(Seconds(0.001)), std::string("a")},
            {.firstPause = 100ms},
            Verb::get,
            {2001ms, 200ms},
            std::string("a")},
        Row{"aPauseBeyondTheTotalTimeIsNotBegun",
            {busyFor(Seconds(61))},
            {.totalTime = 60s},
            Verb::get,
            {},
            busyFor(Seconds(61))},
        Row{"aPauseWithoutEndIsNotBegun",
            {busyFor(Seconds(1e300))},
            {.totalTime = std::chrono::milliseconds::max()},
            Verb::get,
            {},
            busyFor(Seconds(1))},
        Row{"theTotalTimeEndsTheAttempts",
            {busy},
            {.attempts = 100, .firstPause = 400ms, .longestPause = 400ms, .totalTime = 1s},
            Verb::get,
            {400ms, 400ms},
            busy},
        Row{"whatDoesNotPassIsNotTriedAgain",
            {Text(NetworkError::invalidStatusCode(500))},
            {},
            Verb::get,
            {},
            NetworkError::invalidStatusCode(500)},
        Row{"norIsAFailureWithoutAnError", {Text()}, {}, Verb::get, {}, Text()},
        Row{"norAWrite", {busy}, {}, Verb::post, {}, busy},
        Row{"unlessWritesAreIncluded",
            {busy, std::string("a")},
            {.firstPause = 1s, .includesWrites = true},
            Verb::post,
            {1s},
            std::string("a")},
        Row{"noAttemptIsOne", {busy}, {.attempts = 0}, Verb::get, {}, busy}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_P(RetryingTest, anOperationIsTriedAgainAsThePolicySays) {
  const Verb verb = GetParam().verb;
  const Operation<std::string> operation(
      [this, verb](Completion<std::string> then) {
        return manager->send(verb, *URL::parse("https://h/a?b"), "body", {{"A", "b"}},
                             std::move(then));
      },
      verb == Verb::get ? Effect::reads : Effect::writes);
  retrying(operation, policy()).start(outcome.handler());
  EXPECT_EQ(passed(), GetParam().pauses);
  EXPECT_EQ(outcome.result(), GetParam().outcome);
}

TEST_P(RetryingTest, soIsARequestOfTheWholeTransport) {
  RetryingRequestManager retryingManager(manager, policy());
  retryingManager.send(GetParam().verb, *URL::parse("https://h/a?b"), "body", {{"A", "b"}},
                       outcome.handler());
  EXPECT_EQ(passed(), GetParam().pauses);
  EXPECT_EQ(outcome.result(), GetParam().outcome);
  for (const auto& question : manager->questions()) EXPECT_EQ(question, manager->questions()[0]);
  EXPECT_EQ(manager->questions().size(), GetParam().pauses.size() + 1);
}

TEST(RetryingEdgesTest, canBeCancelledWhileItPauses) {
  const auto timers = std::make_shared<MovableTimers>();
  const auto manager = std::make_shared<ScriptedRequestManager>();
  manager->answer(busy);
  RetryingRequestManager retryingManager(manager, {.timers = timers});
  const Outcome<std::string> outcome;
  const auto request = retryingManager.get(*URL::parse("https://h"), {}, outcome.handler());
  EXPECT_EQ(timers->waiting(), 1U);
  EXPECT_TRUE(request->cancel());
  EXPECT_EQ(timers->waiting(), 0U);
  EXPECT_EQ(outcome.count(), 0U);
  EXPECT_FALSE(outcome.isHeld());
}

TEST(RetryingEdgesTest, aPauseIsNeverNegative) {
  detail::Attempts attempts({.firstPause = -1s, .longestPause = -1s});
  EXPECT_EQ(attempts.pauseAfter(busy.error()), 0ms);
}

TEST(RetryingEdgesTest, chanceOfTheProcessStaysBelowThePause) {
  const auto timers = std::make_shared<MovableTimers>();
  detail::Attempts attempts(
      {.attempts = 1000, .firstPause = 100ms, .longestPause = 100ms, .timers = timers});
  Pauses pauses;
  for (int i = 0; i < 500; ++i) pauses.push_back(*attempts.pauseAfter(busy.error()));
  std::sort(pauses.begin(), pauses.end());
  EXPECT_LE(pauses.back(), 100ms);
  EXPECT_GT(pauses.back() - pauses.front(), 50ms);
}

}  // namespace
}  // namespace orvane
