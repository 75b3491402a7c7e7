// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Runtime/CurlErrors.h>
#include <Orvane/Runtime/TransportError.h>

#include <utility>

namespace orvane {
namespace {

// CURLE_TOO_LARGE, which libcurl has had since 8.6.
constexpr int tooLargeForLibcurl = 100;

// Has the code of a connection that broke, but is nothing of the kind.
bool isAboutChunks(CURLcode code, const std::string& details) {
  return code == CURLE_RECV_ERROR && details.find("chunk") != std::string::npos;
}

TransportError::Kind kindOf(CURLcode code) {
  using enum TransportError::Kind;
  switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return nameLookup;
    case CURLE_COULDNT_CONNECT:
    case CURLE_PROXY:
    case CURLE_INTERFACE_FAILED:
      return connection;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_USE_SSL_FAILED:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CRL_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_PINNEDPUBKEYNOTMATCH:
    case CURLE_SSL_INVALIDCERTSTATUS:
    case CURLE_SSL_CLIENTCERT:
      return tls;
    case CURLE_OPERATION_TIMEDOUT:
      return timeOut;
    case CURLE_PARTIAL_FILE:
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_SSL_SHUTDOWN_FAILED:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
      return cutOff;
    case CURLE_FILESIZE_EXCEEDED:
      return tooLarge;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
    // http and https are let through and spoken: what is not spoken is the answer's version.
    case CURLE_UNSUPPORTED_PROTOCOL:
      return protocol;
    default:
      return other;
  }
}

}  // namespace

Error errorOf(CURLcode code, std::string details) {
  if (code == CURLE_URL_MALFORMAT) return NetworkError::malformedRequest;
  // libcurl shows such an address, which the environment gave, with the password in it.
  if (details.starts_with("Unsupported proxy")) details = "the environment's proxy can't be used";
  if (details.empty()) details = curl_easy_strerror(code);
  const auto kind = isAboutChunks(code, details) ? TransportError::Kind::protocol : kindOf(code);
  return TransportError(kind, std::move(details));
}

bool isCut(CURLcode code) noexcept { return kindOf(code) == TransportError::Kind::cutOff; }

bool isAboutMemory(CURLcode code) noexcept {
  return code == CURLE_OUT_OF_MEMORY || static_cast<int>(code) == tooLargeForLibcurl;
}

}  // namespace orvane
