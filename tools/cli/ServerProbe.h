// SPDX-License-Identifier: Apache-2.0
// The way to a server, step by step: what a transport does in one go, and tells in one word.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane::cli {

/// Where to: of a URL.
struct ServerAddress {
  std::string host;  ///< Without the brackets of IPv6.
  std::uint16_t port = 0;
  bool isEncrypted = true;
  [[nodiscard]] bool isLoopback() const;
};

/// The address in an http or https URL; absent where it has none.
[[nodiscard]] std::optional<ServerAddress> addressIn(const std::string& url);

/// What a step has found, or why it failed.
struct Finding {
  bool isWell = false;
  std::string words{};
};

/// What a server shows of itself.
struct CertificateFindings {
  Finding handshake;  ///< The others are empty where this failed.
  Finding chain{};
  Finding name{};
  Finding dates{};
};

/// Asks a server for its certificate and looks at each of its sides. Blocks for no longer than
/// `limit` at each step.
class ServerProbe {
 public:
  ServerProbe(ServerAddress address, std::chrono::milliseconds limit)
      : address_(std::move(address)), limit_(limit) {}
  ~ServerProbe();
  ServerProbe(const ServerProbe&) = delete;
  ServerProbe& operator=(const ServerProbe&) = delete;

  [[nodiscard]] Finding lookUp();
  [[nodiscard]] Finding connect();
  /// `caFile` instead of the system's authorities, where it is not empty.
  [[nodiscard]] CertificateFindings certificate(const std::string& caFile);

 private:
  struct Endpoint {
    std::vector<unsigned char> bytes;  // a sockaddr
    int family = 0;
    std::string text;
  };

  const ServerAddress address_;
  const std::chrono::milliseconds limit_;
  std::vector<Endpoint> endpoints_;
  int socket_ = -1;
};

/// The point in time that a "Date" header tells (RFC 9110, section 5.6.7: the preferred form), in
/// seconds since 1970.
[[nodiscard]] std::optional<std::int64_t> secondsOfDate(const std::string& header);

}  // namespace orvane::cli
