// SPDX-License-Identifier: Apache-2.0
// As much of HTTP/2 (RFC 9113) as a server needs to answer, refuse and take its leave.
#pragma once

#include "tests/runtime/support/TestServer.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// The server's end of a connection over which HTTP/2 was agreed on.
class HTTP2Connection {
 public:
  /// Greets the client.
  explicit HTTP2Connection(ServerConnection& connection);

  /// The number of the next request's stream, once the whole request has come; absent when the
  /// client has gone.
  [[nodiscard]] std::optional<std::uint32_t> receive();
  /// The body of a request that has come whole.
  [[nodiscard]] std::string takeBody(std::uint32_t stream);
  /// A whole answer with status 200.
  void answer(std::uint32_t stream, std::string_view body);
  /// Ends a request with an error code (RFC 9113, section 7).
  void reset(std::uint32_t stream, std::uint8_t code);
  /// Says that no request after that of `lastStream` is looked at.
  void goAway(std::uint32_t lastStream);

 private:
  void send(std::uint8_t type, std::uint8_t flags, std::uint32_t stream, std::string_view payload);

  ServerConnection& connection_;
  std::map<std::uint32_t, std::string> bodies_;
};

}  // namespace orvane
