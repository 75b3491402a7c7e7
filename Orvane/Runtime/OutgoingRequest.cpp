// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Runtime/OutgoingRequest.h>
#include <Orvane/Runtime/TransportError.h>

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace orvane {
namespace {

char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool isLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (lowerCase(c) >= 'a' && lowerCase(c) <= 'z');
}

// RFC 9110, section 5.6.2.
bool isToken(std::string_view text) {
  constexpr std::string_view symbols = "!#$%&'*+-.^_`|~";
  return !text.empty() && std::all_of(text.begin(), text.end(), [&](char c) {
    return isLetterOrDigit(c) || symbols.find(c) != std::string_view::npos;
  });
}

// RFC 9110, section 5.5.
bool isFieldValue(std::string_view text) {
  return isUTF8(text) && std::none_of(text.begin(), text.end(), [](char c) {
           const auto code = static_cast<unsigned char>(c);
           return (code < 0x20 && c != '\t') || code == 0x7F;
         });
}

bool isWellFormed(const Headers& headers, std::size_t bodySize) {
  return std::all_of(headers.begin(), headers.end(), [&](const auto& header) {
    const auto& [name, value] = header;
    if (!isToken(name) || !isFieldValue(value)) return false;
    if (isHeader(name, "content-length")) return value == std::to_string(bodySize);
    // The body's length is known; another framing would contradict it.
    return !isHeader(name, "transfer-encoding");
  });
}

bool hasUserInformation(const URL& url) {
  std::string_view text = url.absoluteString();
  const std::size_t start = text.find("//");
  if (start == std::string_view::npos) return false;
  text = text.substr(start + 2);
  return text.substr(0, text.find_first_of("/?#")).find('@') != std::string_view::npos;
}

bool endsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

bool isHeader(const std::string& name, std::string_view expected) {
  return std::equal(name.begin(), name.end(), expected.begin(), expected.end(),
                    [](char given, char lower) { return lowerCase(given) == lower; });
}

bool isOnThisMachine(const URL& url) {
  std::string host = url.host();
  std::transform(host.begin(), host.end(), host.begin(), lowerCase);
  if (host == "localhost" || endsWith(host, ".localhost")) return true;
  std::array<unsigned char, sizeof(in6_addr)> address{};
  if (inet_pton(AF_INET, host.c_str(), address.data()) == 1) return address[0] == 127;
  if (inet_pton(AF_INET6, host.c_str(), address.data()) != 1) return false;
  return address.back() == 1 && std::count(address.begin(), address.end(), 0) == 15;
}

std::optional<Error> refusal(const URL& url, bool allowsPlainHTTP) {
  const std::string scheme = url.scheme();
  if (scheme == "http") {
    if (!allowsPlainHTTP && !isOnThisMachine(url)) {
      return TransportError(TransportError::Kind::insecure,
                            "http is for this machine only, unless the options allow it");
    }
  } else if (scheme != "https") {
    return TransportError(TransportError::Kind::insecure, "it must be https");
  }
  if (url.host().empty() || hasUserInformation(url)) return NetworkError::malformedRequest;
  return std::nullopt;
}

std::optional<Error> refusal(const OutgoingRequest& request, bool allowsPlainHTTP) {
  if (!isWellFormed(request.headers, request.body.size())) return NetworkError::malformedRequest;
  return refusal(request.url, allowsPlainHTTP);
}

}  // namespace orvane
