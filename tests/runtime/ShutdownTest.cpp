// SPDX-License-Identifier: Apache-2.0
// The end of a transport: asked for, forced, and from inside.
#include "tests/runtime/support/Calls.h"
#include "tests/runtime/support/TestServer.h"
#include <Orvane/Common/MainQueue.h>
#include <Orvane/GoogleTest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <thread>
#include <vector>

namespace orvane {
namespace {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

const Error shutDown = TransportError(TransportError::Kind::cancelled);

TEST(ShutdownTest, AnswersWhatIsPending) {
  const TestServer server(keepSilent);
  const auto manager = managerWith({.maximumConnectionsPerHost = 2});
  std::vector<std::future<Result<std::string>>> results;
  // The last ones wait for a connection.
  for (int i = 0; i < 5; ++i) results.push_back(start(*manager, Verb::post, server.url(), "x"));
  server.waitForRequests(2);
  EXPECT_TRUE(manager->shutdown(30s));
  for (auto& result : results) {
    ASSERT_EQ(result.wait_for(0s), std::future_status::ready);
    EXPECT_EQ(result.get(), shutDown);
  }
  EXPECT_EQ(get(*manager, server.url()), shutDown) << "requests that come later";
  EXPECT_TRUE(manager->shutdown(0ms)) << "once more changes nothing";
  EXPECT_TRUE(managerWith({})->shutdown(0ms)) << "nothing needs to have been asked before";
}

TEST(ShutdownTest, WaitsForAHandlerButNoLongerThanItIsTold) {
  const TestServer server(answering("/"));
  auto manager = managerWith({});
  std::promise<bool> inside;
  std::promise<void> gate;
  const RequestHandle request =
      manager->get(*URL::parse(server.url()), {}, [&](Result<std::string>) {
        inside.set_value(manager->shutdown(30s));
        gate.get_future().wait();
      });
  EXPECT_FALSE(inside.get_future().get()) << "the thread cannot wait for itself";
  EXPECT_FALSE(manager->shutdown(10ms));
  gate.set_value();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back([&] { EXPECT_TRUE(manager->shutdown(30s)); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(request->isFinished());
  manager.reset();
  EXPECT_FALSE(request->cancel());
}

TEST(ShutdownTest, LetsAHandlerDropTheManager) {
  const TestServer server(answering("/"));
  for (int i = 0; i < 20; ++i) {
    auto manager = managerWith({});
    CurlRequestManager& reference = *manager;
    std::promise<void> dropped;
    // Another request is pending when the manager goes.
    const TestServer silent(keepSilent);
    auto pending = start(reference, Verb::get, silent.url());
    silent.waitForRequests(1);
    reference.get(*URL::parse(server.url()), {},
                  [&dropped, last = std::move(manager)](Result<std::string> result) mutable {
                    EXPECT_EQ(result, std::string("/"));
                    last.reset();
                    dropped.set_value();
                  });
    dropped.get_future().wait();
    EXPECT_EQ(pending.get(), shutDown);
  }
}

TEST(ShutdownTest, LetsCancellationDropTheManager) {
  const TestServer server(keepSilent);
  auto manager = managerWith({});
  CurlRequestManager& reference = *manager;
  const RequestHandle request = reference.get(*URL::parse(server.url()), {},
                                              [last = std::move(manager)](Result<std::string>) {});
  server.waitForRequests(1);
  EXPECT_TRUE(request->cancel());
}

TEST(ShutdownTest, CanWaitForWhatIsUnderWay) {
  std::promise<void> gate;
  const auto opened = gate.get_future().share();
  const TestServer server([&](ServerConnection& connection, const ReceivedRequest&) {
    opened.wait();
    connection.answer(200, "/");
  });
  const auto manager = managerWith({.maximumConnectionsPerHost = 1});
  EXPECT_TRUE(manager->waitUntilIdle(0ms));
  std::vector<std::future<Result<std::string>>> results;
  for (int i = 0; i < 3; ++i) results.push_back(start(*manager, Verb::get, server.url()));
  const RequestHandle cancelled = manager->get(*URL::parse(server.url()), {}, nullptr);
  EXPECT_FALSE(manager->waitUntilIdle(1ms));
  EXPECT_TRUE(cancelled->cancel());
  gate.set_value();
  EXPECT_TRUE(manager->waitUntilIdle(30s));
  for (auto& result : results) EXPECT_EQ(result.get(), std::string("/"));

  std::promise<bool> inside;
  manager->get(*URL::parse(server.url()), {},
               [&](Result<std::string>) { inside.set_value(manager->waitUntilIdle(30s)); });
  EXPECT_FALSE(inside.get_future().get()) << "the thread cannot wait for itself";
}

TEST(ShutdownDeathTest, WaitingInAHandlerSaysSo) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto run = [](bool drains) {
    const TestServer server(answering("/"));
    const auto manager = managerWith({});
    std::promise<void> never;
    manager->get(*URL::parse(server.url()), {}, [&](Result<std::string>) {
      const RequestHandle next = manager->get(*URL::parse(server.url()), {}, nullptr);
      drains ? MainQueue::main().runUntil(next) : MainQueue::main().wait(next);
    });
    never.get_future().wait();
  };
  for (const bool drains : {false, true}) {
    EXPECT_DEATH(run(drains), "Fatal error: nobody can wait for a request on a transport's thread");
  }
}

// A child has got the parent's connections and none of its threads.
TEST(ShutdownDeathTest, AForkedProcessIsToldAtOnce) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto run = [] {
    const TestServer server(answering("/"));
    const auto manager = managerWith({});
    const auto unused = managerWith({});
    if (!get(*manager, server.url())) std::_Exit(2);
    const pid_t child = ::fork();
    if (child == 0) {
      const auto result = get(*manager, server.url());
      const bool isTold =
          result.error() && result.error()->message().find("forked") != std::string::npos;
      if (!isTold || !manager->shutdown(30s)) std::_Exit(3);
      if (!mayStartThreadsInAChild) std::_Exit(0);
      // One that was made before the fork, but never used, is as good as a new one.
      const bool works = get(*managerWith({}), server.url()) == std::string("/") &&
                         get(*unused, server.url()) == std::string("/");
      std::_Exit(works ? 0 : 4);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    const std::size_t connections = mayStartThreadsInAChild ? 3 : 1;
    if (!get(*manager, server.url()) || server.connectionCount() != connections) std::_Exit(5);
    std::_Exit(WIFEXITED(status) ? WEXITSTATUS(status) : 6);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

// Threads that come and go with their managers, while requests are started and cancelled.
TEST(ShutdownTest, MayComeAtAnyMoment) {
  const TestServer server(answering("/"));
  for (int round = 0; round < 50; ++round) {
    auto manager = managerWith({});
    std::vector<std::future<Result<std::string>>> results;
    std::thread starting([&] {
      for (int i = 0; i < 20; ++i) results.push_back(start(*manager, Verb::get, server.url()));
    });
    EXPECT_TRUE(manager->shutdown(30s));
    starting.join();
    for (auto& result : results) {
      const auto outcome = result.get();
      EXPECT_TRUE(outcome == shutDown || outcome == std::string("/")) << outcome.error()->message();
    }
  }
}

}  // namespace
}  // namespace orvane
