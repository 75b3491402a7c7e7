// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/TransportError.h>

#include <string_view>

namespace orvane {
namespace {

std::string_view summary(TransportError::Kind kind) {
  using enum TransportError::Kind;
  switch (kind) {
    case nameLookup:
      return "the host's name could not be looked up";
    case connection:
      return "the host can't be reached";
    case tls:
      return "no trusted connection could be made";
    case timeOut:
      return "the time ran out";
    case cutOff:
      return "the connection ended before the answer was complete";
    case tooLarge:
      return "the answer is too large";
    case cancelled:
      return "the request was cancelled, or the transport shut down";
    case insecure:
      return "the URL's scheme is not allowed";
    case protocol:
      return "the answer is not proper HTTP";
    case overloaded:
      return "too many requests are waiting";
    case other:
      break;
  }
  return "the request could not be made";
}

}  // namespace

std::string TransportError::message() const {
  std::string text(summary(kind_));
  if (!message_.empty()) text.append(": ").append(message_);
  return text;
}

}  // namespace orvane
