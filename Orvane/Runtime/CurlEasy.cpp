// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/CurlEasy.h>
#include <Orvane/Runtime/CurlTLS.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace orvane {
namespace {

// When an idle connection is asked for a sign of life, in seconds.
constexpr long keepAlive = 30;

// Stands for no limit to the age of a connection, in seconds.
constexpr long longestAge = 1'000'000;

template <class Duration>
long asLong(Duration duration) {
  constexpr auto most = static_cast<long long>(std::numeric_limits<long>::max());
  return static_cast<long>(std::min(static_cast<long long>(duration.count()), most));
}

// As libcurl wants them.
std::string pinsOf(const TransportOptions& options) {
  std::string pins;
  for (const std::string& key : options.pinnedPublicKeys) {
    if (!pins.empty()) pins += ';';
    pins.append("sha256//").append(key);
  }
  return pins;
}

}  // namespace

CurlEasy::CurlEasy(const TransportOptions& options, OpenSockets& sockets)
    : options_(options), sockets_(sockets), pins_(pinsOf(options)), handle_(curl_easy_init()) {
  if (!handle_) {
    failure_ = CURLE_OUT_OF_MEMORY;
    return;
  }
  setUp();
}

void CurlEasy::reset() noexcept {
  curl_easy_reset(handle_.get());
  failure_ = CURLE_OK;
  errorText_[0] = '\0';
  setUp();
}

void CurlEasy::setUp() noexcept {
  set(CURLOPT_ERRORBUFFER, errorText_.data());
  set(CURLOPT_NOSIGNAL, 1L);
  // A name is looked up on a thread of libcurl's, since the system's function can't be interrupted.
  // Without this a transfer that is given up would wait for that thread, and all others with it.
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_OPENSOCKETFUNCTION, &OpenSockets::open);
  set(CURLOPT_OPENSOCKETDATA, &sockets_);
  set(CURLOPT_CLOSESOCKETFUNCTION, &OpenSockets::close);
  set(CURLOPT_CLOSESOCKETDATA, &sockets_);
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_FOLLOWLOCATION, 0L);
  set(CURLOPT_PROTOCOLS_STR, "https,http");  // which hosts http may go to is checked before
  set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);  // a proxy's answer is not the server's
  setProxy();
  if (!options_.userAgent.empty()) set(CURLOPT_USERAGENT, options_.userAgent.c_str());
  setLimits();
  setTrust();
}

// The other time-outs are the loop's business: it knows since when a request has been waiting.
void CurlEasy::setLimits() noexcept {
  set(CURLOPT_CONNECTTIMEOUT_MS, asLong(options_.connectTimeout));
  const auto age = options_.maximumIdleConnectionAge;
  set(CURLOPT_MAXAGE_CONN, age.count() > 0 ? std::min(asLong(age), longestAge) : longestAge);
  set(CURLOPT_TCP_KEEPALIVE, 1L);
  set(CURLOPT_TCP_KEEPIDLE, keepAlive);
  set(CURLOPT_TCP_KEEPINTVL, keepAlive);
}

void CurlEasy::setProxy() noexcept {
  if (options_.proxy.empty()) return;
  set(CURLOPT_PROXY, options_.proxy.c_str());
  if (!options_.proxyUser.empty()) set(CURLOPT_PROXYUSERNAME, options_.proxyUser.c_str());
  if (!options_.proxyPassword.empty()) set(CURLOPT_PROXYPASSWORD, options_.proxyPassword.c_str());
}

// A file that libcurl is to read, or a text that it is to take for one. It only reads the text: the
// flag says that it makes no copy.
void CurlEasy::setSource(CURLoption file, const std::string& path, CURLoption blob,
                         const std::string& pem) noexcept {
  if (!path.empty()) set(file, path.c_str());
  if (pem.empty()) return;
  curl_blob text{};
  text.data = const_cast<char*>(pem.data());
  text.len = pem.size();
  text.flags = CURL_BLOB_NOCOPY;
  set(blob, &text);
}

void CurlEasy::setIdentity() noexcept {
  const TransportOptions& own = options_;
  const bool hasKey = !own.clientKeyFile.empty() || !own.clientKeyPEM.empty();
  setSource(CURLOPT_SSLCERT, own.clientCertificateFile, CURLOPT_SSLCERT_BLOB,
            own.clientCertificatePEM);
  setSource(CURLOPT_SSLKEY, hasKey ? own.clientKeyFile : own.clientCertificateFile,
            CURLOPT_SSLKEY_BLOB, hasKey ? own.clientKeyPEM : own.clientCertificatePEM);
  if (!own.clientKeyPassword.empty()) set(CURLOPT_KEYPASSWD, own.clientKeyPassword.c_str());
}

void CurlEasy::setTrust() noexcept {
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  if (usesOpenSSL()) {
    set(CURLOPT_SSL_CTX_FUNCTION, &tightenTLS);
    set(CURLOPT_SSL_CTX_DATA, const_cast<TransportOptions*>(&options_));
  }
  setSource(CURLOPT_CAINFO, options_.caFile, CURLOPT_CAINFO_BLOB, options_.caPEM);
  // Or the system's authorities would be trusted besides.
  if (!options_.caFile.empty() || !options_.caPEM.empty()) set(CURLOPT_CAPATH, nullptr);
  if (!options_.revocationListFile.empty()) {
    set(CURLOPT_CRLFILE, options_.revocationListFile.c_str());
  }
  if (!pins_.empty()) set(CURLOPT_PINNEDPUBLICKEY, pins_.c_str());
  setIdentity();
}

std::string CurlEasy::header(const char* name) const {
  curl_header* header = nullptr;
  const CURLHcode code = curl_easy_header(handle_.get(), name, 0, CURLH_HEADER, -1, &header);
  return code == CURLHE_OK ? header->value : std::string();
}

CURLcode CurlEasy::failure() noexcept { return std::exchange(failure_, CURLE_OK); }

}  // namespace orvane
