// SPDX-License-Identifier: Apache-2.0
//
// One accepted connection from its handshake to its goodbye. It has a worker thread while there is
// something to do, and for a moment after that; what it then waits for it waits for without one.
#pragma once

#include "http/Answer.h"
#include "http/Listener.h"
#include "http/RequestParser.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <openssl/ssl.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string_view>

namespace orvane::sandbox {

/// What all connections of a listener share.
struct ConnectionContext {
  ConnectionContext(Listener::Options chosen, const ServerClock& time, Listener::Handler answering)
      : options(std::move(chosen)),
        clock(time),
        handler(std::move(answering)),
        workers(options.threads) {}

  const Listener::Options options;
  const ServerClock& clock;
  const Listener::Handler handler;
  boost::asio::io_context io{1};  // one thread waits for all
  boost::asio::thread_pool workers;
  std::atomic<std::size_t> active = 0;  // connections that have or want a worker
  std::atomic<bool> isFull = false;     // who has been answered makes room for others
  std::atomic<bool> isStopping = false;
};

/// Public functions are called on the thread that waits.
class Connection {
 public:
  using Time = std::chrono::steady_clock::time_point;
  template <class T>
  using Awaitable = boost::asio::awaitable<T>;

  Connection(boost::asio::ip::tcp::socket socket, ConnectionContext& context);

  /// Answers requests until the connection ends.
  Awaitable<void> serve();

  /// Since when it has waited for a request; nothing while there is one.
  [[nodiscard]] std::optional<Time> idleSince() const;
  /// Ends it when what it waits for has taken too long.
  void checkTime(Time now);
  /// Ends it unless a request is being answered; what is left to be sent has a second.
  void stop();
  /// Ends what it waits for: an idle connection says goodbye, any other ends at once.
  void interrupt();

 private:
  enum class State { working, idle, receiving, sending, pausing, staying };
  enum class Direction { in, out };
  using Duration = std::chrono::milliseconds;

  Awaitable<void> converse();
  Awaitable<void> handshake();
  Awaitable<bool> awaitRequest();
  Awaitable<void> receive(RequestParser& parser);
  Awaitable<Answer> answerRequest();
  [[nodiscard]] Answer answer(const RequestParser& parser) const;
  Awaitable<void> send(const Answer& answer);
  Awaitable<void> write(std::string_view bytes, std::size_t bytesPerSecond = 0);
  Awaitable<void> pause(Duration duration);
  Awaitable<void> stay(const Answer& answer);
  Awaitable<void> drain();
  void sayGoodbye();

  Awaitable<void> fill(State state, Duration timeout);
  Awaitable<void> transmit(std::string_view bytes);
  Awaitable<void> retry(long result, State state, Direction direction, Duration timeout);
  Awaitable<void> wait(State state, Direction direction, Duration timeout);
  [[nodiscard]] bool isReadyAtOnce(Direction direction) const;

  Awaitable<bool> park(State state, Duration timeout);
  Awaitable<void> resume();
  void limit();

  ConnectionContext& context_;
  boost::asio::ip::tcp::socket socket_;
  const int descriptor_;  // of the socket
  std::unique_ptr<SSL, decltype(&SSL_free)> tls_;
  boost::asio::steady_timer pause_;
  boost::beast::flat_buffer received_;
  // Of the thread that waits:
  State state_ = State::working;
  Time since_;
  Time deadline_;
  std::optional<Time> lastTime_;  // to send anything, once the sandbox stops
};

}  // namespace orvane::sandbox
