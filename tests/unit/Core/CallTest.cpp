// SPDX-License-Identifier: Apache-2.0
// The road of a call, shown on the user service: what every operation has in common.
#include "tests/support/Outcome.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/Retrying.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/EULA/EULAService.h>
#include <Orvane/Services/User/UserService.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace orvane {
namespace {

struct HostError {
  [[nodiscard]] static std::string message() { return "the host's own"; }
  bool operator==(const HostError&) const = default;
};

using Answer = ScriptedRequestManager::Answer;
using Details = Result<OrvaneDetails>;

// Parameters: when the details are resolved, and when the transport answers.
class CallTest : public testing::TestWithParam<std::tuple<AnswerTime, AnswerTime>> {
 protected:
  CallTest() {
    resolveTo(exampleDetails());
    answer("{}");
  }

  void resolveTo(Details details) {
    foundation.detailsResolver->answer({std::move(details), std::get<0>(GetParam())});
  }
  void answer(Answer answer) {
    answer.time = std::get<1>(GetParam());
    foundation.requestManager->answer(std::move(answer));
  }

  Result<User> fetch() {
    const Outcome<User> outcome;
    EXPECT_TRUE(finishes(UserService(identity).fetch({}, {}, outcome.handler())));
    EXPECT_FALSE(outcome.isHeld());
    return outcome.result();
  }

  const ScopedFoundation foundation;
  const Identity identity{"key", {}};
};

constexpr AnswerTime times[] = {AnswerTime::atOnce, AnswerTime::onMainQueue,
                                AnswerTime::onAnotherThread};
INSTANTIATE_TEST_SUITE_P(Answers, CallTest,
                         testing::Combine(testing::ValuesIn(times), testing::ValuesIn(times)));

TEST_P(CallTest, turnsTheAnswerIntoTheRecordOrAnError) {
  const Error refused = NetworkError::invalidStatusCode(500, dateFromSeconds(1));
  const std::pair<Answer, Result<User>> rows[] = {
      {R"({"userId":"17"})", User{.id = "17"}},
      {R"({"userId":null})", User{}},
      {"", NetworkError::noData},
      {" ", NetworkError::invalidResponseData},
      {"{", NetworkError::invalidResponseData},
      {"[]", NetworkError::invalidResponseData},
      {R"({"userId":17})", NetworkError::invalidResponseData},
      {R"({"userId":"17","unread":tru})", NetworkError::invalidResponseData},
      {"{\"userId\":\"\xFF\"}", NetworkError::invalidResponseData},
      {R"({"userId":"17"})" + std::string(1, '\0'), NetworkError::invalidResponseData},
      {R"({"driverType":"weekend_driver"})", NetworkError::invalidResponseData},
      {refused, refused},
      {Error(HostError{}), HostError{}},
      {Result<std::string>{}, NetworkError::invalidResponseData},
  };
  for (const auto& [given, expected] : rows) {
    answer(given);
    EXPECT_EQ(fetch(), expected);
  }
}

TEST_P(CallTest, takesAnySuccessWhereNoRecordIsExpected) {
  const Error refused = NetworkError::invalidStatusCode(409);
  const std::pair<Answer, Result<Unit>> rows[] = {
      {"", Unit{}},
      {"{}", Unit{}},
      {"<html>", Unit{}},
      {refused, refused},
      {Result<std::string>{}, NetworkError::invalidResponseData},
  };
  for (const auto& [given, expected] : rows) {
    answer(given);
    const Outcome<Unit> outcome;
    EXPECT_TRUE(finishes(EULAService(identity).acceptTerms(outcome.handler())));
    EXPECT_EQ(outcome.result(), expected);
  }
}

TEST_P(CallTest, sendsNothingWithoutDetailsOrURL) {
  OrvaneDetails strange = exampleDetails();
  strange.userID = "\xFF";
  const std::pair<Details, Error> rows[] = {
      {Error(HostError{}), HostError{}},
      {Error(NetworkError::invalidStatusCode(401)), NetworkError::invalidStatusCode(401)},
      {Details{}, NetworkError::unknown},
      {strange, NetworkError::malformedRequest}};
  for (const auto& [details, expected] : rows) {
    resolveTo(details);
    EXPECT_EQ(fetch().error(), expected);
  }
  EXPECT_TRUE(foundation.requestManager->calls().empty());
}

TEST_P(CallTest, tellsWhatWasAskedForAndFound) {
  const Error refused = NetworkError::invalidStatusCode(404);
  const std::string unreadable = "GET users/42: the backend's answer is not what was asked for: ";
  const std::pair<Answer, std::string> rows[] = {
      {refused.with({.status = 404, .reason = "No such user."}),
       "GET users/42: the backend refused the request with status 404: No such user."},
      {Error(HostError{}), "GET users/42: the host's own"},
      {"", "GET users/42: the backend's answer is empty"},
      {R"({"userId":17})", unreadable + "userId: a text was expected, found the number 17"},
      {R"({"driverType":"a"})",
       unreadable + "driverType: Unknown value found when decoding DriverType"},
      {"<!DOCTYPE html><html><title>Log in</title>",
       unreadable + "JSON was expected, found an HTML page, \"Log in\""},
  };
  for (const auto& [given, description] : rows) {
    answer(given);
    EXPECT_EQ(fetch().error()->description(), description);
  }
  resolveTo(Error(HostError{}).with({.operation = "GET identity"}));
  EXPECT_EQ(fetch().error()->description(), "GET identity: the host's own");
  resolveTo(Error(HostError{}));
  EXPECT_EQ(fetch().error()->description(), "GET users/{userId}: the host's own");
}

TEST_P(CallTest, tellsWhatTookTooLong) {
  resolveTo(Error(HostError{}));
  const Operation<User> fetching = UserService(identity).fetch("17");
  const Operation<User> own([](const Completion<User>&) { return std::make_shared<RequestBox>(); });
  const std::string late = "the operation took too long: there was no answer within 0 ms";
  const std::pair<Operation<User>, std::string> rows[] = {
      {fetching.within({}), "GET users/17: " + late},
      {retrying(fetching.onMain().within({})).within(std::chrono::hours(1)),
       "GET users/17: " + late},
      {own.within({}), late},
  };
  for (const auto& [operation, description] : rows) {
    EXPECT_EQ(operation.wait().error()->description(), description);
  }
  EXPECT_EQ(own.wait(std::chrono::milliseconds(0)).error()->description(), late);
}

TEST_P(CallTest, goesOnWithoutItsService) {
  const Outcome<User> outcome;
  std::optional<UserService> users(std::in_place, identity);
  std::shared_ptr<void> destroysTheService(nullptr, [&](void*) { users.reset(); });
  // The handler ends the service from inside, as it is let go of.
  const RequestHandle request =
      users->fetch({}, {},
                   [then = outcome.handler(),
                    kept = std::move(destroysTheService)](Result<User> result) mutable {
                     kept = nullptr;
                     then(std::move(result));
                   });
  EXPECT_TRUE(finishes(request));
  EXPECT_TRUE(outcome.result() && !users);
  EXPECT_FALSE(outcome.isHeld());
}

TEST_P(CallTest, aHandlerMayCancelItselfAndStartCalls) {
  const UserService users(identity);
  const Outcome<User> inner;
  std::mutex mutex;  // the answer may come on another thread before the call has returned
  RequestHandle outerRequest;
  RequestHandle innerRequest;
  std::atomic<bool> isStarted{false};
  Completion<User> handler = [&](const Result<User>&) {
    std::unique_lock lock(mutex);
    const RequestHandle outer = outerRequest;
    lock.unlock();
    EXPECT_FALSE(outer && outer->cancel());
    innerRequest = users.fetch({}, {}, inner.handler());
    isStarted = true;
  };
  MainQueue::main().async([&] {
    RequestHandle started = users.fetch({}, {}, std::move(handler));
    const std::scoped_lock lock(mutex);
    outerRequest = std::move(started);
  });
  while (!isStarted) MainQueue::main().drain();
  EXPECT_TRUE(finishes(innerRequest));
  EXPECT_TRUE(inner.result());
  waitForAnotherThread();
}

TEST_P(CallTest, ignoresTheAnswerWithoutAHandler) {
  EXPECT_TRUE(finishes(UserService(identity).fetch({}, {}, nullptr)));
}

class CancelledCallTest : public testing::Test {
 protected:
  CancelledCallTest() {
    foundation.detailsResolver->answer({exampleDetails(), AnswerTime::whenTold});
    foundation.requestManager->answer({std::string("{}"), AnswerTime::whenTold});
    request = UserService({"key", {}}).fetch({}, {}, outcome.handler());
  }

  const ScopedFoundation foundation;
  const Outcome<User> outcome;
  RequestHandle request;
};

TEST_F(CancelledCallTest, beforeTheDetailsArrive) {
  EXPECT_TRUE(request->cancel());
  EXPECT_TRUE(foundation.detailsResolver->calls()[0]->isCancelled());
  EXPECT_FALSE(outcome.isHeld()) << "by the handle";
  foundation.detailsResolver->answerWaiting();
  EXPECT_TRUE(foundation.requestManager->calls().empty());
  EXPECT_TRUE(outcome.count() == 0 && request->isFinished() && request->cancel());
}

TEST_F(CancelledCallTest, whileTheTransferRuns) {
  foundation.detailsResolver->answerWaiting();
  EXPECT_TRUE(request->cancel());
  EXPECT_TRUE(foundation.requestManager->calls()[0]->isCancelled());
  EXPECT_FALSE(outcome.isHeld()) << "by the handle";
  foundation.requestManager->answerWaiting();
  EXPECT_EQ(outcome.count(), 0U);
}

TEST_F(CancelledCallTest, whileTheTransferIsStarting) {
  // Looked at before the transport has returned the transfer's request.
  foundation.requestManager->answerWhere(
      [&](const RecordedRequest&) {
        request->cancel();
        return true;
      },
      {ScriptedRequestManager::Answer::never()});
  foundation.detailsResolver->answerWaiting();
  EXPECT_TRUE(foundation.requestManager->calls()[0]->isCancelled());
  EXPECT_TRUE(outcome.count() == 0 && !outcome.isHeld());
}

TEST_F(CancelledCallTest, tooLate) {
  foundation.detailsResolver->answerWaiting();
  EXPECT_EQ(foundation.requestManager->answerWaiting(), 1U);
  EXPECT_FALSE(request->cancel());
  EXPECT_TRUE(outcome.result());
  EXPECT_FALSE(foundation.requestManager->calls()[0]->isCancelled());
}

TEST_F(CancelledCallTest, isNotWhatDroppingTheHandleDoes) {
  request = nullptr;
  foundation.detailsResolver->answerWaiting();
  foundation.requestManager->answerWaiting();
  EXPECT_TRUE(outcome.result());
}

// A resolver that still needs what it was given after it has answered inside the call.
class LateReadingResolver final : public OrvaneDetailsResolver {
 public:
  explicit LateReadingResolver(std::shared_ptr<Identity> lastSeen) : seen_(std::move(lastSeen)) {}
  RequestHandle resolve(const Identity& identity, Completion<OrvaneDetails> then) override {
    const auto seen = seen_;
    std::exchange(then, nullptr)(Details(HostError{}));
    *seen = identity;
    return std::make_shared<EmptyRequest>();
  }

 private:
  const std::shared_ptr<Identity> seen_;
};

// A resolver and a transport that answer twice, the second time after they have let the call go on.
class StammeringHost final : public OrvaneDetailsResolver, public RequestManager {
 public:
  RequestHandle resolve(const Identity&, Completion<OrvaneDetails> then) override {
    then(exampleDetails());
    then(Details(HostError{}));
    then(exampleDetails());
    return std::make_shared<EmptyRequest>();
  }
  RequestHandle send(Verb, URL, std::string, Headers, Completion<std::string> then) override {
    ++requests;
    handlers.push_back(std::move(then));
    return std::make_shared<EmptyRequest>();
  }

  std::size_t requests = 0;
  std::vector<Completion<std::string>> handlers;
};

TEST(CallOfAStammeringHostTest, goesOnOnce) {
  const ScopedFoundation foundation;
  const auto host = std::make_shared<StammeringHost>();
  Container::common()->register_<OrvaneDetailsResolver>(
      std::shared_ptr<OrvaneDetailsResolver>(host));
  Container::common()->register_<RequestManager>(std::shared_ptr<RequestManager>(host));
  const Outcome<User> outcome;
  UserService({"key", {}}).fetch({}, {}, outcome.handler());
  ASSERT_EQ(host->requests, 1U);
  for (const char* userID : {"17", "18"}) {
    host->handlers[0](R"({"userId":")" + std::string(userID) + "\"}");
  }
  EXPECT_EQ(outcome.result(), User{.id = "17"});
  EXPECT_FALSE(outcome.isHeld()) << "by the handler that the host keeps";
}

TEST(CallLifetimeTest, theServiceMayEndWhileItStartsACall) {
  const ScopedFoundation foundation;
  const auto seen = std::make_shared<Identity>();
  Container::common()->register_<OrvaneDetailsResolver>(
      [seen](Container&, const auto&) { return std::make_shared<LateReadingResolver>(seen); });
  auto users = std::make_unique<UserService>(Identity{std::string(100, 'k'), {}});
  const UserService& calling = *users;
  calling.fetch({}, {}, [&](const Result<User>&) { users = nullptr; });
  EXPECT_EQ(users, nullptr);
  EXPECT_EQ(seen->apiKey, std::string(100, 'k'));
}

// One thread starts calls that are answered at once, on the main queue and from another thread,
// while a second one cancels them: whoever wins, a handler runs once or never.
TEST(CallRaceTest, aHandlerRunsOnceOrIsCancelled) {
  constexpr std::size_t count = 100'000;
  const ScopedFoundation foundation;
  struct Started {
    std::atomic<int> handled{0};
    bool isCancelled = false;
    RequestHandle request;
  };
  std::vector<Started> calls(count);
  std::atomic<std::size_t> started{0};

  std::thread cancelling([&] {
    for (std::size_t i = 0; i < count; ++i) {
      started.wait(i);
      while (started.load() <= i) started.wait(started.load());
      if (i % 4 != 0) calls[i].isCancelled = calls[i].request->cancel();
    }
  });
  const UserService users({"key", {}});
  for (std::size_t i = 0; i < count; ++i) {
    const AnswerTime resolving = times[i % 3];
    const AnswerTime answering = times[i / 3 % 3];
    foundation.detailsResolver->answer({exampleDetails(), resolving});
    foundation.requestManager->answer({std::string("{}"), answering});
    calls[i].request = users.fetch({}, {}, [&call = calls[i]](const Result<User>& result) {
      EXPECT_TRUE(result);
      ++call.handled;
    });
    ++started;
    started.notify_one();
    if (i % 64 == 0) {
      MainQueue::main().drain();
      foundation.detailsResolver->forgetCalls();
      foundation.requestManager->forgetCalls();
    }
  }
  cancelling.join();
  std::size_t cancelled = 0;
  for (Started& call : calls) {
    ASSERT_TRUE(finishes(call.request));
    ASSERT_EQ(call.handled + (call.isCancelled ? 1 : 0), 1);
    cancelled += call.isCancelled ? 1U : 0U;
  }
  EXPECT_GT(cancelled, 0U);
  EXPECT_LT(cancelled, count * 3 / 4);
}

}  // namespace
}  // namespace orvane
