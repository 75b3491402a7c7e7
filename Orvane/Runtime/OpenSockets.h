// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The sockets of libcurl's connections, and what their servers say that libcurl keeps to itself.
#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// The socket of a connection. Whoever holds it may ask it after it was closed.
struct OpenSocket {
  curl_socket_t descriptor = CURL_SOCKET_BAD;
  int localPort = 0;  // 0 until it is known
  /// The server takes its leave (HTTP/2): it has processed no later stream than this.
  std::optional<std::uint32_t> lastStream;

  /// True when the other side has closed the connection.
  [[nodiscard]] bool isClosedByPeer() const noexcept;
};

/// Opens and closes sockets for libcurl. A server that has no use for an idle connection says so
/// and ends it; libcurl 7.88 takes that last word for a sign of life and sends the next request
/// into the void. Belongs to one thread.
class OpenSockets {
 public:
  OpenSockets() = default;
  OpenSockets(const OpenSockets&) = delete;
  OpenSockets& operator=(const OpenSockets&) = delete;

  /// The socket of the connection from `localPort` to the other side's address, as a text, and
  /// port. Null where there is none. (Connections to two servers may begin at the same port.)
  [[nodiscard]] std::shared_ptr<OpenSocket> find(int localPort, const std::string& remoteAddress,
                                                 int remotePort) const;

  // For `CURLOPT_OPENSOCKETFUNCTION` and `CURLOPT_CLOSESOCKETFUNCTION`.
  static curl_socket_t open(void* sockets, curlsocktype, curl_sockaddr* address) noexcept;
  static int close(void* sockets, curl_socket_t socket) noexcept;

 private:
  std::vector<std::shared_ptr<OpenSocket>> sockets_;
};

}  // namespace orvane
