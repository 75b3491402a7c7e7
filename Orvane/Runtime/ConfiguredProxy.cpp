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

bool isHexadecimal(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// RFC 3986, section 2.1.
bool hasBrokenEscape(std::string_view text) {
  for (std::size_t i = text.find('%'); i != std::string_view::npos; i = text.find('%', i + 1)) {
    if (i + 2 >= text.size() || !isHexadecimal(text[i + 1]) || !isHexadecimal(text[i + 2])) {
      return true;
    }
  }
  return false;
}

// A name or a password out of the URL, without its escapes; absent where one is broken, or stands
// for a control character.
std::optional<std::string> credential(const Handle& url, CURLUPart which) {
  const std::string escaped = part(url, which);
  std::string text = part(url, which, CURLU_URLDECODE);
  if (hasBrokenEscape(escaped) || text.empty() != escaped.empty()) return std::nullopt;
  return text;
}

// RFC 7617, section 2, allows no control characters and, since it ends the name, no colon there;
// RFC 1929, section 2, no more bytes than that.
std::optional<ConfigurationError> problemWithCredentials(const TransportOptions& options,
                                                         std::string_view scheme) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; };
  const std::string& user = options.proxyUser;
  const std::string& password = options.proxyPassword;
  if (std::any_of(user.begin(), user.end(), isControl) ||
      std::any_of(password.begin(), password.end(), isControl)) {
    return ConfigurationError("proxyUser or proxyPassword holds a control character");
  }
  if (user.find(':') != std::string::npos) return ConfigurationError("proxyUser holds a colon");
  if (user.empty() && !password.empty()) return ConfigurationError("proxyPassword needs a user");
  if (scheme.starts_with("socks4") && !password.empty()) {
    return ConfigurationError("proxy: socks4 and socks4a know no password");
  }
  constexpr std::size_t most = 255;
  if (scheme.starts_with("socks5") && (user.size() > most || password.size() > most)) {
    return ConfigurationError("proxyUser or proxyPassword is longer than socks5 allows");
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
  const auto user = credential(url, CURLUPART_USER);
  const auto password = credential(url, CURLUPART_PASSWORD);
  if (!user || !password) {
    return ConfigurationError("proxy: its user or password holds an escape that can't stand there");
  }
  if (!user->empty() || !password->empty()) {
    if (!options.proxyUser.empty() || !options.proxyPassword.empty()) {
      return ConfigurationError("proxy holds a user, and so does proxyUser");
    }
    options.proxyUser = *user;
    options.proxyPassword = *password;
  }
  if (auto problem = problemWithCredentials(options, part(url, CURLUPART_SCHEME))) return problem;
  curl_url_set(url.get(), CURLUPART_USER, nullptr, 0);
  curl_url_set(url.get(), CURLUPART_PASSWORD, nullptr, 0);
  options.proxy = part(url, CURLUPART_URL);
  return std::nullopt;
}

}  // namespace orvane
