// SPDX-License-Identifier: Apache-2.0
// The server of the soak test: it misbehaves as the dice say, and counts what reaches it.
#pragma once

#include "tests/runtime/support/HTTP2.h"
#include "tests/runtime/support/TestServer.h"
#include "tests/soak/Faults.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>

namespace orvane::soak {

/// What a call is, and where its number stands in the request.
enum class Kind : std::uint8_t {
  read,       // GET trips/{number}
  write,      // POST trips/{number}
  upload,     // POST /uploads/{number}, without resolution
  download,   // GET /files/{number}
  multiplex,  // POST over HTTP/2, the number being the body
};

/// What is answered to a request of that number.
[[nodiscard]] std::string answerTo(Kind kind, std::uint64_t number, const Dice& dice);

/// Two servers: one speaks HTTP/1.1, one HTTP/2.
class Backend {
 public:
  explicit Backend(const Dice& dice);

  [[nodiscard]] std::string url() const { return server_.url(""); }
  [[nodiscard]] std::string multiplexURL() const { return multiplexServer_.url("/"); }
  [[nodiscard]] std::string authorityPEM() const { return authority_.pem(); }

  /// How often a request of that number was taken and, over HTTP/2, not refused.
  [[nodiscard]] unsigned arrivals(std::uint64_t number) const;
  /// Waits until the client has closed all connections, and forgets what has arrived. False when
  /// some stay open.
  [[nodiscard]] bool rest();

 private:
  void serve(ServerConnection& connection, std::size_t number);
  void serveMultiplexed(ServerConnection& connection, std::size_t number);
  void answer(ServerConnection& connection, const ReceivedRequest& request);
  /// True for a connection that comes to nothing.
  bool isRefused(ServerConnection& connection, char what, std::size_t number) const;
  unsigned count(std::uint64_t number);

  const Dice& dice_;
  const Authority authority_;
  const Credentials credentials_ = authority_.issue({});
  std::atomic<std::uint64_t> lookups_ = 0;
  mutable std::mutex mutex_;
  std::unordered_map<std::uint64_t, unsigned> arrivals_;
  TestServer server_;
  TestServer multiplexServer_;
};

}  // namespace orvane::soak
