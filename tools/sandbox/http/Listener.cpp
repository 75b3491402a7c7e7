// SPDX-License-Identifier: Apache-2.0
#include "http/Listener.h"

#include "http/Connection.h"

#include <boost/asio/as_tuple.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <fcntl.h>

#include <csignal>
#include <list>
#include <stdexcept>
#include <thread>

namespace orvane::sandbox {

namespace {

namespace net = boost::asio;
using namespace std::chrono_literals;
using net::ip::tcp;

constexpr auto withError = net::as_tuple(net::use_awaitable);
constexpr auto lookInterval = 250ms;  // for connections whose time is over
constexpr auto scarcityPause = 100ms;

/// A command that the sandbox runs has no business with its sockets.
template <class Socket>
void keepFromChildren(Socket& socket) {
  ::fcntl(socket.native_handle(), F_SETFD, FD_CLOEXEC);
}

}  // namespace

class Listener::Server {
 public:
  Server(Listener::Options options, const ServerClock& clock, Listener::Handler handler)
      : context_(std::move(options), clock, std::move(handler)) {
    std::signal(SIGPIPE, SIG_IGN);  // a peer that has gone is an error, also to OpenSSL
  }
  ~Server() { stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  void start() {
    try {
      bind();
    } catch (const boost::system::system_error& error) {
      throw std::runtime_error("port " + std::to_string(context_.options.port) +
                               " can't be bound on " + context_.options.host + ": " +
                               error.code().message());
    }
    net::co_spawn(context_.io, accept(), net::detached);
    thread_ = std::thread([this] { context_.io.run(); });
  }

  void stop() {
    if (!thread_.joinable()) return;
    context_.isStopping = true;
    net::post(context_.io, [this] {
      acceptor_.close();
      room_.cancel();
      for (Connection& connection : connections_) connection.stop();
    });
    thread_.join();
    context_.workers.join();
  }

  [[nodiscard]] int port() const { return port_; }

 private:
  void bind() {
    const auto& [host, port] = std::tie(context_.options.host, context_.options.port);
    const tcp::endpoint endpoint = *tcp::resolver{context_.io}
                                        .resolve(host, std::to_string(port), tcp::resolver::passive)
                                        .begin();
    acceptor_.open(endpoint.protocol());
    keepFromChildren(acceptor_);
    acceptor_.set_option(tcp::acceptor::reuse_address{true});
    if (endpoint.protocol() == tcp::v6()) acceptor_.set_option(net::ip::v6_only{false});
    acceptor_.bind(endpoint);
    acceptor_.listen();
    port_ = acceptor_.local_endpoint().port();
  }

  net::awaitable<void> accept() {
    while (!context_.isStopping) {
      auto [error, socket] = co_await acceptor_.async_accept(withError);
      if (context_.isStopping) break;
      if (error) {  // of a connection that is gone again, or there are no more descriptors
        makeRoom();
        room_.expires_after(scarcityPause);
        co_await room_.async_wait(withError);
        continue;
      }
      keepFromChildren(socket);
      const auto connection = connections_.emplace(connections_.end(), std::move(socket), context_);
      net::co_spawn(context_.io, serve(connection), net::detached);
      if (!isLooking_) net::co_spawn(context_.io, lookAtTime(), net::detached);
      context_.isFull = connections_.size() > context_.options.connections;
      if (context_.isFull) makeRoom();
      while (context_.isFull && !context_.isStopping) {
        room_.expires_at(net::steady_timer::time_point::max());
        co_await room_.async_wait(withError);
      }
    }
  }

  net::awaitable<void> serve(std::list<Connection>::iterator connection) {
    co_await connection->serve();
    connections_.erase(connection);
    context_.isFull = connections_.size() > context_.options.connections;
    if (!context_.isFull) room_.cancel();
    if (connections_.empty()) look_.cancel();
  }

  /// Ends the connection that has been idle the longest.
  void makeRoom() {
    Connection* longest = nullptr;
    for (Connection& connection : connections_) {
      const auto since = connection.idleSince();
      if (since && (longest == nullptr || *since < *longest->idleSince())) longest = &connection;
    }
    if (longest != nullptr) longest->interrupt();
  }

  /// One timer for all: none of them is that particular.
  net::awaitable<void> lookAtTime() {
    isLooking_ = true;
    while (!connections_.empty()) {
      look_.expires_after(lookInterval);
      co_await look_.async_wait(withError);
      const auto now = std::chrono::steady_clock::now();
      for (Connection& connection : connections_) connection.checkTime(now);
      if (context_.isFull) makeRoom();
    }
    isLooking_ = false;
  }

  ConnectionContext context_;
  tcp::acceptor acceptor_{context_.io};
  net::steady_timer room_{context_.io};
  net::steady_timer look_{context_.io};
  std::list<Connection> connections_;
  bool isLooking_ = false;
  int port_ = -1;
  std::thread thread_;
};

Listener::Listener(Options options, const ServerClock& clock, Handler handler)
    : server_(std::make_unique<Server>(std::move(options), clock, std::move(handler))) {}

Listener::~Listener() = default;

void Listener::start() { server_->start(); }
void Listener::stop() { server_->stop(); }
int Listener::port() const { return server_->port(); }

}  // namespace orvane::sandbox
