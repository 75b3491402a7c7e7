// SPDX-License-Identifier: Apache-2.0
//
// One accepted connection as a stream for cpp-httplib: reads and writes are buffered, so that a
// request and its answer each take one system call and one TLS record where they fit.
#pragma once

#include "http/Message.h"

#include <httplib.h>
#include <openssl/ssl.h>

#include <chrono>
#include <memory>
#include <string>

namespace orvane::sandbox {

class Connection : public httplib::Stream {
 public:
  /// Owns the socket. A readable `stopEvent` ends every wait.
  Connection(socket_t socket, SSL_CTX* tls, int stopEvent);
  ~Connection() override;
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  [[nodiscard]] bool handshake();
  /// Waits for the next request and takes its target out of the request line: cpp-httplib parses
  /// targets and takes a second question mark, which a query may well hold, for a mistake.
  [[nodiscard]] bool awaitRequest(std::chrono::milliseconds timeout);
  bool flush();
  /// Discards what is buffered; the peer sees the connection end with nothing more said.
  void drop();
  /// Tells the peer that the connection ends in order.
  void sayGoodbye();
  /// Swallows what the peer is still sending: closing over unread bytes would make the system reset
  /// the connection, and the answer might be lost.
  void drain();

  bool is_readable() const override { return !broken_; }
  bool is_writable() const override { return !broken_; }
  ssize_t read(char* data, size_t size) override;
  ssize_t write(const char* data, size_t size) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  socket_t socket() const override { return socket_; }

  /// What the handler of the request under way needs and cpp-httplib does not carry.
  struct Exchange {
    std::string target;       // as sent
    HeaderList headers;       // as sent
    bool understood = false;  // the request could be read to its end
    bool sendDate = true;
    bool closeAfterwards = false;
    std::size_t bytesPerSecond = 0;  // of the answer; 0: at once
  };
  Exchange exchange;

 private:
  enum class Direction { in, out };
  bool wait(Direction direction, std::chrono::milliseconds timeout) const;
  /// False when the sandbox stops meanwhile.
  bool pause(std::chrono::milliseconds duration) const;
  bool fill();
  void takeTarget();
  ssize_t receive(char* data, size_t size);
  ssize_t transmit(const char* data, size_t size);
  bool retry(ssize_t result, Direction direction) const;

  socket_t socket_;
  int stopEvent_;
  std::unique_ptr<SSL, decltype(&SSL_free)> ssl_;
  std::string in_;
  std::size_t inPosition_ = 0;
  std::string out_;
  bool broken_ = false;
};

}  // namespace orvane::sandbox
