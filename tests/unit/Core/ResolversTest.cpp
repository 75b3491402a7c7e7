// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Core/Resolvers.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/FixedResolvers.h>
#include <Orvane/Testing/MemoryStores.h>
#include <Orvane/Testing/ScriptedRequestManager.h>

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvane {
namespace {

using testing::ElementsAre;
using Requests = ScriptedRequestManager;

struct HostError {
  [[nodiscard]] static std::string message() { return "the host's own"; }
  bool operator==(const HostError&) const = default;
};

constexpr std::string_view userAnswer = R"({"userId":"42"})";

// The resolvers, made of doubles that all answer at one time.
class ResolversTest : public testing::TestWithParam<AnswerTime> {
 protected:
  [[nodiscard]] static AnswerTime time() { return GetParam(); }

  void resolve(OrvaneDetailsResolver& by, const Outcome<OrvaneDetails>& outcome) {
    const RequestHandle request = by.resolve(identity, outcome.handler());
    EXPECT_TRUE(time() != AnswerTime::atOnce || outcome.count() == 0) << "inside the call";
    EXPECT_TRUE(finishes(request));
    EXPECT_EQ(outcome.thread(), std::this_thread::get_id());
    EXPECT_FALSE(outcome.isHeld());
  }
  Result<OrvaneDetails> resolve() {
    const Outcome<OrvaneDetails> outcome;
    resolve(resolver, outcome);
    return outcome.result();
  }

  // How often each collaborator was asked.
  [[nodiscard]] std::vector<std::size_t> asked() const {
    return {endpoints->calls().size(), tokens->calls().size(), transport->calls().size()};
  }

  const Identity identity{"api-key", "reference"};
  const std::shared_ptr<FixedEndpointResolver> endpoints = std::make_shared<FixedEndpointResolver>(
      FixedEndpointResolver::Answer(*URL::parse("https://h/base/"), time()));
  const std::shared_ptr<FixedTokenResolver> tokens = std::make_shared<FixedTokenResolver>(
      FixedTokenResolver::Answer(std::string("token"), time()));
  const std::shared_ptr<Requests> transport =
      std::make_shared<Requests>(Requests::Answer(std::string(userAnswer), time()));
  const std::shared_ptr<MemoryUserIDStore> userIDs = std::make_shared<MemoryUserIDStore>();
  const std::shared_ptr<MemoryTimeOffsetStore> offsets = std::make_shared<MemoryTimeOffsetStore>();
  const ResolverCollaborators collaborators{
      tokens, endpoints, std::make_shared<CachedUserIdentifier>(transport, userIDs), offsets};
  TokenOffsettingOrvaneDetailsResolver resolver{collaborators};
  MovableClock clock{dateFromSeconds(1000)};
};

INSTANTIATE_TEST_SUITE_P(Answers, ResolversTest,
                         testing::Values(AnswerTime::atOnce, AnswerTime::onMainQueue,
                                         AnswerTime::onAnotherThread));

TEST_P(ResolversTest, findOutRootTokenAndUser) {
  const Headers headers{{"Authorization", "Bearer token"}};
  EXPECT_EQ(resolve(),
            Result<OrvaneDetails>({*URL::parse("https://h/base/kavra/api/sdk"), headers, "42"}));
  EXPECT_THAT(endpoints->questions(), ElementsAre("api-key"));
  EXPECT_THAT(tokens->questions(), ElementsAre(TokenQuestion{identity, std::nullopt}));
  EXPECT_THAT(transport->questions(),
              ElementsAre(RecordedRequest{
                  Verb::get, *URL::parse("https://h/base/kavra/api/sdk/identity"), headers}));
  EXPECT_EQ(userIDs->get(identity), "42");
  EXPECT_TRUE(resolve());
  EXPECT_THAT(asked(), ElementsAre(2, 2, 1));
}

TEST_P(ResolversTest, passOnTheErrorOfTheStepThatFails) {
  const Error host = HostError{};
  for (const bool isKnown : {true, false}) {
    const Error expected = isKnown ? host : NetworkError::unknown;
    const Result<std::string> failure = isKnown ? Result<std::string>(host) : Result<std::string>{};
    transport->answer({failure, time()});
    EXPECT_EQ(resolve().error(), expected);
    tokens->answer({failure, time()});
    EXPECT_EQ(resolve().error(), expected);
    endpoints->answer({isKnown ? Result<URL>(host) : Result<URL>{}, time()});
    EXPECT_EQ(resolve().error(), expected);
    EXPECT_THAT(asked(), ElementsAre(3, 2, 1)) << "a step that failed was not the last";
    endpoints->answer({*URL::parse("https://h"), time()});
    tokens->answer({std::string("token"), time()});
    endpoints->forgetCalls();
    tokens->forgetCalls();
    transport->forgetCalls();
  }
}

TEST_P(ResolversTest, correctTheClockOnceAfterARefusal) {
  const auto refused = [](std::int64_t status, std::optional<double> serverSeconds) {
    std::optional<Date> date;
    if (serverSeconds) date = dateFromSeconds(*serverSeconds);
    return Error(NetworkError::invalidStatusCode(status, date));
  };
  using Offset = std::optional<double>;
  struct Row {
    std::vector<Result<std::string>> answers;
    Offset storedBefore;
    std::optional<Error> error;
    std::vector<Offset> asked;
    Offset stored;
  };
  const Result<std::string> user = std::string(userAnswer);
  constexpr double century = 3'155'760'000;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const Error refusedAtNoTime = refused(401, std::numeric_limits<double>::quiet_NaN());
  const Row rows[] = {
      {{refused(401, 1300), user}, {}, {}, {{}, 300}, 300},
      {{refused(401, 999.5), user}, {}, {}, {{}, -0.5}, -0.5},
      {{refused(401, 1000), user}, {}, {}, {{}, 0}, 0},
      {{refused(401, 1300), user}, 100, {}, {100, 300}, 300},
      {{refused(401, 1300), refused(401, 1400)}, {}, refused(401, 1400), {{}, 300}, 300},
      {{refused(401, 1300), refused(403, {})}, {}, refused(403, {}), {{}, 300}, 300},
      {{refused(401, {})}, {}, refused(401, {}), {{}}, {}},
      {{refused(403, 1300)}, {}, refused(403, 1300), {{}}, {}},
      {{refused(401, 1000 + century), user}, {}, {}, {{}, century}, century},
      {{refused(401, 1000 - century), user}, {}, {}, {{}, -century}, -century},
      {{refused(401, 1001 + century)}, {}, refused(401, 1001 + century), {{}}, {}},
      {{refused(401, 999 - century)}, 7, refused(401, 999 - century), {7}, 7},
      {{refused(401, infinity)}, {}, refused(401, infinity), {{}}, {}},
      {{refused(401, -infinity)}, {}, refused(401, -infinity), {{}}, {}},
      {{refusedAtNoTime}, {}, refusedAtNoTime, {{}}, {}},
      {{refused(400, 1300)}, 7, refused(400, 1300), {7}, 7},
      {{Error(HostError{})}, {}, Error(HostError{}), {{}}, {}},
  };
  for (const Row& row : rows) {
    std::vector<Requests::Answer> answers;
    for (const auto& answer : row.answers) answers.emplace_back(answer, time());
    transport->answerInTurn(answers);
    transport->forgetCalls();
    tokens->forgetCalls();
    userIDs->set(identity, std::nullopt);
    offsets->set(identity, row.storedBefore);

    const auto result = resolve();
    EXPECT_EQ(result.error(), row.error);
    EXPECT_EQ(result.value().has_value(), !row.error);
    std::vector<Offset> asked;
    for (const TokenQuestion& question : tokens->questions()) asked.push_back(question.offset);
    EXPECT_EQ(asked, row.asked);
    EXPECT_EQ(transport->calls().size(), row.answers.size());
    EXPECT_EQ(offsets->get(identity), row.stored);
  }
}

TEST_P(ResolversTest, payForAWrongClockOncePerProcess) {
  transport->answerInTurn({{NetworkError::invalidStatusCode(401, dateFromSeconds(1300)), time()},
                           {std::string(userAnswer), time()}});
  EXPECT_TRUE(resolve());
  EXPECT_TRUE(resolve());
  EXPECT_EQ(tokens->questions().back().offset, 300);
  EXPECT_THAT(asked(), ElementsAre(2, 3, 2));
}

TEST_P(ResolversTest, resolveTheRootAloneBeforeAUserIsKnown) {
  UnauthenticatedOrvaneDetailResolver unauthenticated(collaborators);
  Outcome<OrvaneDetails> outcome;
  resolve(unauthenticated, outcome);
  EXPECT_EQ(outcome.result(),
            Result<OrvaneDetails>({*URL::parse("https://h/base/kavra/api/sdk"), {}, ""}));
  EXPECT_THAT(endpoints->questions(), ElementsAre("api-key"));

  endpoints->answerInTurn({{HostError{}, time()}, {Result<URL>{}, time()}});
  for (const Error& expected : {Error(HostError{}), Error(NetworkError::unknown)}) {
    const Outcome<OrvaneDetails> failure;
    resolve(unauthenticated, failure);
    EXPECT_EQ(failure.result().error(), expected);
  }
  EXPECT_THAT(asked(), ElementsAre(3, 0, 0));
}

TEST_P(ResolversTest, askForNothingBelowABaseURLWithoutSchemeOrHost) {
  UnauthenticatedOrvaneDetailResolver unauthenticated(collaborators);
  for (const char* text : {"foo/bar", "/base", "//host", "https:", "https:///x", "?q"}) {
    endpoints->answer({*URL::parse(text), time()});
    for (OrvaneDetailsResolver* by :
         std::initializer_list<OrvaneDetailsResolver*>{&resolver, &unauthenticated}) {
      const Outcome<OrvaneDetails> outcome;
      resolve(*by, outcome);
      EXPECT_EQ(outcome.result(), NetworkError::malformedRequest) << text;
    }
  }
  EXPECT_THAT(asked(), ElementsAre(12, 0, 0));
}

// A host that answers every question twice, on two threads at once.
class StammeringHost final : public EndpointResolver,
                             public TokenResolver,
                             public UserIdentifier,
                             public RequestManager {
 public:
  RequestHandle resolveOrvaneURL(const std::string&, Completion<URL> then) override {
    return answer(std::move(then), *URL::parse("https://h"));
  }
  RequestHandle resolve(const Identity&, std::optional<double>,
                        Completion<std::string> then) override {
    return answer(std::move(then), std::string("token"));
  }
  RequestHandle userID(const Identity&, const URL&, const Headers&,
                       Completion<std::string> then) override {
    return answer(std::move(then), std::string("42"));
  }
  RequestHandle send(Verb, URL, std::string, Headers, Completion<std::string> then) override {
    return answer(std::move(then), std::string(userAnswer));
  }

  [[nodiscard]] int questions() const { return questions_; }

 private:
  template <class T>
  RequestHandle answer(Completion<T> then, const T& value) {
    ++questions_;
    std::thread other([&] { then(value); });
    then(value);
    other.join();
    return std::make_shared<EmptyRequest>();
  }

  std::atomic<int> questions_{0};
};

TEST(ResolversOfAStammeringHostTest, goOnOnce) {
  const auto host = std::make_shared<StammeringHost>();
  const auto offsets = std::make_shared<MemoryTimeOffsetStore>();
  const auto userIDs = std::make_shared<MemoryUserIDStore>();
  const std::pair<std::shared_ptr<UserIdentifier>, int> rows[] = {
      {host, 3}, {std::make_shared<CachedUserIdentifier>(host, userIDs), 6}};
  for (const auto& [userIdentifier, questions] : rows) {
    TokenOffsettingOrvaneDetailsResolver resolver({host, host, userIdentifier, offsets});
    const Outcome<OrvaneDetails> outcome;
    EXPECT_TRUE(finishes(resolver.resolve({}, outcome.handler())));
    EXPECT_EQ(outcome.result().value()->userID, "42");
    EXPECT_EQ(host->questions(), questions);
  }
  UnauthenticatedOrvaneDetailResolver unauthenticated({host, host, host, offsets});
  const Outcome<OrvaneDetails> outcome;
  EXPECT_TRUE(finishes(unauthenticated.resolve({}, outcome.handler())));
  MainQueue::main().drain();
  EXPECT_EQ(outcome.count(), 1U);

  CachedUserIdentifier lookup(host, std::make_shared<MemoryUserIDStore>());
  const Outcome<std::string> userID;
  lookup.userID({}, *URL::parse("https://h"), {}, userID.handler());
  EXPECT_EQ(MainQueue::main().drain(), 1U);
  EXPECT_EQ(userID.result().value(), "42");
}

using CancelledResolutionTest = ResolversTest;
INSTANTIATE_TEST_SUITE_P(Answers, CancelledResolutionTest, testing::Values(AnswerTime::whenTold));

TEST_P(CancelledResolutionTest, stopsAtEveryStep) {
  const auto tell = [&](std::size_t step) {
    if (step == 0) endpoints->answerWaiting();
    if (step == 1) tokens->answerWaiting();
    if (step == 2) transport->answerWaiting();
    if (step == 3) MainQueue::main().drain();  // the user's identifier, on its way
  };
  for (std::size_t steps = 0; steps <= 4; ++steps) {
    userIDs->set(identity, std::nullopt);
    const Outcome<OrvaneDetails> outcome;
    {
      const RequestHandle request = resolver.resolve(identity, outcome.handler());
      for (std::size_t step = 0; step < steps; ++step) tell(step);
      const bool wasDelivered = steps == 4;
      EXPECT_EQ(request->cancel(), !wasDelivered) << steps;
      EXPECT_EQ(request->cancel(), !wasDelivered) << steps;
      EXPECT_TRUE(request->isFinished());
      EXPECT_EQ(outcome.count(), wasDelivered ? 1U : 0U);
    }
    const auto before = asked();
    for (std::size_t step = 0; step <= 3; ++step) tell(step);
    EXPECT_EQ(asked(), before) << "a step was started after the cancelling";
    EXPECT_EQ(outcome.count(), steps == 4 ? 1U : 0U);
    EXPECT_FALSE(outcome.isHeld());
    EXPECT_TRUE(steps != 0 || endpoints->calls().back()->isCancelled());
    EXPECT_TRUE(steps != 1 || tokens->calls().back()->isCancelled());
    EXPECT_TRUE(steps != 2 || transport->calls().back()->isCancelled());
  }
}

TEST(MockOrvaneResolverTest, answersAtOnceOnTheCallingThread) {
  const Outcome<OrvaneDetails> outcome;
  const RequestHandle request = MockOrvaneResolver().resolve({}, outcome.handler());
  ASSERT_TRUE(outcome.result().value());
  EXPECT_EQ(outcome.result().value()->userID, "1234");
  EXPECT_TRUE(outcome.result().value()->headers.empty());
  EXPECT_EQ(outcome.result().value()->apiURL.scheme(), "https");
  EXPECT_TRUE(request->isFinished() && !request->cancel());
}

}  // namespace
}  // namespace orvane
