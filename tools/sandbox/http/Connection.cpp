// SPDX-License-Identifier: Apache-2.0
#include "http/Connection.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace orvane::sandbox {

namespace {

using namespace std::chrono_literals;

constexpr auto transferTimeout = 20s;
constexpr auto drainTimeout = 500ms;
constexpr std::size_t pausesPerSecond = 20;
constexpr int mostDrained = 256;  // input buffers
constexpr std::size_t inputBuffer = 16'384;
constexpr std::size_t outputBuffer = 65'536;
constexpr std::size_t longestTarget = 8192;
constexpr std::size_t longestLine = 65'536;

}  // namespace

Connection::Connection(socket_t socket, SSL_CTX* tls, int stopEvent)
    : socket_(socket),
      stopEvent_(stopEvent),
      ssl_(tls != nullptr ? SSL_new(tls) : nullptr, &SSL_free) {
  ::fcntl(socket_, F_SETFL, ::fcntl(socket_, F_GETFL, 0) | O_NONBLOCK);
  const int on = 1;
  ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  if (ssl_) SSL_set_fd(ssl_.get(), socket_);
}

Connection::~Connection() {
  ::shutdown(socket_, SHUT_RDWR);
  ::close(socket_);
}

bool Connection::wait(Direction direction, std::chrono::milliseconds timeout) const {
  const short events = direction == Direction::in ? POLLIN : POLLOUT;
  std::array<pollfd, 2> descriptors{{{socket_, events, 0}, {stopEvent_, POLLIN, 0}}};
  const int ready =
      ::poll(descriptors.data(), descriptors.size(), static_cast<int>(timeout.count()));
  return ready > 0 && descriptors[0].revents != 0;
}

bool Connection::pause(std::chrono::milliseconds duration) const {
  pollfd stop{stopEvent_, POLLIN, 0};
  return ::poll(&stop, 1, static_cast<int>(duration.count())) == 0;
}

/// Waits until an unfinished system call or TLS operation may be tried again.
bool Connection::retry(ssize_t result, Direction direction) const {
  if (ssl_) {
    const int error = SSL_get_error(ssl_.get(), static_cast<int>(result));
    if (error == SSL_ERROR_WANT_READ) return wait(Direction::in, transferTimeout);
    return error == SSL_ERROR_WANT_WRITE && wait(Direction::out, transferTimeout);
  }
  if (errno == EINTR) return true;
  return (errno == EAGAIN || errno == EWOULDBLOCK) && wait(direction, transferTimeout);
}

bool Connection::handshake() {
  if (!ssl_) return true;
  for (;;) {
    ERR_clear_error();
    const int result = SSL_accept(ssl_.get());
    if (result == 1) return true;
    if (!retry(result, Direction::in)) {
      broken_ = true;
      return false;
    }
  }
}

bool Connection::awaitRequest(std::chrono::milliseconds timeout) {
  if (broken_) return false;
  const bool buffered = inPosition_ < in_.size() || (ssl_ && SSL_pending(ssl_.get()) > 0);
  if (!buffered && !wait(Direction::in, timeout)) return false;
  exchange = {};
  while (in_.find('\n', inPosition_) == std::string::npos) {
    if (in_.size() - inPosition_ > longestLine || !fill()) return false;
  }
  takeTarget();
  return true;
}

/// Leaves the line alone when it is malformed or too long: then cpp-httplib refuses it.
void Connection::takeTarget() {
  const auto end = in_.find('\n', inPosition_);
  const auto first = in_.find(' ', inPosition_);
  const auto second = first < end ? in_.find(' ', first + 1) : std::string::npos;
  if (second >= end || second - first > longestTarget) return;
  exchange.target = in_.substr(first + 1, second - first - 1);
  in_.replace(first + 1, exchange.target.size(), "/");
}

/// Adds what has arrived to the buffer.
bool Connection::fill() {
  in_.erase(0, inPosition_);
  inPosition_ = 0;
  const std::size_t held = in_.size();
  in_.resize(held + inputBuffer);
  in_.resize(held + static_cast<std::size_t>(receive(in_.data() + held, inputBuffer)));
  return in_.size() > held;
}

ssize_t Connection::receive(char* data, size_t size) {
  for (;;) {
    ERR_clear_error();
    const ssize_t count =
        ssl_ ? SSL_read(ssl_.get(), data, static_cast<int>(size)) : ::recv(socket_, data, size, 0);
    if (count > 0) return count;
    if ((!ssl_ && count == 0) || !retry(count, Direction::in)) {
      broken_ = true;
      return 0;
    }
  }
}

ssize_t Connection::transmit(const char* data, size_t size) {
  for (;;) {
    ERR_clear_error();
    const ssize_t count = ssl_ ? SSL_write(ssl_.get(), data, static_cast<int>(size))
                               : ::send(socket_, data, size, MSG_NOSIGNAL);
    if (count > 0) return count;
    if (!retry(count, Direction::out)) {
      broken_ = true;
      return -1;
    }
  }
}

ssize_t Connection::read(char* data, size_t size) {
  if (inPosition_ == in_.size()) {
    if (!flush()) return -1;  // the peer may be waiting for a "100 Continue"
    if (!fill()) return 0;
  }
  const std::size_t count = std::min(size, in_.size() - inPosition_);
  std::memcpy(data, in_.data() + inPosition_, count);
  inPosition_ += count;
  return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* data, size_t size) {
  if (broken_) return -1;
  out_.append(data, size);
  if (out_.size() >= outputBuffer && !flush()) return -1;
  return static_cast<ssize_t>(size);
}

bool Connection::flush() {
  const std::size_t rate = exchange.bytesPerSecond;
  const std::size_t piece =
      rate > 0 ? std::max<std::size_t>(1, rate / pausesPerSecond) : out_.size();
  std::size_t sent = 0;
  while (!broken_ && sent < out_.size()) {
    const ssize_t count = transmit(out_.data() + sent, std::min(piece, out_.size() - sent));
    if (count <= 0) break;
    sent += static_cast<std::size_t>(count);
    // As long as those bytes take at that rate.
    if (rate > 0 && !pause(1000ms * count / static_cast<ssize_t>(rate))) broken_ = true;
  }
  out_.clear();
  return !broken_;
}

void Connection::drop() {
  out_.clear();
  broken_ = true;
}

void Connection::sayGoodbye() {
  if (ssl_ && !broken_) SSL_shutdown(ssl_.get());
}

void Connection::drain() {
  ::shutdown(socket_, SHUT_WR);
  std::array<char, inputBuffer> waste{};
  for (int pieces = 0; pieces < mostDrained && wait(Direction::in, drainTimeout); ++pieces) {
    if (::recv(socket_, waste.data(), waste.size(), 0) <= 0) break;
  }
}

// Only the loopback interface is served, and nothing asks.
void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
  ip = "127.0.0.1";
  port = 0;
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
  ip = "127.0.0.1";
  port = 0;
}

}  // namespace orvane::sandbox
