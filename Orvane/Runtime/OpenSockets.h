// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The sockets of libcurl's connections, to be asked whether their servers have closed them.
#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <vector>

namespace orvane {

/// Opens and closes sockets for libcurl. A server that has no use for an idle connection says so
/// and ends it; libcurl 7.88 takes that last word for a sign of life and sends the next request
/// into the void. Belongs to one thread.
class OpenSockets {
 public:
  OpenSockets() = default;
  OpenSockets(const OpenSockets&) = delete;
  OpenSockets& operator=(const OpenSockets&) = delete;

  /// True when the other side has closed the connection that has this port on this side. No port
  /// (0) is of none.
  [[nodiscard]] bool isClosedByPeer(int localPort);

  // For `CURLOPT_OPENSOCKETFUNCTION` and `CURLOPT_CLOSESOCKETFUNCTION`.
  static curl_socket_t open(void* sockets, curlsocktype, curl_sockaddr* address) noexcept;
  static int close(void* sockets, curl_socket_t socket) noexcept;

 private:
  struct Socket {
    curl_socket_t descriptor;
    int localPort;  // 0 until it is known
  };

  std::vector<Socket> sockets_;
};

}  // namespace orvane
