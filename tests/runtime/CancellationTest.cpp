// SPDX-License-Identifier: Apache-2.0
// Cancelling requests, from every side and at every moment.
#include "tests/runtime/support/Calls.h"
#include "tests/runtime/support/TestServer.h"
#include "tests/support/Outcome.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Runtime/Transfer.h>
#include <Orvane/Runtime/TransferLoop.h>

#include <array>
#include <atomic>
#include <chrono>
#include <deque>
#include <latch>
#include <thread>
#include <vector>

namespace orvane {
namespace {

// What became of a request: its handler was called, or its cancellation answered true.
struct Fate {
  std::atomic<int> handled = 0;
  std::atomic<bool> cancelled = false;
};

// Counts a call, and whether it came after the cancellation had been promised.
Completion<std::string> handlerFor(Fate& fate, std::atomic<int>& late) {
  return [&fate, &late](Result<std::string>) {
    if (fate.cancelled) ++late;
    ++fate.handled;
  };
}

void expectOneFateEach(const std::deque<Fate>& fates, const std::atomic<int>& late) {
  std::size_t undecided = 0;
  for (const Fate& fate : fates) {
    if (fate.handled + (fate.cancelled ? 1 : 0) != 1) ++undecided;
  }
  EXPECT_EQ(undecided, 0U) << "requests handled twice, handled and cancelled, or neither";
  EXPECT_EQ(late, 0) << "handlers called after cancel() had answered true";
}

TEST(CancellationTest, EitherHandlesOrCancelsWhenBothAreTriedAtOnce) {
  constexpr std::size_t count = 100'000;
  const auto loop = std::make_shared<TransferLoop>(TransportOptions{});
  const OutgoingRequest request{Verb::get, *URL::parse("https://backend.example"), {}, {}};
  std::deque<Fate> fates(count);
  std::atomic<int> late = 0;
  std::vector<std::shared_ptr<Transfer>> transfers;
  for (Fate& fate : fates) {
    transfers.push_back(std::make_shared<Transfer>(loop, request, handlerFor(fate, late)));
  }

  // The two run through the requests side by side, now one ahead and now the other.
  std::atomic<std::size_t> completed = 0;
  std::atomic<std::size_t> tried = 0;
  const auto keepUpWith = [](std::atomic<std::size_t>& other, std::size_t own) {
    while (other.load(std::memory_order_relaxed) + 8 < own) std::this_thread::yield();
  };
  std::thread completing([&] {
    for (std::size_t i = 0; i < count; completed = ++i) {
      keepUpWith(tried, i);
      transfers[i]->complete(std::string("answer"));
    }
  });
  for (std::size_t i = 0; i < count; tried = ++i) {
    keepUpWith(completed, i);
    if (transfers[i]->cancel()) fates[i].cancelled = true;
  }
  completing.join();
  expectOneFateEach(fates, late);
}

TEST(CancellationTest, HoldsWhileAnswersArrive) {
  constexpr std::size_t count = 4'000;
  const TestServer server(answering("answer"));
  const auto manager = managerWith({});
  std::deque<Fate> fates(count);
  std::atomic<int> late = 0;
  std::atomic<std::size_t> sent = 0;
  std::vector<RequestHandle> requests(count);
  std::thread cancelling([&] {
    for (std::size_t i = 0; i < count; ++i) {
      while (sent <= i) std::this_thread::yield();
      if (i % 3 == 0) continue;  // some are to be answered
      if (requests[i]->cancel()) fates[i].cancelled = true;
    }
  });
  for (std::size_t i = 0; i < count; ++i) {
    requests[i] = manager->get(*URL::parse(server.url()), {}, handlerFor(fates[i], late));
    ++sent;
  }
  cancelling.join();
  for (const RequestHandle& request : requests) EXPECT_TRUE(finishes(request));
  expectOneFateEach(fates, late);
  EXPECT_EQ(get(*manager, server.url()), std::string("answer")) << "it must still work afterwards";
}

TEST(CancellationTest, LetsGoOfTheHandlerAndStopsTheTransfer) {
  std::promise<void> closed;
  const TestServer server([&](ServerConnection& connection, const ReceivedRequest&) {
    connection.waitUntilClosed();
    closed.set_value();
  });
  const auto manager = managerWith({});
  const Outcome<std::string> outcome;
  const RequestHandle request = manager->get(*URL::parse(server.url()), {}, outcome.handler());
  server.waitForRequests(1);
  EXPECT_FALSE(request->isFinished());

  EXPECT_TRUE(request->cancel());
  EXPECT_FALSE(outcome.isHeld());
  EXPECT_TRUE(request->isFinished());
  EXPECT_TRUE(request->cancel()) << "once more changes nothing";
  closed.get_future().wait();
  EXPECT_EQ(outcome.count(), 0U);
}

TEST(CancellationTest, ComesTooLateInsideTheHandler) {
  const TestServer server(answering("answer"));
  const auto manager = managerWith({});
  std::promise<RequestHandle> self;
  std::promise<bool> cancelled;
  const RequestHandle request =
      manager->get(*URL::parse(server.url()), {},
                   [own = self.get_future(), &cancelled](Result<std::string>) mutable {
                     cancelled.set_value(own.get()->cancel());
                   });
  self.set_value(request);
  EXPECT_FALSE(cancelled.get_future().get());
  EXPECT_TRUE(finishes(request));
  EXPECT_FALSE(request->cancel());
}

// Handlers run on the transport's own thread and may do with it what they like.
TEST(CancellationTest, WorksFromAnotherRequestsHandler) {
  const TestServer server([](ServerConnection& connection, const ReceivedRequest& request) {
    if (request.target() == "/slow") return connection.waitUntilClosed();
    connection.answer(200, request.target());
  });
  const auto manager = managerWith({});
  const Outcome<std::string> slow;
  const RequestHandle slowRequest =
      manager->get(*URL::parse(server.url("/slow")), {}, slow.handler());
  server.waitForRequests(1);

  std::promise<bool> cancelled;
  std::promise<Result<std::string>> next;
  manager->get(*URL::parse(server.url("/first")), {}, [&](Result<std::string>) {
    cancelled.set_value(slowRequest->cancel());
    manager->get(*URL::parse(server.url("/next")), {},
                 [&](Result<std::string> result) { next.set_value(std::move(result)); });
  });
  EXPECT_TRUE(cancelled.get_future().get());
  EXPECT_EQ(next.get_future().get(), std::string("/next"));
  EXPECT_EQ(slow.count(), 0U);
}

// While one handler runs, the answers to two other requests arrive. Each of their handlers cancels
// the other request.
TEST(CancellationTest, HoldsAmongAnswersThatCameTogether) {
  std::promise<void> mayAnswer;
  const std::shared_future<void> isOpen = mayAnswer.get_future().share();
  std::latch unanswered(2);
  const TestServer server([&](ServerConnection& connection, const ReceivedRequest& request) {
    if (request.target() == "/gate") return connection.answer(200, "");
    isOpen.wait();
    connection.answer(200, "answer");
    unanswered.count_down();
  });
  const auto manager = managerWith({});
  std::array<RequestHandle, 2> requests;
  std::atomic<int> handled = 0;
  std::atomic<int> cancelled = 0;
  for (std::size_t own : {0U, 1U}) {
    requests[own] = manager->get(*URL::parse(server.url()), {}, [&, own](Result<std::string>) {
      ++handled;
      if (requests[1 - own]->cancel()) ++cancelled;
    });
  }
  server.waitForRequests(2);
  manager->get(*URL::parse(server.url("/gate")), {}, [&](Result<std::string>) {
    mayAnswer.set_value();
    unanswered.wait();
  });
  EXPECT_TRUE(manager->waitUntilIdle(std::chrono::seconds(60)));
  EXPECT_EQ(handled, 1);
  EXPECT_EQ(cancelled, 1);
}

}  // namespace
}  // namespace orvane
