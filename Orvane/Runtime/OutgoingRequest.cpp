// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Platform/OfThisThread.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Runtime/OutgoingRequest.h>
#include <Orvane/Runtime/TransportError.h>

#include <arpa/inet.h>
#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

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

// Where a URL leads.
struct Destination {
  std::string scheme;
  std::string origin;
  bool isThisMachine = false;
};

bool isThisMachine(std::string host) {
  std::transform(host.begin(), host.end(), host.begin(), lowerCase);
  if (host == "localhost" || host.ends_with(".localhost")) return true;
  std::array<unsigned char, sizeof(in6_addr)> address{};
  if (inet_pton(AF_INET, host.c_str(), address.data()) == 1) return address[0] == 127;
  return host == "[::1]";
}

std::string part(CURLU* url, CURLUPart which) {
  char* text = nullptr;
  if (curl_url_get(url, which, &text, CURLU_DEFAULT_PORT) != CURLUE_OK) return {};
  std::string copy(text);
  curl_free(text);
  return copy;
}

// A URL up to its path: all that tells where it leads. Empty where no host may follow the scheme;
// libcurl would take one out of the path.
std::string_view rootOf(std::string_view url) {
  constexpr std::string_view mark = "://";
  const std::size_t place = url.find(mark);
  if (place == std::string_view::npos) return {};
  const std::size_t host = place + mark.size();
  const std::size_t end = std::min(url.find_first_of("/?#", host), url.size());
  return end == host ? std::string_view() : url.substr(0, end);
}

// Read by libcurl itself, so that what is checked is what will be connected to. Absent for a URL
// that holds a user's name, and for what libcurl can't read.
std::optional<Destination> destinationOf(const std::string& url) {
  struct Cleanup {
    void operator()(CURLU* handle) const noexcept { curl_url_cleanup(handle); }
  };
  constexpr unsigned flags = CURLU_NON_SUPPORT_SCHEME | CURLU_DISALLOW_USER | CURLU_PATH_AS_IS;
  const std::unique_ptr<CURLU, Cleanup> handle(curl_url());
  if (curl_url_set(handle.get(), CURLUPART_URL, url.c_str(), flags) != CURLUE_OK) {
    return std::nullopt;
  }
  const std::string scheme = part(handle.get(), CURLUPART_SCHEME);
  const std::string host = part(handle.get(), CURLUPART_HOST);
  const std::string port = part(handle.get(), CURLUPART_PORT);
  return Destination{scheme, concatenated({scheme, "://", host, ":", port}), isThisMachine(host)};
}

// What a thread remembers: a request mostly leads where the one before it did.
struct Known {
  std::string root;
  std::optional<Destination> destination;
};

// The same, absent for a relative URL, too.
const std::optional<Destination>& knownDestinationOf(const URL& url) {
  Known& known = ofThisThread<Known>();
  const std::string_view root = rootOf(url.absoluteString());
  if (known.root != root) {
    std::string text(root);
    auto destination = destinationOf(text + '/');  // not every scheme goes without a path
    // Both or neither, also where memory runs out.
    known.root = std::move(text);
    known.destination = std::move(destination);
  }
  return known.destination;
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
  const std::optional<Destination>& destination = knownDestinationOf(request.url);
  if (!destination || !isWellFormed(request.headers, request.body.size())) {
    return NetworkError::malformedRequest;
  }
  request.origin = destination->origin;
  request.isForThisMachine = destination->isThisMachine;
  request.isEncrypted = destination->scheme == "https";
  if (request.isEncrypted) return std::nullopt;
  if (destination->scheme != "http") {
    return TransportError(TransportError::Kind::insecure, "it must be https");
  }
  if (allowsPlainHTTP || request.isForThisMachine) return std::nullopt;
  return TransportError(TransportError::Kind::insecure,
                        "http is for this machine only, unless the options allow it");
}

}  // namespace orvane
