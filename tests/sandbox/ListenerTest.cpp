// SPDX-License-Identifier: Apache-2.0
//
// The server by itself, from the far end of bare connections: what it refuses to read, the forms
// that its answers take, and who waits for whom.
#include "http/Listener.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

namespace orvane::sandbox::test {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class Peer {
 public:
  explicit Peer(int port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    const timeval patience{.tv_sec = 30, .tv_usec = 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  ~Peer() { ::close(socket_); }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void send(std::string_view bytes) const {
    while (!bytes.empty()) {
      const auto sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent <= 0) return;
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
  }
  void sayNoMore() const { ::shutdown(socket_, SHUT_WR); }

  /// What comes up to and with the mark; without one up to the end of the connection.
  std::string read(std::string_view mark = {}) {
    for (;;) {
      const auto end = mark.empty() ? std::string::npos : received_.find(mark);
      if (end != std::string::npos) {
        std::string text = received_.substr(0, end + mark.size());
        received_.erase(0, text.size());
        return text;
      }
      std::array<char, 65'536> piece{};
      const auto size = ::recv(socket_, piece.data(), piece.size(), 0);
      if (size <= 0) return std::exchange(received_, {}) + (size < 0 ? "<no end>" : "");
      received_.append(piece.data(), static_cast<std::size_t>(size));
    }
  }

  std::string ask(std::string_view request, std::string_view mark = {}) {
    send(request);
    return read(mark);
  }

 private:
  int socket_;
  std::string received_;
};

/// What arrived, in words.
Reply echo(const Request& request) {
  std::string text = request.method + " " + request.path + " [" + request.query + "]";
  for (const auto& [name, value] : request.headers) text.append(" " + name + "=" + value);
  Reply reply;
  reply.body = text + " {" + request.body + "}";
  reply.sendDate = false;
  return reply;
}

class ListenerTest : public testing::Test {
 protected:
  void serve(Listener::Handler handler = echo, Listener::Options options = {}) {
    listener_.emplace(options, clock_, [this, handler](const Request& request) {
      ++answered_;
      return handler(request);
    });
    listener_->start();
  }
  Peer peer() { return Peer{listener_->port()}; }
  std::string answerTo(std::string_view request) { return peer().ask(request); }

  ServerClock clock_{0};
  std::atomic<int> answered_ = 0;
  std::optional<Listener> listener_;
};

std::string post(const std::string& headers, const std::string& body = "") {
  return "POST / HTTP/1.1\r\nHost: a\r\n" + headers + "\r\n" + body;
}

TEST_F(ListenerTest, RefusesWhatCannotBeReadInOneWayOnly) {
  const std::string get = "GET / HTTP/1.1\r\nHost: a\r\n";
  const std::string chunked = "Transfer-Encoding: chunked\r\n";
  const struct {
    int status;
    std::string request;
  } rows[] = {{400, post("Content-Length: 3\r\nContent-Length: 4\r\n", "abcd")},
              {400, post("Content-Length: 3\r\nContent-Length: 3\r\n", "abc")},
              {400, post("Content-Length: 3, 3\r\n", "abc")},
              {400, post("Content-Length: -1\r\n")},
              {400, post("Content-Length: +3\r\n", "abc")},
              {400, post("Content-Length: 0x3\r\n", "abc")},
              {400, post("Content-Length: 99999999999999999999\r\n")},
              {400, post("Content-Length:\r\n")},
              {400, post("Content-Length : 3\r\n", "abc")},
              {400, post("Content-Length: 3\r\n" + chunked, "0\r\n\r\n")},
              {400, post(chunked + "Content-Length: 3\r\n", "0\r\n\r\n")},
              {400, post(chunked + chunked, "0\r\n\r\n")},
              {400, post("Transfer-Encoding: gzip\r\nContent-Length: 3\r\n", "abc")},
              {400, post("Transfer-Encoding: chunked, gzip\r\n", "0\r\n\r\n")},
              {400, post("Transfer-Encoding: xchunked\r\n", "0\r\n\r\n")},
              {501, post("Transfer-Encoding: gzip, chunked\r\n", "0\r\n\r\n")},
              {400, "POST / HTTP/1.0\r\n" + chunked + "\r\n0\r\n\r\n"},
              {400, post(chunked, "x\r\nabc\r\n0\r\n\r\n")},
              {400, post(chunked, "3\r\nabcd\r\n0\r\n\r\n")},
              {400, post(chunked, "3\nabc\r\n0\r\n\r\n")},
              {400, post(chunked, "3;" + std::string(90'000, 'x'))},
              {413, post(chunked, "100001\r\n")},
              {413, post("Content-Length: 1048577\r\n")},
              {413, post("Content-Length: 3000000\r\n", std::string(3'000'000, 'x'))},
              {400, "GET / HTTP/1.1\nHost: a\n\n"},
              {400, get + "A: b\nC: d\r\n\r\n"},
              {400, get + "A: b\rC: d\r\n\r\n"},
              {400, get + "A: b\r\n c\r\n\r\n"},
              {400, get + "A: b\r\n\tc\r\n\r\n"},
              {400, get + "A: b" + std::string(1, '\0') + "c\r\n\r\n"},
              {400, get + "A: b\x01\r\n\r\n"},
              {400, get + "A b: c\r\n\r\n"},
              {400, get + "A\r\n\r\n"},
              {400, get + ": b\r\n\r\n"},
              {400, get + "Host: b\r\n\r\n"},
              {400, "GET / HTTP/1.1\r\n\r\n"},
              {400, "GET / HTTP/2.0\r\nHost: a\r\n\r\n"},
              {400, "GET /\r\n\r\n"},
              {400, "GET /a b HTTP/1.1\r\nHost: a\r\n\r\n"},
              {400, "GET /" + std::string(1, '\0') + " HTTP/1.1\r\nHost: a\r\n\r\n"},
              {400, "\r\n\r\nGET / HTTP/1.1\r\nHost: a\r\n\r\n"},
              {400, "\x16\x03\x01\x02\n\r\n"},
              {414, "GET /" + std::string(8192, 'x') + " HTTP/1.1\r\nHost: a\r\n\r\n"},
              {414, "GET /" + std::string(100'000, 'x')},
              {431, get + "A: " + std::string(70'000, 'x') + "\r\n\r\n"},
              {431, get + "A: " + std::string(100'000, 'x')}};
  serve();
  for (const auto& [status, request] : rows) {
    const std::string answer = answerTo(request);
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 " + std::to_string(status))) << request.substr(0, 200);
    EXPECT_THAT(answer, HasSubstr("\r\nConnection: close\r\n")) << request.substr(0, 200);
    EXPECT_THAT(answer, EndsWith("\"}")) << request.substr(0, 200);
  }
  EXPECT_EQ(answered_, 0);
}

TEST_F(ListenerTest, ReadsRequestsAsTheyWereSent) {
  const std::string end = "Host: a\r\nConnection: close\r\n";
  const std::string seen = " Host=a Connection=close";
  const std::string longest = "/" + std::string(8191, 'x');
  const struct {
    std::string request;
    std::string body;
  } rows[] = {
      {"GET /a?b=c?d=/? HTTP/1.1\r\n" + end + "\r\n", "GET /a [b=c?d=/?]" + seen + " {}"},
      {"GET /%zz/\xC3\xA4#b HTTP/1.1\r\n" + end + "\r\n", "GET /%zz/\xC3\xA4#b []" + seen + " {}"},
      {"GET http://b/c HTTP/1.1\r\n" + end + "\r\n", "GET http://b/c []" + seen + " {}"},
      {"OPTIONS * HTTP/1.1\r\n" + end + "\r\n", "OPTIONS * []" + seen + " {}"},
      {"BREW / HTTP/1.1\r\n" + end + "\r\n", "BREW / []" + seen + " {}"},
      {"GET " + longest + " HTTP/1.1\r\n" + end + "\r\n", "GET " + longest + " []" + seen + " {}"},
      {"GET / HTTP/1.1\r\n" + end + "b: \t2 3 \r\nB:\r\n\r\n", "GET / []" + seen + " b=2 3 B= {}"},
      {"PUT / HTTP/1.1\r\n" + end + "Transfer-Encoding: Chunked\r\n\r\n" +
           "3;a=b\r\nabc\r\n0A\r\n0123456789\r\n0\r\nX-Late: 1\r\n\r\n",
       "PUT / []" + seen + " Transfer-Encoding=Chunked {abc0123456789}"},
      {"GET / HTTP/1.1\r\n" + end + "Content-Length: 3\r\n\r\nabc",
       "GET / []" + seen + " Content-Length=3 {}"}};
  serve();
  for (const auto& [request, body] : rows) {
    EXPECT_THAT(answerTo(request), EndsWith("\r\n\r\n" + body)) << request.substr(0, 200);
    Peer slow = peer();
    if (request.size() < 1000) {
      for (const char c : request) slow.send({&c, 1});
      EXPECT_THAT(slow.read(), EndsWith("\r\n\r\n" + body)) << request;
    }
  }
  // The body of one request is not the head of the next one.
  const std::string one = "PATCH /1 HTTP/1.1\r\nHost: a\r\nContent-Length: 4\r\n\r\nGET ";
  EXPECT_THAT(answerTo(one + "GET /2 HTTP/1.1\r\n" + end + "\r\n"),
              AllOf(HasSubstr("PATCH /1 [] Host=a Content-Length=4 {}HTTP/1.1 200 OK\r\n"),
                    EndsWith("GET /2 []" + seen + " {}")));
}

TEST_F(ListenerTest, AsksForABodyThatIsHeldBackUnlessItIsRefused) {
  serve();
  Peer sender = peer();
  const std::string expect = "Expect: 100-continue\r\n";
  EXPECT_EQ(sender.ask(post(expect + "Content-Length: 3\r\n"), "\r\n\r\n"),
            "HTTP/1.1 100 Continue\r\n\r\n");
  EXPECT_THAT(sender.ask("abc", "}"), EndsWith("{abc}"));
  EXPECT_THAT(answerTo(post(expect + "Content-Length: 3000000\r\n")), StartsWith("HTTP/1.1 413"));
}

TEST_F(ListenerTest, AnswersTakeTheFormThatTheRequestAllows) {
  serve([](const Request& request) {
    Reply reply;
    reply.sendDate = false;
    reply.body = "0123456789";
    if (request.path == "/204") reply.status = 204;
    if (request.path == "/299") reply.status = 299;
    if (request.path == "/cut") reply.cutAfterBytes = 4;
    if (request.path == "/none") reply.cutAfterBytes = 0;
    if (request.path == "/whole") reply.cutAfterBytes = 10;
    if (request.path == "/drop") reply.drop = true;
    if (request.path == "/empty") reply.body.clear();
    if (request.path == "/stream") {
      reply.stream = [left = 2]() mutable -> std::string_view {
        return left-- > 0 ? "0123456789" : "";
      };
    }
    return reply;
  });
  const std::string type = "Content-Type: application/json\r\n";
  const std::string ten = "Content-Length: 10\r\n" + type;
  const std::string open = "Keep-Alive: timeout=60\r\n\r\n";
  const std::string close = "Connection: close\r\n\r\n";
  const std::string chunked = type + "Transfer-Encoding: chunked\r\n";
  const struct {
    const char* line;
    std::string answer;
  } rows[] = {{"GET / HTTP/1.1", "200 OK\r\n" + ten + open + "0123456789"},
              {"HEAD / HTTP/1.1", "200 OK\r\n" + ten + open},
              {"GET / HTTP/1.0", "200 OK\r\n" + ten + close + "0123456789"},
              {"GET / HTTP/1.1\r\nConnection: close", "200 OK\r\n" + ten + close + "0123456789"},
              {"GET / HTTP/1.0\r\nConnection: keep-alive",
               "200 OK\r\n" + ten + "Connection: keep-alive\r\n" + open + "0123456789"},
              {"GET /204 HTTP/1.1", "204 No Content\r\n" + open},
              {"GET /299 HTTP/1.1", "299 \r\n" + ten + open + "0123456789"},
              {"GET /empty HTTP/1.1", "200 OK\r\nContent-Length: 0\r\n" + open},
              {"GET /cut HTTP/1.1", "200 OK\r\n" + ten + open + "0123"},
              {"GET /none HTTP/1.1", "200 OK\r\n" + ten + open},
              {"GET /whole HTTP/1.1", "200 OK\r\n" + ten + open + "0123456789"},
              {"HEAD /cut HTTP/1.1", "200 OK\r\n" + ten + open},
              {"GET /stream HTTP/1.1",
               "200 OK\r\n" + chunked + open + "a\r\n0123456789\r\na\r\n0123456789\r\n0\r\n\r\n"},
              {"HEAD /stream HTTP/1.1", "200 OK\r\n" + chunked + open},
              {"GET /stream HTTP/1.0", "200 OK\r\n" + type + close + "01234567890123456789"}};
  for (const auto& [line, answer] : rows) {
    Peer asking = peer();
    asking.send(std::string{line} + "\r\nHost: a\r\n\r\n");
    asking.sayNoMore();
    EXPECT_EQ(asking.read(), "HTTP/1.1 " + answer) << line;
  }
  EXPECT_EQ(answerTo("GET /drop HTTP/1.1\r\nHost: a\r\n\r\n"), "");
}

TEST_F(ListenerTest, ConnectionsWaitWithoutAThreadAndMakeRoomForOthers) {
  serve(echo, {.threads = 1, .connections = 20});
  const std::string request = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";
  std::vector<std::unique_ptr<Peer>> peers;
  for (int i = 0; i < 20; ++i) peers.push_back(std::make_unique<Peer>(listener_->port()));
  for (int round = 0; round < 2; ++round) {
    for (const auto& each : peers) EXPECT_THAT(each->ask(request, "{}"), EndsWith("{}"));
  }
  // The first one has been idle the longest.
  EXPECT_THAT(peer().ask(request, "{}"), EndsWith("{}"));
  EXPECT_EQ(peers.front()->read(), "");
  EXPECT_THAT(peers.back()->ask(request, "{}"), EndsWith("{}"));
}

TEST_F(ListenerTest, StopsOnceRequestsUnderWayAreAnswered) {
  std::promise<void> begun;
  std::promise<void> released;
  serve([&](const Request& request) {
    begun.set_value();
    released.get_future().wait();
    return echo(request);
  });
  Peer idle = peer();
  Peer reading = peer();
  reading.send("GET / HT");
  Peer asking = peer();
  asking.send("GET / HTTP/1.1\r\nHost: a\r\n\r\n");
  begun.get_future().wait();
  std::thread stopping{[this] { listener_->stop(); }};
  EXPECT_EQ(idle.read(), "");
  EXPECT_EQ(reading.read(), "");
  released.set_value();
  EXPECT_THAT(asking.read(), EndsWith("{}"));
  stopping.join();
}

// --- Viewers -------------------------------------------------------------------------------------

class ViewersTest : public ListenerTest {
 protected:
  /// One thread, so that whoever held it would keep everybody else waiting.
  void serveViewers() {
    serve(
        [this](const Request& request) {
          Reply reply = echo(request);
          if (request.path != "/events") return reply;
          reply.contentType = "text/event-stream";
          reply.stay = [this](std::shared_ptr<Viewer> viewer) {
            viewer->send("data: hello\n\n");
            came_.set_value(std::move(viewer));
          };
          return reply;
        },
        {.threads = 1});
  }
  /// The viewer at the near end of a connection that has got all headers.
  std::shared_ptr<Viewer> view(Peer& from, const std::string& version = "1.1") {
    came_ = {};
    from.send("GET /events HTTP/" + version + "\r\nHost: a\r\n\r\n");
    EXPECT_THAT(from.read("\r\n\r\n"), HasSubstr("Content-Type: text/event-stream\r\n"));
    return came_.get_future().get();
  }
  static bool leaves(const Viewer& viewer) {
    const auto end = std::chrono::steady_clock::now() + 30s;
    while (!viewer.isGone() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    return viewer.isGone();
  }

  std::promise<std::shared_ptr<Viewer>> came_;
};

TEST_F(ViewersTest, GetWhatIsSentToThemAndHoldNoThread) {
  serveViewers();
  Peer first = peer();
  Peer second = peer();
  const auto near = view(first);
  const auto nearSecond = view(second, "1.0");
  EXPECT_EQ(first.read("\n\n\r\n"), "d\r\ndata: hello\n\n\r\n");
  EXPECT_EQ(second.read("\n\n"), "data: hello\n\n");
  EXPECT_THAT(answerTo("GET / HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n"), EndsWith("{}"));
  near->send("data: 1\n\n");
  nearSecond->send("data: 2\n\n");
  EXPECT_EQ(first.read("\n\n\r\n"), "9\r\ndata: 1\n\n\r\n");
  EXPECT_EQ(second.read("\n\n"), "data: 2\n\n");
  listener_->stop();
  EXPECT_EQ(first.read(), "0\r\n\r\n");
  EXPECT_EQ(second.read(), "");
  EXPECT_TRUE(near->isGone());
  listener_.reset();
  near->send("to nobody");
}

TEST_F(ViewersTest, AreLetGoOfWhenTheyLeaveOrDoNotTakeWhatIsSent) {
  serveViewers();
  std::optional<Peer> leaving{std::in_place, listener_->port()};
  const auto near = view(*leaving);
  EXPECT_FALSE(near->isGone());
  leaving.reset();
  EXPECT_TRUE(leaves(*near));

  Peer slow = peer();
  const auto nearSlow = view(slow);
  const std::string much(1U << 19U, 'x');
  for (int i = 0; i < 100 && !nearSlow->isGone(); ++i) nearSlow->send(much);
  EXPECT_TRUE(nearSlow->isGone());
  EXPECT_THAT(slow.read(), testing::Not(EndsWith("0\r\n\r\n")));
}

}  // namespace
}  // namespace orvane::sandbox::test
