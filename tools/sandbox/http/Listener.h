// SPDX-License-Identifier: Apache-2.0
//
// The HTTP/1.1 server, over TLS or plain. Everything that Boost.Asio and Boost.Beast are used for
// stays behind it: the rest of the sandbox sees requests and replies.
#pragma once

#include "Time.h"
#include "http/Message.h"

#include <openssl/types.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace orvane::sandbox {

class Listener {
 public:
  struct Options {
    std::string host = "127.0.0.1";  // the address to listen on
    int port = 0;                    // 0: a free one
    std::size_t threads = 64;        // as many requests are answered at the same time
    bool compress = true;            // gzip for clients that accept it
    SSL_CTX* tls = nullptr;          // must outlive the listener; null for plain HTTP
    /// As many may be open; beyond that the one that has been idle the longest ends, and those
    /// that are answered do.
    std::size_t connections = 512;
  };

  /// Called on the listener's threads, several at a time; must not throw.
  using Handler = std::function<Reply(const Request&)>;

  Listener(Options options, const ServerClock& clock, Handler handler);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  /// Binds and starts to serve; throws std::runtime_error when the port is taken.
  void start();
  /// Lets requests under way finish, closes what is idle and joins every thread.
  void stop();

  [[nodiscard]] int port() const;

 private:
  class Server;
  std::unique_ptr<Server> server_;
};

}  // namespace orvane::sandbox
