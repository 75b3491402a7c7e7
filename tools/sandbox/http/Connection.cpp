// SPDX-License-Identifier: Apache-2.0
#include "http/Connection.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/bind_executor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <openssl/err.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <mutex>
#include <tuple>

namespace orvane::sandbox {

namespace {

namespace net = boost::asio;
using namespace std::chrono_literals;
using boost::system::system_error;
using net::use_awaitable;

constexpr auto withError = net::as_tuple(use_awaitable);
constexpr auto idleTimeout = 60s;
constexpr auto transferTimeout = 20s;
constexpr auto drainTimeout = 500ms;
constexpr auto stopTimeout = 1s;
constexpr auto noTimeout = 24h * 365;
constexpr int patience = 2;  // milliseconds that a worker stays with a connection
constexpr std::size_t pausesPerSecond = 20;
constexpr std::size_t mostDrained = 4U << 20U;
constexpr std::size_t inputBuffer = 16'384;
constexpr std::size_t outputPiece = 65'536;
constexpr std::size_t mostForViewer = 1U << 20U;

/// Keeps what is sent until the connection fetches it.
class QueueingViewer : public Viewer, public std::enable_shared_from_this<QueueingViewer> {
 public:
  explicit QueueingViewer(net::steady_timer& news) : news_(&news) {}

  void send(std::string text) override {
    const std::lock_guard lock{mutex_};
    if (news_ == nullptr || isSlow_) return;
    const bool isAwaited = waiting_.empty();
    isSlow_ = waiting_.size() > mostForViewer;
    if (!isSlow_) waiting_.append(text);
    if (isAwaited || isSlow_)
      net::post(news_->get_executor(), [self = shared_from_this()] { self->announce(); });
  }

  bool isBehind() const override {
    const std::lock_guard lock{mutex_};
    return !waiting_.empty();
  }

  bool isGone() const override {
    const std::lock_guard lock{mutex_};
    return news_ == nullptr || isSlow_;
  }

  /// What has been sent since; nothing once the viewer has left or has been too slow.
  std::optional<std::string> fetch() {
    const std::lock_guard lock{mutex_};
    if (news_ == nullptr || isSlow_) return std::nullopt;
    return std::exchange(waiting_, {});
  }

  void leave() {
    announce();
    const std::lock_guard lock{mutex_};
    news_ = nullptr;
    waiting_ = {};
  }

 private:
  void announce() {
    const std::lock_guard lock{mutex_};
    if (news_ != nullptr) news_->cancel();
  }

  mutable std::mutex mutex_;
  net::steady_timer* news_;  // null once nobody is there
  std::string waiting_;
  bool isSlow_ = false;
};

}  // namespace

Connection::Connection(net::ip::tcp::socket socket, ConnectionContext& context)
    : context_(context),
      socket_(std::move(socket)),
      descriptor_(socket_.native_handle()),
      tls_(context.options.tls != nullptr ? SSL_new(context.options.tls) : nullptr, &SSL_free),
      pause_(context.io) {
  boost::system::error_code ignored;
  socket_.native_non_blocking(true, ignored);
  socket_.set_option(net::ip::tcp::no_delay{true}, ignored);
  if (!tls_) return;
  SSL_set_mode(tls_.get(), SSL_MODE_RELEASE_BUFFERS);
  SSL_set_fd(tls_.get(), descriptor_);
}

// --- From handshake to goodbye -------------------------------------------------------------------

Connection::Awaitable<void> Connection::serve() {
  co_await resume();
  try {
    co_await converse();
  } catch (const system_error&) {
    // The peer has gone or was too slow, or the sandbox stops: there is nobody to tell.
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "orvane-sandbox: %s\n", exception.what());
  }
  co_await park(State::working, noTimeout);
}

Connection::Awaitable<void> Connection::converse() {
  if (tls_) {
    co_await handshake();
  }
  auto end = Answer::End::none;
  while (end == Answer::End::none) {
    const bool isThere = co_await awaitRequest();
    if (!isThere) break;
    const Answer answer = co_await answerRequest();
    co_await send(answer);
    end = answer.end;
  }
  if (end == Answer::End::abrupt) {
    co_return;
  }
  sayGoodbye();
  if (end == Answer::End::drain) {
    co_await drain();
  }
}

Connection::Awaitable<void> Connection::handshake() {
  for (;;) {
    ERR_clear_error();
    const int result = SSL_accept(tls_.get());
    if (result == 1) {
      co_return;
    }
    co_await retry(result, State::receiving, Direction::in, transferTimeout);
  }
}

Connection::Awaitable<bool> Connection::awaitRequest() {
  if (received_.size() > 0) {
    co_return true;
  }
  try {
    co_await fill(State::idle, idleTimeout);
    co_return true;
  } catch (const system_error&) {
    co_return false;
  }
}

Connection::Awaitable<Answer> Connection::answerRequest() {
  RequestParser parser;
  std::optional<Reply> refusal;
  try {
    co_await receive(parser);
  } catch (const Problem& problem) {
    refusal = problem.reply();
  }
  if (!refusal) {
    co_return answer(parser);
  }
  Answer answer = makeAnswer(*std::move(refusal), {.isHead = parser.request.method == "HEAD",
                                                   .date = httpDate(context_.clock.now())});
  answer.end = Answer::End::drain;
  co_return answer;
}

Connection::Awaitable<void> Connection::receive(RequestParser& parser) {
  bool isAsked = false;  // for the body
  while (!parser.is_done()) {
    const auto data = received_.cdata();
    const std::size_t used = parser.take({static_cast<const char*>(data.data()), data.size()});
    received_.consume(used);
    if (!isAsked && parser.is_header_done()) {
      isAsked = true;
      if (parser.awaitsContinue() && received_.size() == 0) {
        co_await write("HTTP/1.1 100 Continue\r\n\r\n");
      }
    }
    if (used == 0) {
      co_await fill(State::receiving, transferTimeout);
    }
  }
}

Answer Connection::answer(const RequestParser& parser) const {
  Reply reply = context_.handler(parser.request);
  const auto encodings = parser.request.header("Accept-Encoding").value_or("");
  return makeAnswer(std::move(reply), {.isHead = parser.request.method == "HEAD",
                                       .isVersion10 = parser.isVersion10(),
                                       .keepsOpen = parser.keep_alive() && !context_.isFull,
                                       .mayPack = context_.options.compress &&
                                                  encodings.find("gzip") != std::string_view::npos,
                                       .date = httpDate(context_.clock.now())});
}

// --- What goes out -------------------------------------------------------------------------------

Connection::Awaitable<void> Connection::send(const Answer& answer) {
  co_await write(answer.bytes, answer.bytesPerSecond);
  if (answer.stay) {
    co_await stay(answer);
  }
  if (!answer.stream) {
    co_return;
  }
  for (auto piece = answer.stream(); !piece.empty(); piece = answer.stream()) {
    const std::string chunk = answer.isChunked ? makeChunk(piece) : std::string{piece};
    co_await write(chunk, answer.bytesPerSecond);
  }
  if (answer.isChunked) {
    co_await write(lastChunk);
  }
}

Connection::Awaitable<void> Connection::write(std::string_view bytes, std::size_t bytesPerSecond) {
  const std::size_t most =
      bytesPerSecond > 0 ? std::max<std::size_t>(1, bytesPerSecond / pausesPerSecond) : outputPiece;
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, most);
    if (bytesPerSecond > 0) {
      // They arrive no sooner than they would at that rate.
      co_await pause(1000ms * piece.size() / bytesPerSecond);
    }
    co_await transmit(piece);
    bytes.remove_prefix(piece.size());
  }
}

Connection::Awaitable<void> Connection::pause(Duration duration) {
  const bool mayWait = co_await park(State::pausing, noTimeout);
  pause_.expires_after(duration);
  if (mayWait) {
    co_await pause_.async_wait(withError);
  }
  co_await resume();
  if (context_.isStopping) throw system_error(net::error::operation_aborted);
}

Connection::Awaitable<void> Connection::stay(const Answer& answer) {
  net::steady_timer news{context_.io};
  const auto viewer = std::make_shared<QueueingViewer>(news);
  const std::shared_ptr<void> leaving{nullptr, [viewer](void*) { viewer->leave(); }};
  answer.stay(viewer);
  co_await park(State::staying, noTimeout);
  // Viewers have nothing more to say: what can be read is their leaving.
  socket_.async_wait(net::socket_base::wait_read,
                     [viewer](const boost::system::error_code&) { viewer->leave(); });
  for (;;) {
    const auto text = viewer->fetch();
    if (!text || context_.isStopping) break;
    if (text->empty()) {
      news.expires_after(noTimeout);
      co_await news.async_wait(withError);
      continue;
    }
    co_await resume();
    const std::string chunk = answer.isChunked ? makeChunk(*text) : *text;
    co_await write(chunk, answer.bytesPerSecond);
    co_await park(State::staying, noTimeout);
  }
  co_await resume();
  if (!context_.isStopping) throw system_error(net::error::eof);
  if (answer.isChunked) {
    co_await write(lastChunk);
  }
}

void Connection::sayGoodbye() {
  if (!tls_) return;
  ERR_clear_error();
  SSL_shutdown(tls_.get());  // the peer's is not waited for (RFC 8446, section 6.1)
}

/// Closing over unread bytes would make the system reset the connection, and the answer might be
/// lost.
Connection::Awaitable<void> Connection::drain() {
  ::shutdown(descriptor_, SHUT_WR);
  std::array<char, inputBuffer> waste{};
  for (std::size_t drained = 0; drained < mostDrained;) {
    const auto size = ::recv(descriptor_, waste.data(), waste.size(), 0);
    if (size == 0 || (size < 0 && errno != EAGAIN)) {
      co_return;
    }
    if (size > 0) drained += static_cast<std::size_t>(size);
    if (size < 0) {
      co_await wait(State::receiving, Direction::in, drainTimeout);
    }
  }
}

// --- Bytes ---------------------------------------------------------------------------------------

/// Adds what arrives next to what has been received.
Connection::Awaitable<void> Connection::fill(State state, Duration timeout) {
  const auto buffer = received_.prepare(inputBuffer);
  for (;;) {
    ERR_clear_error();
    const auto size = tls_ ? SSL_read(tls_.get(), buffer.data(), static_cast<int>(buffer.size()))
                           : ::recv(descriptor_, buffer.data(), buffer.size(), 0);
    if (size > 0) {
      received_.commit(static_cast<std::size_t>(size));
      co_return;
    }
    co_await retry(size, state, Direction::in, timeout);
  }
}

Connection::Awaitable<void> Connection::transmit(std::string_view bytes) {
  while (!bytes.empty()) {
    ERR_clear_error();
    const auto size = tls_ ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size()))
                           : ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (size > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(size));
    } else {
      co_await retry(size, State::sending, Direction::out, transferTimeout);
    }
  }
}

/// Waits until what has not succeeded may be tried again.
Connection::Awaitable<void> Connection::retry(long result, State state, Direction direction,
                                              Duration timeout) {
  bool mayRetry = result < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
  if (tls_) {
    const int error = SSL_get_error(tls_.get(), static_cast<int>(result));
    mayRetry = error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE;
    direction = error == SSL_ERROR_WANT_WRITE ? Direction::out : Direction::in;
  }
  if (!mayRetry) throw system_error(net::error::eof);
  co_await wait(state, direction, timeout);
}

/// Throws when that takes longer, or the sandbox stops.
Connection::Awaitable<void> Connection::wait(State state, Direction direction, Duration timeout) {
  if (isReadyAtOnce(direction)) {
    co_return;
  }
  const auto event =
      direction == Direction::in ? net::socket_base::wait_read : net::socket_base::wait_write;
  boost::system::error_code error = net::error::operation_aborted;
  const bool mayWait = co_await park(state, timeout);
  if (mayWait) {
    std::tie(error) = co_await socket_.async_wait(event, withError);
  }
  co_await resume();
  if (error) throw system_error(error);
}

/// A client that asks for one thing after the other does so at once: changing threads in between
/// would take longer than the answer. Nobody else waits for the worker meanwhile.
bool Connection::isReadyAtOnce(Direction direction) const {
  const bool isSpare = context_.active <= context_.options.threads && !context_.isStopping;
  const short events = direction == Direction::in ? POLLIN : POLLOUT;
  pollfd descriptor{.fd = descriptor_, .events = events, .revents = 0};
  return ::poll(&descriptor, 1, isSpare ? patience : 0) > 0;
}

// --- With a thread and without -------------------------------------------------------------------

/// Gives the worker up, to wait on the thread that waits; false when nothing is waited for any
/// more, since the sandbox stops.
Connection::Awaitable<bool> Connection::park(State state, Duration timeout) {
  --context_.active;
  co_await net::post(net::bind_executor(context_.io, use_awaitable));
  state_ = state;
  since_ = std::chrono::steady_clock::now();
  deadline_ = since_ + timeout;
  if (!context_.isStopping) {
    co_return true;
  }
  limit();
  co_return state == State::sending;
}

Connection::Awaitable<void> Connection::resume() {
  state_ = State::working;
  ++context_.active;
  co_await net::post(net::bind_executor(context_.workers, use_awaitable));
}

std::optional<Connection::Time> Connection::idleSince() const {
  return state_ == State::idle ? std::optional{since_} : std::nullopt;
}

void Connection::checkTime(Time now) {
  if (state_ != State::working && now >= deadline_) interrupt();
}

void Connection::stop() {
  if (state_ == State::working) return;
  limit();
  if (state_ != State::sending) interrupt();
}

void Connection::interrupt() {
  boost::system::error_code ignored;
  socket_.cancel(ignored);
  pause_.cancel();
}

/// However much there is left to be sent.
void Connection::limit() {
  if (!lastTime_) lastTime_ = std::chrono::steady_clock::now() + stopTimeout;
  deadline_ = std::min(deadline_, *lastTime_);
}

}  // namespace orvane::sandbox
