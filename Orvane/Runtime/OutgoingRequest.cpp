// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Runtime/OutgoingRequest.h>
#include <Orvane/Runtime/TransportError.h>

#include <arpa/inet.h>
#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <memory>
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

bool isWellFormed(const Headers& headers, std::size_t bodySize) {
  return std::all_of(headers.begin(), headers.end(), [&](const auto& header) {
    const auto& [name, value] = header;
    if (!isToken(name) || !isFieldValue(value)) return false;
    if (isHeader(name, "content-length")) return value == std::to_string(bodySize);
    // The body's length is known; another framing would contradict it.
    return !isHeader(name, "transfer-encoding");
  });
}

// Where a URL leads. Read by libcurl itself, so that what is checked is what will be connected to.
struct Destination {
  std::string scheme;
  std::string host;
  std::string port;
};

std::string part(CURLU* url, CURLUPart which) {
  char* text = nullptr;
  if (curl_url_get(url, which, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return {};
  std::string copy(text);
  curl_free(text);
  return copy;
}

// True when a host may follow the scheme. libcurl would take one out of the path where none does.
bool hasAuthority(std::string_view url) {
  const std::size_t start = url.find("://");
  return start != std::string_view::npos && start + 3 < url.size() && url[start + 3] != '/';
}

// Absent for a URL that is relative, has no host, or holds a user's name.
std::optional<Destination> destinationOf(const URL& url) {
  if (!hasAuthority(url.absoluteString())) return std::nullopt;
  struct Cleanup {
    void operator()(CURLU* handle) const noexcept { curl_url_cleanup(handle); }
  };
  constexpr unsigned flags = CURLU_NON_SUPPORT_SCHEME | CURLU_DISALLOW_USER | CURLU_PATH_AS_IS;
  const std::unique_ptr<CURLU, Cleanup> handle(curl_url());
  if (curl_url_set(handle.get(), CURLUPART_URL, url.absoluteString().c_str(), flags) != CURLUE_OK) {
    return std::nullopt;
  }
  return Destination{part(handle.get(), CURLUPART_SCHEME), part(handle.get(), CURLUPART_HOST),
                     part(handle.get(), CURLUPART_PORT)};
}

bool isThisMachine(std::string host) {
  std::transform(host.begin(), host.end(), host.begin(), lowerCase);
  if (host == "localhost" || host.ends_with(".localhost")) return true;
  std::array<unsigned char, sizeof(in6_addr)> address{};
  if (inet_pton(AF_INET, host.c_str(), address.data()) == 1) return address[0] == 127;
  return host == "[::1]";
}

}  // namespace

bool isFieldValue(std::string_view text) {
  return isUTF8(text) && std::none_of(text.begin(), text.end(), [](char c) {
           const auto code = static_cast<unsigned char>(c);
           return (code < 0x20 && c != '\t') || code == 0x7F;
         });
}

bool isHeader(std::string_view name, std::string_view expected) {
  return std::equal(name.begin(), name.end(), expected.begin(), expected.end(),
                    [](char given, char lower) { return lowerCase(given) == lower; });
}

std::optional<Error> check(OutgoingRequest& request, bool allowsPlainHTTP) {
  const auto destination = destinationOf(request.url);
  if (!destination || !isWellFormed(request.headers, request.body.size())) {
    return NetworkError::malformedRequest;
  }
  request.isForThisMachine = isThisMachine(destination->host);
  request.isEncrypted = destination->scheme == "https";
  request.origin = destination->scheme + "://" + destination->host + ":" + destination->port;
  if (request.isEncrypted) return std::nullopt;
  if (destination->scheme != "http") {
    return TransportError(TransportError::Kind::insecure, "it must be https");
  }
  if (allowsPlainHTTP || request.isForThisMachine) return std::nullopt;
  return TransportError(TransportError::Kind::insecure,
                        "http is for this machine only, unless the options allow it");
}

}  // namespace orvane
