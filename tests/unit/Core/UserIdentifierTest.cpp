// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/MemoryStores.h>
#include <Orvane/Testing/ScriptedRequestManager.h>

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace orvane {
namespace {

class UserIdentifierTest : public testing::Test {
 protected:
  RequestHandle look(const Outcome<std::string>& outcome) {
    return identifier.userID(identity, *URL::parse("https://h/sdk"),
                             {{"Authorization", "Bearer t"}}, outcome.handler());
  }

  const Identity identity{"key", {}};
  const std::shared_ptr<ScriptedRequestManager> transport =
      std::make_shared<ScriptedRequestManager>();
  const std::shared_ptr<MovableTimeMonitor> monitor = std::make_shared<MovableTimeMonitor>();
  const std::shared_ptr<TimeMonitoringUserIDStore> store =
      std::make_shared<TimeMonitoringUserIDStore>(monitor);
  CachedUserIdentifier identifier{transport, store};
};

TEST_F(UserIdentifierTest, readsTheOneMemberThatCounts) {
  const Error refused = NetworkError::invalidStatusCode(401, dateFromSeconds(1));
  const std::pair<ScriptedRequestManager::Answer, Result<std::string>> rows[] = {
      {R"({"userId":"42","userID":1,"other":{"userId":7}})", std::string("42")},
      {"\xEF\xBB\xBF{\"userId\":\"\\u00fc\"}", std::string("ü")},
      {R"({"userId":""})", std::string()},
      {R"({"userId":1,"userId":"2"})", std::string("2")},
      {R"({"userId":"1","userId":null})", NetworkError::invalidResponseData},
      {R"({"userId":42})", NetworkError::invalidResponseData},
      {R"({"userId":null})", NetworkError::invalidResponseData},
      {R"({"userid":"42"})", NetworkError::invalidResponseData},
      {"{}", NetworkError::invalidResponseData},
      {R"(["userId","42"])", NetworkError::unknown},
      {R"("42")", NetworkError::unknown},
      {R"({"userId":"42"} x)", NetworkError::unknown},
      {R"({"userId":"42","x":1e999})", NetworkError::unknown},
      {R"({"serial":12345678901234567890123,"userId":"42"})", std::string("42")},
      {R"({"userId":12345678901234567890123})", NetworkError::invalidResponseData},
      {R"({"userId":"42","serial":1)" + std::string(400, '0') + '}', NetworkError::unknown},
      {"", NetworkError::unknown},
      {refused, refused},
      {Result<std::string>{}, NetworkError::unknown},
  };
  for (const auto& [answer, expected] : rows) {
    transport->answer(answer);
    store->set(identity, std::nullopt);
    const Outcome<std::string> outcome;
    look(outcome);
    EXPECT_EQ(outcome.count(), 0U) << "inside the call";
    MainQueue::main().drain();
    EXPECT_EQ(outcome.result(), expected);
    EXPECT_EQ(store->get(identity), expected.value()) << "a failure stores nothing";
  }
  const auto requests = transport->questions();
  ASSERT_EQ(requests.size(), std::size(rows));
  EXPECT_EQ(requests[0], (RecordedRequest{Verb::get,
                                          *URL::parse("https://h/sdk/identity"),
                                          {{"Authorization", "Bearer t"}}}));
}

TEST_F(UserIdentifierTest, answersAKnownIdentifierLaterAndWithoutARequest) {
  store->set(identity, "42");
  const Outcome<std::string> outcome;
  const RequestHandle request = look(outcome);
  EXPECT_NE(std::dynamic_pointer_cast<EmptyRequest>(request), nullptr);
  EXPECT_EQ(outcome.count(), 0U);
  MainQueue::main().drain();
  EXPECT_EQ(outcome.result().value(), "42");
  EXPECT_TRUE(transport->calls().empty());

  monitor->expireAll();
  transport->answer(R"({"userId":"43"})");
  const Outcome<std::string> next;
  look(next);
  MainQueue::main().drain();
  EXPECT_EQ(next.result().value(), "43");
  EXPECT_EQ(transport->calls().size(), 1U);
}

TEST_F(UserIdentifierTest, lookupsAtOnceAllAskAndTheLastAnswerStays) {
  transport->answer(ScriptedRequestManager::Answer::never());
  const Outcome<std::string> first;
  const Outcome<std::string> second;
  look(first);
  look(second);
  const auto calls = transport->calls();
  ASSERT_EQ(calls.size(), 2U);
  calls[1]->answer(std::string(R"({"userId":"2"})"));
  std::thread([&] { calls[0]->answer(std::string(R"({"userId":"1"})")); }).join();
  MainQueue::main().drain();
  EXPECT_EQ(first.result().value(), "1");
  EXPECT_EQ(first.thread(), std::this_thread::get_id());
  EXPECT_EQ(second.result().value(), "2");
  EXPECT_EQ(store->get(identity), "1");
}

TEST_F(UserIdentifierTest, cancellingCancelsTheLookup) {
  transport->answer(ScriptedRequestManager::Answer::never());
  const Outcome<std::string> outcome;
  const RequestHandle request = look(outcome);
  EXPECT_TRUE(request->cancel());
  EXPECT_TRUE(transport->calls()[0]->isCancelled() && !outcome.isHeld());
}

}  // namespace
}  // namespace orvane
