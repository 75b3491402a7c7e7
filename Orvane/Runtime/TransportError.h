// SPDX-License-Identifier: Apache-2.0
// What can go wrong on the way to the backend and back.
#pragma once

#include <Orvane/Runtime/Export.h>

#include <cstdint>
#include <string>
#include <utility>

namespace orvane {

/// A request got no answer. Refused requests are no transport errors: see `NetworkError`.
class ORVANE_RUNTIME_EXPORT TransportError {
 public:
  /// What went wrong.
  enum class Kind : std::uint8_t {
    nameLookup,  ///< The host's name is not known, or could not be looked up.
    connection,  ///< The host or the proxy can't be reached.
    tls,        ///< The server proved no identity to be trusted, or no common encryption was found.
    timeOut,    ///< One of the time-outs of `TransportOptions` ran out.
    cutOff,     ///< The connection ended before the answer was complete.
    tooLarge,   ///< The answer, or its headers, are larger than `TransportOptions` allow.
    cancelled,  ///< The request was cancelled, or the transport shut down.
    insecure,   ///< The URL's scheme is not https, and not http to where that is allowed.
    protocol,   ///< What answered does not speak HTTP, or breaks its rules.
    overloaded,  ///< More requests wait than `TransportOptions::maximumWaitingRequests` allows.
    other,       ///< Anything else: see `message()`.
  };

  /// With what is known besides, in one line.
  explicit TransportError(Kind kind, std::string message = {})
      : kind_(kind), message_(std::move(message)) {}

  /// What went wrong.
  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  /// True where another attempt may well succeed: the network failed, or was too slow.
  [[nodiscard]] bool isTransient() const noexcept {
    return kind_ == Kind::nameLookup || kind_ == Kind::connection || kind_ == Kind::timeOut ||
           kind_ == Kind::cutOff;
  }
  /// The kind and the details known, in one line; never with a query, a header or a body.
  [[nodiscard]] std::string message() const;
  friend bool operator==(const TransportError&, const TransportError&) = default;

 private:
  Kind kind_;
  std::string message_;
};

}  // namespace orvane
