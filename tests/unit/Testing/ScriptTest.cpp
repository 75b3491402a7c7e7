// SPDX-License-Identifier: Apache-2.0
// The doubles themselves: what an application's tests rely on.
#include "tests/support/Outcome.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>

namespace orvane {
namespace {

class ScriptTest : public testing::Test {
 protected:
  RequestHandle get(const std::string& path) {
    return transport.get(*URL::parse("https://h/" + path + "?q"), {}, outcome.handler());
  }

  ScriptedRequestManager transport;
  Outcome<std::string> outcome;
};

TEST_F(ScriptTest, failsWithoutAnErrorUntilItIsTold) {
  EXPECT_TRUE(get("a")->isFinished());
  EXPECT_EQ(outcome.result(), Result<std::string>());
}

TEST_F(ScriptTest, answersInTurnAndByPath) {
  transport.answerInTurn({NetworkError::noData, "second"});
  transport.answerPath("/a", {"a"});
  transport.answerPath("/b/a", {"b"});
  std::vector<Result<std::string>> answers;
  for (const char* path : {"x", "a", "y", "a/x", "b/a", "a"}) {
    outcome = {};
    get(path);
    answers.push_back(outcome.result());
  }
  using R = Result<std::string>;
  EXPECT_THAT(answers, testing::ElementsAre(R(NetworkError::noData), R("a"), R("second"),
                                            R("second"), R("b"), R("a")));
  transport.forgetCalls();
  EXPECT_TRUE(transport.questions().empty());
}

TEST_F(ScriptTest, stopsTheProcessWhereNothingIsToBeAnswered) {
  dieInAnotherProcess();
  EXPECT_DEATH(transport.answerInTurn({}), "Fatal error: a double needs an answer");
  EXPECT_DEATH(transport.answerPath("/a", {}), "Fatal error: a double needs an answer");
}

TEST_F(ScriptTest, answersWhenToldThoseThatAreNotCancelled) {
  transport.answer({"late", AnswerTime::whenTold});
  const RequestHandle first = get("1");
  const RequestHandle second = get("2");
  EXPECT_TRUE(first->cancel() && first->cancel() && first->isFinished());
  EXPECT_FALSE(second->isFinished());
  EXPECT_EQ(transport.answerWaiting(), 1U);
  EXPECT_EQ(transport.answerWaiting(), 0U);
  EXPECT_EQ(outcome.result().value(), "late");
  EXPECT_TRUE(second->isFinished() && !second->cancel());
  EXPECT_FALSE(transport.calls()[0]->answer(std::string("again")) ||
               transport.calls()[1]->answer(std::string("again")));
  EXPECT_FALSE(outcome.isHeld());
}

TEST_F(ScriptTest, cancelsACallWhoseHandlerHoldsItsOnlyHandle) {
  transport.answer(ScriptedRequestManager::Answer::never());
  auto holder = std::make_shared<RequestHandle>();
  RequestHandle& handle = *holder;
  handle = transport.get(*URL::parse("https://h"), {},
                         [holder, text = std::string(100, 'x')](const auto&) {});
  transport.forgetCalls();
  Request& request = *handle;
  const std::weak_ptr<RequestHandle> watched = holder;
  holder = nullptr;
  EXPECT_TRUE(request.cancel());
  EXPECT_TRUE(watched.expired());
}

TEST_F(ScriptTest, answersOnTheThreadItIsToldTo) {
  transport.answer({"elsewhere", AnswerTime::onAnotherThread});
  get("1");
  waitForAnotherThread();
  EXPECT_EQ(outcome.count(), 1U);
  EXPECT_NE(outcome.thread(), std::this_thread::get_id());

  transport.answer({"here", AnswerTime::onMainQueue});
  get("2");
  EXPECT_EQ(outcome.count(), 1U);
  MainQueue::main().drain();
  EXPECT_EQ(outcome.count(), 2U);
  EXPECT_EQ(outcome.thread(), std::this_thread::get_id());
}

TEST(ScopedFoundationTest, putsBackWhatWasRegistered) {
  Container& common = *Container::common();
  const ScopedFoundation outer;
  {
    const ScopedFoundation inner;
    EXPECT_EQ(common.inject<RequestManager>(), inner.requestManager);
  }
  EXPECT_EQ(common.inject<RequestManager>(), outer.requestManager);
  EXPECT_EQ(common.inject<DeviceIdentifier>()->current(), "device-1");
}

}  // namespace
}  // namespace orvane
