// SPDX-License-Identifier: Apache-2.0
// What an observer sees of exchanges, and that nothing secret leaks anywhere.
#include "tests/runtime/support/Calls.h"
#include "tests/runtime/support/TestServer.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Runtime/TransportError.h>
#include <Orvane/Testing/RecordingLogger.h>

#include <gmock/gmock.h>

#include <future>
#include <iterator>
#include <sstream>
#include <tuple>
#include <vector>

namespace orvane {
namespace {

using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::Pair;

// Every part of an exchange as one text.
std::string textOf(const Exchange& exchange) {
  std::ostringstream text;
  text << wireText(exchange.verb) << ' ' << exchange.url << '\n';
  for (const auto& [name, value] : exchange.requestHeaders) text << name << ": " << value << '\n';
  text << exchange.requestBody << '\n' << exchange.statusCode.value_or(0) << '\n';
  for (const auto& [name, value] : exchange.responseHeaders) text << name << ": " << value << '\n';
  text << exchange.responseBody << '\n';
  if (exchange.error) text << exchange.error->message() << '\n';
  return text.str();
}

// Keeps exchanges. The transport must be shut down before they are read.
ExchangeObserver keepingIn(std::vector<Exchange>& exchanges) {
  return [&](const Exchange& exchange) { exchanges.push_back(exchange); };
}

TEST(ObservationTest, ShowsEveryExchangeWithoutSecrets) {
  const TestServer server([](ServerConnection& connection, const ReceivedRequest&) {
    connection.answer(200, "{\"userId\":\"42\"}",
                      "X-Trace: 7\r\nSet-Cookie: session=hidden\r\n"
                      "location: /sign-in?email=ann@hidden.example#token=hidden\r\n"
                      "Content-Location: /users#hidden\r\n");
  });
  const std::string url = server.url("/users/42?email=ann@hidden.example&flag&x=1&empty=#end");
  const Headers headers = {{"authorization", "Bearer hidden"}, {"X-Kind", "test"}};
  std::vector<Exchange> exchanges;
  for (const bool seesSecrets : {false, true}) {
    const auto manager =
        managerWith({.observer = keepingIn(exchanges), .observerSeesSecrets = seesSecrets});
    ASSERT_TRUE(await(*manager, Verb::post, url, "body", headers));
    manager->shutdown();
  }

  ASSERT_EQ(exchanges.size(), 2U);
  const Exchange& exchange = exchanges.front();
  EXPECT_EQ(exchange.verb, Verb::post);
  EXPECT_EQ(exchange.url, server.url("/users/42?email=…&…&x=…&empty=…"));
  EXPECT_EQ(exchange.requestHeaders, (Headers{{"authorization", "…"}, {"X-Kind", "test"}}));
  EXPECT_EQ(exchange.requestBody, "");
  EXPECT_EQ(exchange.requestSize, 4U);
  EXPECT_EQ(exchange.statusCode, 200);
  EXPECT_THAT(exchange.responseHeaders, IsSupersetOf({Pair("X-Trace", "7"), Pair("Set-Cookie", "…"),
                                                      Pair("location", "/sign-in?email=…"),
                                                      Pair("Content-Location", "/users")}));
  EXPECT_EQ(exchange.responseBody, "");
  EXPECT_EQ(exchange.responseSize, 15U);
  EXPECT_FALSE(exchange.error);
  EXPECT_GT(exchange.duration.count(), 0);

  // To who asks for them.
  const Exchange& open = exchanges.back();
  EXPECT_EQ(open.url, url);
  EXPECT_EQ(open.requestHeaders, headers);
  EXPECT_EQ(open.requestBody, "body");
  EXPECT_EQ(open.responseBody, "{\"userId\":\"42\"}");
}

TEST(ObservationTest, ShowsFailuresAndCancellations) {
  const TestServer server([](ServerConnection& connection, const ReceivedRequest& request) {
    if (request.target() == "/refused") return connection.answer(403, "no");
    connection.waitUntilClosed();
  });
  std::vector<Exchange> exchanges;
  const auto manager = managerWith(
      {.idleTimeout = {}, .maximumConnectionsPerHost = 1, .observer = keepingIn(exchanges)});
  EXPECT_FALSE(get(*manager, server.url("/refused")));
  const RequestHandle request = manager->get(*URL::parse(server.url("/silent")), {}, nullptr);
  server.waitForRequests(2);
  // These wait for the connection: one is cancelled, one runs out of time, one is there at the end.
  EXPECT_TRUE(manager->get(*URL::parse(server.url("/cancelled")), {}, nullptr)->cancel());
  EXPECT_FALSE(startFor(*manager, server.url("/late"), std::chrono::milliseconds(1)).get());
  EXPECT_TRUE(request->cancel());
  auto last = start(*manager, Verb::get, server.url("/silent"));
  manager->shutdown();

  const Error cancelled = TransportError(TransportError::Kind::cancelled);
  const Error late = TransportError(TransportError::Kind::timeOut, "the answer is not complete");
  const std::tuple<const char*, std::optional<std::int64_t>, Error> rows[] = {
      {"/refused", 403, NetworkError::invalidStatusCode(403)},
      {"/cancelled", {}, cancelled},
      {"/late", {}, late},
      {"/silent", {}, cancelled},
      {"/silent", {}, cancelled},
  };
  ASSERT_EQ(exchanges.size(), std::size(rows));
  for (std::size_t i = 0; i < exchanges.size(); ++i) {
    const auto& [target, status, error] = rows[i];
    EXPECT_EQ(exchanges[i].url, server.url(target));
    EXPECT_EQ(exchanges[i].statusCode, status) << target;
    EXPECT_EQ(exchanges[i].error, error) << target;
  }
}

// Sends secrets through every way of succeeding and failing, and searches all that comes out.
TEST(ObservationTest, LeaksNoSecretAnywhere) {
  const std::vector<std::string> secrets = {"s3cr3t-token", "ann@private.example", "push-s3cr3t",
                                            "body-s3cr3t", "answer-s3cr3t"};
  const Authority authority;
  const auto handler = [](ServerConnection& connection, const ReceivedRequest& request) {
    const std::string target = request.target();
    const std::string echo = "answer-s3cr3t " + request.head + request.body;
    if (target.starts_with("/ok")) return connection.answer(200, echo);
    if (target.starts_with("/refused")) return connection.answer(401, echo);
    if (target.starts_with("/redirect")) {
      return connection.answer(302, echo, "Location: /ok" + target.substr(9) + "\r\n");
    }
    if (target.starts_with("/garbage")) {
      connection.send(echo);
    } else {
      connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9999\r\n\r\n" + echo);
    }
    connection.cut();
  };
  const TestServer server(handler, authority.issue({}));
  const TestServer plain(handler);
  const std::string query = "?email=ann@private.example&token=push-s3cr3t";
  const std::string port = std::to_string(plain.port());
  const std::vector<std::string> urls = {
      server.url("/ok"),
      server.url("/refused"),
      server.url("/redirect"),
      server.url("/garbage"),
      server.url("/cut"),
      "https://127.0.0.1:1/",
      "https://127.0.0.1:" + port + "/",
      "https://" + std::string(64, 'x') + ".example/",
      "http://backend.example/",
      "ftp://backend.example/",
      "/relative",
  };
  const RecordingLogger logger;
  std::vector<Exchange> exchanges;
  std::string sinks;
  for (const std::string& ca : {authority.pem(), Authority().pem()}) {
    const auto manager = managerWith({.connectTimeout = std::chrono::milliseconds(200),
                                      .maximumAnswerSize = 100'000,
                                      .caPEM = ca,
                                      .observer = keepingIn(exchanges)});
    for (const std::string& url : urls) {
      const auto result = await(*manager, Verb::post, url + query, "body-s3cr3t",
                                {{"Authorization", "Bearer s3cr3t-token"}});
      if (result.error()) sinks += result.error()->message() + "\n";
    }
  }
  for (const Exchange& exchange : exchanges) sinks += textOf(exchange);
  for (const auto& line : logger.lines()) sinks += line.message + "\n";
  EXPECT_GE(exchanges.size(), 12U);
  for (const std::string& secret : secrets) EXPECT_THAT(sinks, Not(HasSubstr(secret)));
}

}  // namespace
}  // namespace orvane
