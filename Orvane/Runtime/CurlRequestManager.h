// SPDX-License-Identifier: Apache-2.0
// The transport of the Runtime, on libcurl.
#pragma once

#include <Orvane/Common/RequestManager.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/Exchange.h>
#include <Orvane/Runtime/Export.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orvane {

class TransferLoop;

/// How requests travel. Everything has a default.
struct ORVANE_RUNTIME_EXPORT TransportOptions {
  /// The longest time to look up, reach and trust the server. Zero: libcurl's own, 5 minutes.
  std::chrono::milliseconds connectTimeout{std::chrono::seconds(15)};
  /// The longest time in which not a byte moves, once the request has a connection. Zero: no limit.
  std::chrono::milliseconds idleTimeout{std::chrono::seconds(30)};
  /// The longest time from the start of a request to the end of its answer, the wait for a free
  /// connection included. Zero: no limit.
  std::chrono::milliseconds totalTimeout{std::chrono::minutes(2)};
  /// A connection that has been idle for longer is not used again. Best below what servers and the
  /// boxes in between keep, of which many forget a connection after a minute. Zero: no limit.
  std::chrono::seconds maximumIdleConnectionAge{30};

  /// The largest answer taken, in bytes, decompressed.
  std::size_t maximumAnswerSize{std::size_t{64} << 20U};
  /// The most memory that the answers under way take together, in bytes. Zero: no limit.
  std::size_t maximumAnswerMemory{std::size_t{256} << 20U};
  /// Connections to one host; further requests wait for one of them. Over HTTP/2 one carries up to
  /// a hundred requests at once. Zero: no limit.
  std::uint32_t maximumConnectionsPerHost{8};
  /// Requests that may wait, for all hosts together; one more fails with
  /// `TransportError::Kind::overloaded`. Zero: no limit.
  std::uint32_t maximumWaitingRequests{10'000};

  /// A file with the certificates (PEM) of the authorities to trust, instead of the system's.
  std::string caFile{};
  /// The same as a text; at most one of the two.
  std::string caPEM{};
  /// Allows http to hosts other than this machine: tokens then travel in the clear.
  bool allowsPlainHTTP{false};
  /// Keys that the server must have, whoever vouches for it: the SHA-256 of the public key's DER
  /// form (SubjectPublicKeyInfo) in base64, one of which it must be. Empty: any. Where libcurl has
  /// no pinning no connection is made.
  std::vector<std::string> pinnedPublicKeys{};
  /// A file with lists (PEM) of certificates that their authorities have revoked; with it, each
  /// authority in a server's chain must have a list there.
  std::string revocationListFile{};
  /// What this side shows where a server asks who it is: a certificate (PEM) and its private key,
  /// each as a file or a text. A key that is not given stands with the certificate.
  std::string clientCertificateFile{};
  std::string clientCertificatePEM{};  ///< The certificate as a text.
  std::string clientKeyFile{};         ///< A file with the private key.
  std::string clientKeyPEM{};          ///< The private key as a text.
  /// Opens the private key, where it is encrypted.
  std::string clientKeyPassword{};
  /// Lets SSLKEYLOGFILE of the environment have its way: whoever has that file can read what was
  /// transferred. For debugging only. No effect where libcurl's TLS is not OpenSSL's: whether the
  /// variable is obeyed is that library's affair.
  bool allowsKeyLog{false};

  /// A proxy's URL: http, https, socks4, socks4a, socks5 or socks5h, host and port (1080). Empty:
  /// as the environment says (https_proxy, no_proxy, …). Requests to this machine never use one.
  std::string proxy{};
  /// Who the proxy is to be told that asks; a user in the proxy's URL is the same. No control
  /// characters, and no colon in the name; a password needs a user, and a proxy other than socks4.
  std::string proxyUser{};
  std::string proxyPassword{};  ///< Goes with `proxyUser`.
  /// The value of "User-Agent"; empty: none is sent.
  std::string userAgent{};

  /// Watches the exchanges.
  ExchangeObserver observer{};
  /// Shows the observer tokens, query values and bodies as they are. For debugging only.
  bool observerSeesSecrets{false};
};

/// Sends requests over HTTP/2 or HTTP/1.1.
///
/// A thread of its own does all transfers: it starts with the first request, keeps connections and
/// shares them, and calls the handlers, which should be quick. Given headers are sent unchanged;
/// besides them it sends only what HTTP demands, and "Accept-Encoding". Redirects are not followed:
/// any status outside 200 to 299 is `NetworkError::invalidStatusCode`, with the server's clock from
/// the "Date" header. Everything else that goes wrong is a `TransportError`, or
/// `NetworkError::malformedRequest` for a request that must not be sent: a header's name or value
/// that HTTP does not allow (RFC 9110, section 5) or that is not UTF-8, a "Content-Length" that is
/// not the body's, a URL without host or with a password. What keeps a request from being started
/// (one that must not be sent, a manager that is shut down) is answered inside `send`.
///
/// A handler may cancel, start requests, and let go of the manager; waiting for a request there is
/// a programming fault. In a process that was forked after the first request every request fails at
/// once with a reason, and `shutdown` returns at once; forked before, it works there, too.
///
/// No request is sent again that a server may have acted on, with one exception: a read
/// (`Verb::get`) whose kept connection ends without a byte of an answer is sent once more.
class ORVANE_RUNTIME_EXPORT CurlRequestManager final : public RequestManager {
 public:
  /// A manager, or the `ConfigurationError` that tells which option can't work. Starts no thread.
  [[nodiscard]] static Result<std::shared_ptr<CurlRequestManager>> make(
      TransportOptions options = {});
  /// As `shutdown()`.
  ~CurlRequestManager() override;

  RequestHandle send(Verb verb, URL url, std::string body, Headers headers,
                     Completion<std::string> then) override;
  /// The same with a deadline of its own, for whoever sends a request as part of something that has
  /// one. `TransportOptions::totalTimeout` holds besides.
  RequestHandle send(Verb verb, URL url, std::string body, Headers headers,
                     std::chrono::steady_clock::time_point deadline, Completion<std::string> then);

  /// Waits until every request has been answered or cancelled, and its handler has returned. False
  /// when one had not within `timeout`, and in a handler. Any thread.
  [[nodiscard]] bool waitUntilIdle(std::chrono::milliseconds timeout);

  /// Ends the transfers and the thread. Requests under way, and any started from now on, are
  /// answered with `TransportError::Kind::cancelled`. Waits for the thread up to `timeout`; false
  /// when it was still busy with a handler by then, as it is when a handler calls this: it then
  /// ends by itself afterwards. Any thread, more than once.
  bool shutdown(std::chrono::milliseconds timeout = std::chrono::seconds(5));

 private:
  explicit CurlRequestManager(std::shared_ptr<TransferLoop> loop);

  const std::shared_ptr<TransferLoop> loop_;
};

}  // namespace orvane
