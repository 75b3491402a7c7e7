// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/ConfiguredProxy.h>
#include <Orvane/Runtime/OutgoingRequest.h>

#include <curl/curl.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

namespace orvane {
namespace {

struct Cleanup {
  void operator()(CURLU* handle) const noexcept { curl_url_cleanup(handle); }
};
using Handle = std::unique_ptr<CURLU, Cleanup>;

// A part of the URL; empty where it has none. With `CURLU_URLDECODE`: without its escapes.
std::string part(const Handle& url, CURLUPart which, unsigned flags = 0) {
  char* text = nullptr;
  if (curl_url_get(url.get(), which, &text, flags) != CURLUE_OK) return {};
  std::string copy(text);
  curl_free(text);
  return copy;
}

bool isSupported(std::string_view scheme) {
  constexpr std::string_view schemes[] = {"http",    "https",  "socks4",
                                          "socks4a", "socks5", "socks5h"};
  if (std::find(std::begin(schemes), std::end(schemes), scheme) == std::end(schemes)) return false;
  const bool speaksTLS =
      (curl_version_info(CURLVERSION_NOW)->features & CURL_VERSION_HTTPS_PROXY) != 0;
  return scheme != "https" || speaksTLS;
}

// None of these says what it is about: a password may be part of it.
std::optional<ConfigurationError> problemWith(const Handle& url) {
  if (!isSupported(part(url, CURLUPART_SCHEME))) {
    return ConfigurationError(
        "proxy: its scheme is none of http, https, socks4, socks4a, socks5 "
        "and socks5h");
  }
  if (part(url, CURLUPART_HOST).empty()) return ConfigurationError("proxy has no host");
  if (part(url, CURLUPART_PORT) == "0") return ConfigurationError("proxy: its port is none");
  const std::string path = part(url, CURLUPART_PATH);
  if ((!path.empty() && path != "/") || !part(url, CURLUPART_QUERY).empty() ||
      !part(url, CURLUPART_FRAGMENT).empty()) {
    return ConfigurationError("proxy: an address has no path, query or fragment");
  }
  return std::nullopt;
}

}  // namespace

std::optional<ConfigurationError> separateProxyCredentials(TransportOptions& options) {
  if (options.proxy.empty()) {
    const bool hasCredentials = !options.proxyUser.empty() || !options.proxyPassword.empty();
    if (hasCredentials) return ConfigurationError("proxyUser and proxyPassword need a proxy");
    return std::nullopt;
  }
  const bool hasScheme = options.proxy.find("://") != std::string::npos;
  const std::string text = hasScheme ? options.proxy : "http://" + options.proxy;
  const Handle url(curl_url());
  const bool isURL = isFieldValue(text) && curl_url_set(url.get(), CURLUPART_URL, text.c_str(),
                                                        CURLU_NON_SUPPORT_SCHEME) == CURLUE_OK;
  if (!isURL) return ConfigurationError("proxy is no URL");
  if (auto problem = problemWith(url)) return problem;
  const std::string user = part(url, CURLUPART_USER, CURLU_URLDECODE);
  const std::string password = part(url, CURLUPART_PASSWORD, CURLU_URLDECODE);
  if (!user.empty() || !password.empty()) {
    if (!options.proxyUser.empty() || !options.proxyPassword.empty()) {
      return ConfigurationError("proxy holds a user, and so does proxyUser");
    }
    options.proxyUser = user;
    options.proxyPassword = password;
  }
  // RFC 7617, section 2: a colon ends the name.
  if (options.proxyUser.find(':') != std::string::npos) {
    return ConfigurationError("proxyUser holds a colon");
  }
  curl_url_set(url.get(), CURLUPART_USER, nullptr, 0);
  curl_url_set(url.get(), CURLUPART_PASSWORD, nullptr, 0);
  options.proxy = part(url, CURLUPART_URL);
  return std::nullopt;
}

}  // namespace orvane
