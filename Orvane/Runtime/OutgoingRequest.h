// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// What is to be sent, and the rules that it must keep to be sent.
#pragma once

#include <Orvane/Common/RequestManager.h>
#include <Orvane/Platform/Error.h>

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A request as the caller gave it.
struct OutgoingRequest {
  Verb verb;
  URL url;
  std::string body;
  Headers headers;

  // Known once the request has been checked:
  /// Scheme, host and port, for telling servers apart.
  std::string origin{};
  /// The URL's scheme is https.
  bool isEncrypted = false;
  /// The URL's host is this machine: "localhost", a name below it (RFC 6761), 127.0.0.0/8 or ::1.
  bool isForThisMachine = false;
};

/// Checks a request. Answers why it must not be sent; absent when it may.
[[nodiscard]] std::optional<Error> check(OutgoingRequest& request, bool allowsPlainHTTP);

/// True when a header may have the value `text`: UTF-8 without control characters but the tab
/// (RFC 9110, section 5.5).
[[nodiscard]] bool isFieldValue(std::string_view text);

/// True when the header `name` is `expected` (in lower case): names have no case (RFC 9110).
[[nodiscard]] bool isHeader(std::string_view name, std::string_view expected);

}  // namespace orvane
