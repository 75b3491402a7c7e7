// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/CurlEasy.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace orvane {
namespace {

template <class Duration>
long asLong(Duration duration) {
  constexpr auto most = static_cast<long long>(std::numeric_limits<long>::max());
  return static_cast<long>(std::min(static_cast<long long>(duration.count()), most));
}

}  // namespace

CurlEasy::CurlEasy(const TransportOptions& options)
    : handle_(curl_easy_init()), proxy_(options.proxy.empty() ? nullptr : options.proxy.c_str()) {
  if (!handle_) {
    failure_ = CURLE_OUT_OF_MEMORY;
    return;
  }
  set(CURLOPT_ERRORBUFFER, errorText_.data());
  set(CURLOPT_NOSIGNAL, 1L);
  // A name is looked up on a thread of libcurl's, since the system's function can't be interrupted.
  // Without this a transfer that is given up would wait for that thread, and all others with it.
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_FOLLOWLOCATION, 0L);
  set(CURLOPT_PROTOCOLS_STR, "https,http");  // which hosts http may go to is checked before
  set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
  set(CURLOPT_ACCEPT_ENCODING, "");  // all that this libcurl can decompress
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  if (proxy_ != nullptr) set(CURLOPT_PROXY, proxy_);
  if (!options.userAgent.empty()) set(CURLOPT_USERAGENT, options.userAgent.c_str());
  setLimits(options);
  setTrust(options);
}

void CurlEasy::setLimits(const TransportOptions& options) noexcept {
  set(CURLOPT_CONNECTTIMEOUT_MS, asLong(options.connectTimeout));
  set(CURLOPT_TIMEOUT_MS, asLong(options.totalTimeout));
  if (options.idleTimeout.count() > 0) {
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(CURLOPT_LOW_SPEED_TIME, asLong(options.idleTimeout));
  }
}

void CurlEasy::setTrust(const TransportOptions& options) noexcept {
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  if (!options.caFile.empty()) {
    set(CURLOPT_CAINFO, options.caFile.c_str());
    set(CURLOPT_CAPATH, nullptr);  // or the system's authorities would be trusted besides
  }
  if (!options.caPEM.empty()) {
    curl_blob text{};
    // libcurl only reads it: the flag says that it makes no copy.
    text.data = const_cast<char*>(options.caPEM.data());
    text.len = options.caPEM.size();
    text.flags = CURL_BLOB_NOCOPY;
    set(CURLOPT_CAINFO_BLOB, &text);
    set(CURLOPT_CAPATH, nullptr);
  }
}

void CurlEasy::bypassProxy(bool bypasses) noexcept {
  if (bypasses == bypassesProxy_) return;
  bypassesProxy_ = bypasses;
  set(CURLOPT_PROXY, bypasses ? "" : proxy_);
}

CURLcode CurlEasy::failure() noexcept { return std::exchange(failure_, CURLE_OK); }

}  // namespace orvane
