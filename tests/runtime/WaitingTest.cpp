// SPDX-License-Identifier: Apache-2.0
// Requests that wait: for a connection, for one another, and how long, and how many.
#include "tests/runtime/support/Calls.h"
#include "tests/runtime/support/HTTP2.h"
#include "tests/runtime/support/TestServer.h"
#include <Orvane/GoogleTest.h>

#include <future>
#include <string>
#include <thread>
#include <vector>

namespace orvane {
namespace {

using Kind = TransportError::Kind;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

const std::string ok = "ok";

// The handshake never ends: the test would not either.
TEST(WaitingTest, HandshakeThatHangsHoldsUpNobodyElse) {
  const Authority authority;
  std::promise<void> end;
  const auto ended = end.get_future().share();
  const TestServer server(
      [&](ServerConnection& connection, std::size_t number) {
        if (number == 0) return ended.wait();
        while (connection.receive()) connection.answer(200, ok);
      },
      authority.issue({}));
  const auto manager = managerWith({.connectTimeout = 0ms, .caPEM = authority.pem()});
  auto stuck = start(*manager, Verb::get, server.url());
  server.waitForConnections(1);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(get(*manager, server.url()), ok);
  EXPECT_TRUE(manager->shutdown(30s));
  EXPECT_EQ(kindOf(stuck.get()), Kind::cancelled);
  end.set_value();
}

// A connection whose handshake ends in time is waited for: there is no other.
TEST(WaitingTest, ManyThatStartAtOnceAllEnd) {
  const Authority authority;
  const TestServer server(answering(ok), authority.issue({}));
  const auto manager = managerWith({.caPEM = authority.pem()});
  for (int round = 0; round < 3; ++round) {
    std::vector<std::future<Result<std::string>>> results[4];
    std::vector<std::thread> threads;
    for (auto& own : results) {
      threads.emplace_back([&] {
        for (int i = 0; i < 250; ++i) own.push_back(start(*manager, Verb::get, server.url()));
      });
    }
    for (std::thread& thread : threads) thread.join();
    for (auto& own : results) {
      for (auto& result : own) {
        ASSERT_EQ(result.wait_for(60s), std::future_status::ready) << "nobody woke the transport";
        EXPECT_EQ(result.get(), ok);
      }
    }
  }
  EXPECT_LE(server.connectionCount(), 8U);
}

// Who comes while the first connection is being made finds that it carries them all.
TEST(WaitingTest, ManyShareAConnectionOfHTTP2) {
  const Authority authority;
  const TestServer server(
      [](ServerConnection& connection, std::size_t) {
        HTTP2Connection http(connection);
        while (const auto stream = http.receive()) http.answer(*stream, ok);
      },
      authority.issue({}), "h2");
  const auto manager = managerWith({.caPEM = authority.pem()});
  std::vector<std::future<Result<std::string>>> results;
  for (int i = 0; i < 90; ++i) {
    const Verb verb = i % 2 == 0 ? Verb::get : Verb::post;
    results.push_back(start(*manager, verb, server.url(), verb == Verb::get ? "" : "body"));
  }
  for (auto& result : results) EXPECT_EQ(result.get(), ok);
  EXPECT_EQ(server.connectionCount(), 1U);
}

// The first one has all the time there is, and the only connection: the others do not wait for it.
TEST(WaitingTest, DeadlinesHoldInTheLine) {
  const TestServer server(keepSilent);
  const auto manager =
      managerWith({.idleTimeout = 0s, .totalTimeout = 0ms, .maximumConnectionsPerHost = 1});
  auto first = start(*manager, Verb::get, server.url());
  server.waitForRequests(1);
  std::vector<std::future<Result<std::string>>> results;
  for (int i = 0; i < 5; ++i) results.push_back(startFor(*manager, server.url(), i * 20ms));
  for (auto& result : results) EXPECT_EQ(kindOf(result.get()), Kind::timeOut);
  EXPECT_EQ(first.wait_for(0s), std::future_status::timeout);
  EXPECT_TRUE(manager->shutdown(30s));
}

TEST(WaitingTest, WhatIsTooLateIsNotSent) {
  std::atomic<int> requests = 0;
  const TestServer server([&](ServerConnection& connection, const ReceivedRequest&) {
    ++requests;
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\n/");
  });
  const auto manager = managerWith({});
  EXPECT_TRUE(get(*manager, server.url()));
  EXPECT_EQ(kindOf(startFor(*manager, server.url(), -1s).get()), Kind::timeOut);
  EXPECT_TRUE(get(*manager, server.url()));
  EXPECT_EQ(requests, 2);
}

TEST(WaitingTest, NoMoreThanAllowed) {
  const TestServer server(keepSilent);
  const auto manager = managerWith({.maximumConnectionsPerHost = 1, .maximumWaitingRequests = 2});
  std::vector<std::future<Result<std::string>>> pending;
  pending.push_back(start(*manager, Verb::get, server.url()));
  server.waitForRequests(1);
  for (int i = 0; i < 2; ++i) pending.push_back(start(*manager, Verb::get, server.url()));
  EXPECT_EQ(get(*manager, server.url()), Error(TransportError(Kind::overloaded)));
  // Who gives up makes room.
  const RequestHandle last = manager->get(*URL::parse(server.url()), {}, nullptr);
  EXPECT_TRUE(last->isFinished());
  EXPECT_TRUE(manager->shutdown(30s));
  for (auto& result : pending) EXPECT_EQ(kindOf(result.get()), Kind::cancelled);
}

// The whole takes longer than nothing may move, in either direction.
TEST(WaitingTest, WhatTricklesIsNotIdle) {
  constexpr auto idle = 1000ms;
  constexpr std::size_t pieceSize = std::size_t{512} << 10U;
  constexpr std::size_t pieceCount = 32;  // more than the systems take off the hands of both
  const Authority authority;
  std::promise<void> never;
  const TestServer server(
      [pause = never.get_future().share()](ServerConnection& connection, std::size_t number) {
        const bool isUpload = number == 0;
        if (!isUpload) {
          static_cast<void>(connection.receive());
          connection.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
        }
        for (std::size_t i = 0; i < pieceCount; ++i) {
          pause.wait_for(40ms);
          isUpload ? void(connection.receiveBytes(pieceSize)) : void(connection.send("1\r\nx\r\n"));
        }
        connection.send(isUpload ? "HTTP/1.1 204 Done\r\n\r\n" : "0\r\n\r\n");
        connection.waitUntilClosed();
      },
      authority.issue({}));
  const auto manager = managerWith({.idleTimeout = idle, .caPEM = authority.pem()});
  auto upload = start(*manager, Verb::put, server.url(), std::string(pieceCount * pieceSize, 'x'));
  server.waitForConnections(1);
  EXPECT_EQ(get(*manager, server.url()), std::string(pieceCount, 'x'));
  EXPECT_EQ(upload.get(), std::string());
}

// Two answers, each of which fits, of which the second finds the memory taken.
TEST(WaitingTest, AnswersShareTheMemory) {
  std::promise<void> end;
  const auto ended = end.get_future().share();
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 70000\r\n\r\n";
  const std::string half(35'000, 'x');
  const TestServer server([&](ServerConnection& connection, const ReceivedRequest& request) {
    connection.send(head + half);
    if (request.target() == "/first") ended.wait();
    connection.send(half);
  });
  const auto manager = managerWith({.maximumAnswerMemory = 100'000});
  auto first = start(*manager, Verb::get, server.url("/first"));
  server.waitForRequests(1);
  // The transport's thread has seen the first half once it has answered a later request.
  Result<std::string> second = get(*manager, server.url("/second"));
  for (int i = 0; i < 1000 && kindOf(second) != Kind::tooLarge; ++i) {
    second = get(*manager, server.url("/second"));
  }
  EXPECT_EQ(kindOf(second), Kind::tooLarge);
  end.set_value();
  EXPECT_EQ(first.get().value()->size(), 70'000U);
  EXPECT_EQ(get(*manager, server.url("/second")).value()->size(), 70'000U);
}

}  // namespace
}  // namespace orvane
