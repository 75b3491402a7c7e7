// SPDX-License-Identifier: Apache-2.0
// Connections that end between requests and under them: what is sent again, and what is not.
#include "tests/runtime/support/Calls.h"
#include "tests/runtime/support/HTTP2.h"
#include "tests/runtime/support/TestServer.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Runtime/OpenSockets.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <atomic>
#include <future>
#include <optional>
#include <semaphore>
#include <string>
#include <tuple>
#include <vector>

namespace orvane {
namespace {

using Kind = TransportError::Kind;

const std::string ok = "ok";

// Reads and writes, over connections that the server has closed in the meantime.
TEST(RepetitionTest, NoticesWhatServersCloseInGoodOrder) {
  const Authority authority;
  for (const bool isEncrypted : {false, true}) {
    SCOPED_TRACE(isEncrypted ? "https" : "http");
    std::counting_semaphore<> closed(0);
    const TestServer server(
        [&](ServerConnection& connection, const ReceivedRequest&) {
          connection.answer(200, ok);
          connection.end();
          closed.release();
        },
        isEncrypted ? std::optional(authority.issue({})) : std::nullopt);
    const auto manager = managerWith({.caPEM = authority.pem()});
    constexpr std::size_t count = 14;
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(await(*manager, i % 2 == 0 ? Verb::post : Verb::get, server.url(), ""), ok) << i;
      closed.acquire();
    }
    EXPECT_EQ(server.requests().size(), count);
  }
}

// The server reads the request and leaves without a word: over a kept connection, and over new
// ones.
TEST(RepetitionTest, RepeatsAReadOnceAndAWriteNever) {
  const Authority authority;
  const TestServer server(
      [&](ServerConnection& connection, const ReceivedRequest& request) {
        if (request.target() == "/keep") return connection.answer(200, ok);
        if (request.target() == "/end") return connection.end();
        connection.cut();
      },
      authority.issue({}));
  const auto manager = managerWith({.caPEM = authority.pem()});
  const std::tuple<Verb, const char*, std::size_t> rows[] = {
      {Verb::get, "/cut", 2},  {Verb::get, "/end", 2}, {Verb::post, "/cut", 1},
      {Verb::post, "/end", 1}, {Verb::put, "/cut", 1}, {Verb::delete_, "/end", 1},
  };
  for (const auto& [verb, target, attempts] : rows) {
    SCOPED_TRACE(std::string(wireText(verb)) + target);
    ASSERT_EQ(get(*manager, server.url("/keep")), ok);
    const std::size_t before = server.requests().size();
    EXPECT_EQ(kindOf(await(*manager, verb, server.url(target), "")), Kind::cutOff);
    EXPECT_EQ(server.requests().size(), before + attempts);
  }
}

// libcurl counts whole seconds: with one allowed, two must have passed. What lets them pass is a
// request that nobody answers.
TEST(RepetitionTest, LeavesConnectionsAloneThatHaveBeenIdleForLong) {
  const TestServer server(answering(ok));
  const TestServer silent(keepSilent);
  const auto manager = managerWith({.maximumIdleConnectionAge = std::chrono::seconds(1)});
  for (int i = 0; i < 2; ++i) EXPECT_EQ(get(*manager, server.url()), ok);
  EXPECT_EQ(server.connectionCount(), 1U);
  const auto pause = managerWith({.totalTimeout = std::chrono::milliseconds(2100)});
  EXPECT_EQ(kindOf(get(*pause, silent.url())), Kind::timeOut);
  EXPECT_EQ(get(*manager, server.url()), ok);
  EXPECT_EQ(server.connectionCount(), 2U);
}

// Error codes of a request's stream (RFC 9113, section 7), and two ways to end the connection.
enum class Farewell : std::uint8_t { error = 2, refusal = 7, http1 = 13, goAway, none };

// The second request over the first connection meets the farewell; other connections answer.
class HTTP2Server {
 public:
  explicit HTTP2Server(Farewell farewell) : farewell_(farewell) {}

  [[nodiscard]] std::string url() const { return server_.url(); }
  [[nodiscard]] TransportOptions options() const { return {.caPEM = authority_.pem()}; }
  [[nodiscard]] int requestCount() const { return requestCount_; }

 private:
  void serve(ServerConnection& connection, std::size_t number) {
    if (number > 0 && farewell_ == Farewell::http1) {
      for (; connection.receive(); connection.answer(200, ok)) ++requestCount_;
      return;
    }
    HTTP2Connection http(connection);
    for (int count = 0; const auto stream = http.receive(); ++count) {
      ++requestCount_;
      if (number > 0 || count != 1) {
        http.answer(*stream, ok);
      } else if (farewell_ == Farewell::goAway) {
        http.goAway(*stream - 2);
      } else if (farewell_ != Farewell::none) {
        http.reset(*stream, static_cast<std::uint8_t>(farewell_));
      } else {
        return connection.end();
      }
    }
  }

  const Farewell farewell_;
  std::atomic<int> requestCount_ = 0;
  const Authority authority_;
  const TestServer server_{
      [this](ServerConnection& connection, std::size_t number) { serve(connection, number); },
      authority_.issue({}), "h2"};
};

TEST(RepetitionTest, RepeatsOverHTTP2WhatTheServerHasNotLookedAt) {
  const std::tuple<Farewell, Verb, bool, int> rows[] = {
      {Farewell::goAway, Verb::get, true, 3},  {Farewell::goAway, Verb::post, true, 3},
      {Farewell::refusal, Verb::get, true, 3}, {Farewell::refusal, Verb::post, true, 3},
      {Farewell::http1, Verb::get, true, 3},   {Farewell::http1, Verb::post, true, 3},
      {Farewell::none, Verb::get, true, 3},    {Farewell::none, Verb::post, false, 2},
      {Farewell::error, Verb::post, false, 2},
  };
  for (const auto& [farewell, verb, succeeds, count] : rows) {
    SCOPED_TRACE(std::string(wireText(verb)) + " " + std::to_string(static_cast<int>(farewell)));
    const HTTP2Server server(farewell);
    const auto manager = managerWith(server.options());
    ASSERT_EQ(get(*manager, server.url()), ok);
    const auto result = await(*manager, verb, server.url(), verb == Verb::get ? "" : "body");
    if (succeeds) {
      EXPECT_EQ(result, ok);
    } else {
      EXPECT_EQ(kindOf(result), Kind::cutOff);
    }
    EXPECT_EQ(server.requestCount(), count);
  }
}

// The farewell is told to the one that has been waiting, and concerns the other.
TEST(RepetitionTest, HearsAFarewellThatTheFirstRequestIsTold) {
  const Authority authority;
  std::promise<void> first;
  const TestServer server(
      [&](ServerConnection& connection, std::size_t number) {
        HTTP2Connection http(connection);
        const auto waiting = http.receive();
        if (number > 0) return http.answer(*waiting, ok);
        first.set_value();
        static_cast<void>(http.receive());
        http.goAway(*waiting);
        http.answer(*waiting, ok);
        connection.waitUntilClosed();
      },
      authority.issue({}), "h2");
  const auto manager = managerWith({.caPEM = authority.pem()});
  auto waiting = start(*manager, Verb::get, server.url());
  first.get_future().wait();
  EXPECT_EQ(await(*manager, Verb::post, server.url(), "body"), ok);
  EXPECT_EQ(waiting.get(), ok);
}

// The system gives a port to several connections, where they lead to different places. (Datagrams
// need nobody who listens.)
TEST(RepetitionTest, TellsConnectionsFromTheSamePortApart) {
  OpenSockets sockets;
  curl_sockaddr kind{};
  kind.family = AF_INET;
  kind.socktype = SOCK_DGRAM;
  sockaddr_in own{};
  own.sin_family = AF_INET;
  auto* name = reinterpret_cast<sockaddr*>(&own);
  socklen_t size = sizeof own;
  std::vector<curl_socket_t> opened;
  for (const char* host : {"127.0.0.1", "127.0.0.2"}) {
    const curl_socket_t socket = OpenSockets::open(&sockets, CURLSOCKTYPE_IPCXN, &kind);
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    ASSERT_EQ(::bind(socket, name, size), 0);
    ASSERT_EQ(::getsockname(socket, name, &size), 0);
    sockaddr_in server = own;
    ::inet_pton(AF_INET, host, &server.sin_addr);
    server.sin_port = htons(443);
    ASSERT_EQ(::connect(socket, reinterpret_cast<sockaddr*>(&server), sizeof server), 0);
    opened.push_back(socket);
  }
  const int port = ntohs(own.sin_port);
  EXPECT_EQ(sockets.find(port, "127.0.0.1", 443)->descriptor, opened[0]);
  EXPECT_EQ(sockets.find(port, "127.0.0.2", 443)->descriptor, opened[1]);
  for (const curl_socket_t socket : opened) OpenSockets::close(&sockets, socket);
  EXPECT_EQ(sockets.find(port, "127.0.0.1", 443), nullptr);
}

}  // namespace
}  // namespace orvane
