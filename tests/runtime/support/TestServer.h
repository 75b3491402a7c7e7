// SPDX-License-Identifier: Apache-2.0
// A server on the loopback interface that answers, or misbehaves, byte by byte as a test wants it.
#pragma once

#include "tests/runtime/support/Certificates.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

using SSL = struct ssl_st;
using SSL_CTX = struct ssl_ctx_st;

namespace orvane {

/// A request as it came in.
struct ReceivedRequest {
  /// The request line and the headers, as received but for the empty line.
  std::string head;
  std::string body;
  /// The place among the connections of the server, from 0.
  std::size_t connection = 0;

  [[nodiscard]] std::string method() const { return word(0); }
  [[nodiscard]] std::string target() const { return word(1); }
  /// Empty when it was not sent. `name` as it was written.
  [[nodiscard]] std::string header(const std::string& name) const;

 private:
  [[nodiscard]] std::string word(int place) const;
};

/// The server's end of a connection.
class ServerConnection {
 public:
  ServerConnection(int socket, SSL_CTX* context);
  ~ServerConnection();
  ServerConnection(const ServerConnection&) = delete;
  ServerConnection& operator=(const ServerConnection&) = delete;

  /// The next request; absent when the client has closed the connection.
  [[nodiscard]] std::optional<ReceivedRequest> receive();
  /// The next bytes, so many of them; absent when the client has closed the connection before.
  [[nodiscard]] std::optional<std::string> receiveBytes(std::size_t count);
  /// Sends bytes as they are. False when nobody takes them any more.
  bool send(std::string_view bytes);
  /// A whole answer, its length included.
  void answer(int status, std::string_view body, std::string_view headers = {});
  /// Reads until the client closes the connection.
  void waitUntilClosed();
  /// Closes without a farewell.
  void cut();
  /// Closes in good order: with TLS's farewell, where there is TLS. The client's system knows of it
  /// when this returns.
  void end();
  /// Makes whatever waits for the client return.
  void interrupt() const;

 private:
  /// Reads more into the buffer; false at the end.
  bool fill();

  const int socket_;
  std::unique_ptr<SSL, void (*)(SSL*)> tls_;
  std::string buffer_;
  bool isOpen_ = true;
};

/// Accepts connections and serves each on a thread of its own. Of a connection that has ended
/// nothing is kept but the requests that came over it.
class TestServer {
 public:
  /// Answers one request. Called on the threads of the connections.
  using Handler = std::function<void(ServerConnection&, const ReceivedRequest&)>;

  /// Does what a connection has to do from its beginning. Called on a thread of its own.
  using ConnectionHandler = std::function<void(ServerConnection&, std::size_t number)>;

  /// Without credentials it speaks plain HTTP.
  explicit TestServer(Handler handler, std::optional<Credentials> credentials = {});
  /// Leaves connections to `handler`. With `protocol`, that is what is agreed on (RFC 7301).
  TestServer(ConnectionHandler handler, const Credentials& credentials,
             std::string_view protocol = {});
  /// Answers only who shows a certificate of `authority`.
  TestServer(Handler handler, const Credentials& credentials, const Credentials& authority);
  /// Cuts all connections and waits for their threads.
  ~TestServer();
  TestServer(const TestServer&) = delete;
  TestServer& operator=(const TestServer&) = delete;

  /// The address of a resource: "/path?query" on this server.
  [[nodiscard]] std::string url(std::string_view target = "/") const;
  [[nodiscard]] std::uint16_t port() const noexcept { return port_; }
  /// The connections made so far.
  [[nodiscard]] std::size_t connectionCount() const;
  /// Waits until no connection is left open; false when there is one after `timeout`.
  [[nodiscard]] bool waitUntilAllHaveEnded(std::chrono::milliseconds timeout) const;
  /// Waits until so many connections have been made.
  void waitForConnections(std::size_t count) const;
  /// What has come in, in the order of arrival.
  [[nodiscard]] std::vector<ReceivedRequest> requests() const;
  /// Waits until so many requests have come in.
  void waitForRequests(std::size_t count) const;

 private:
  // A connection, until it has ended, and the thread that serves it.
  struct Served {
    std::unique_ptr<ServerConnection> connection;
    std::thread thread;
  };

  TestServer(ConnectionHandler handler, std::shared_ptr<SSL_CTX> context);

  void accept();
  void begin(int socket);
  void end(Served& served);
  void serve(const Handler& handler, ServerConnection& connection, std::size_t number);

  const ConnectionHandler handler_;
  std::shared_ptr<SSL_CTX> context_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  mutable std::mutex mutex_;
  bool isStopping_ = false;
  mutable std::condition_variable arrived_;
  std::vector<ReceivedRequest> requests_;
  std::size_t connectionCount_ = 0;
  std::list<Served> served_;
  std::thread acceptor_;
};

/// Answers every request with 200 and `body`.
[[nodiscard]] TestServer::Handler answering(std::string body);

/// Answers nothing.
inline void keepSilent(ServerConnection& connection, const ReceivedRequest&) {
  connection.waitUntilClosed();
}

}  // namespace orvane
