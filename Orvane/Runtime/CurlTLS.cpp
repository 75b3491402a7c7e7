// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/CurlTLS.h>

#include <openssl/ssl.h>

#include <string_view>

namespace orvane {

bool usesOpenSSL() noexcept {
  static const bool uses = [] {
    const char* name = curl_version_info(CURLVERSION_NOW)->ssl_version;
    return name != nullptr && std::string_view(name).starts_with("OpenSSL/");
  }();
  return uses;
}

bool speaksHTTP2(const curl_tlssessioninfo& session) noexcept {
  if (session.backend != CURLSSLBACKEND_OPENSSL || session.internals == nullptr) return false;
  const unsigned char* name = nullptr;
  unsigned size = 0;
  SSL_get0_alpn_selected(static_cast<const SSL*>(session.internals), &name, &size);
  return std::string_view(reinterpret_cast<const char*>(name), size) == "h2";
}

bool hasTakenLeave(const curl_tlssessioninfo& session) noexcept {
  if (session.backend != CURLSSLBACKEND_OPENSSL || session.internals == nullptr) return false;
  const int state = SSL_get_shutdown(static_cast<const SSL*>(session.internals));
  return (state & SSL_RECEIVED_SHUTDOWN) != 0;
}

CURLcode tightenTLS(CURL*, void* context, void* options) noexcept {
  if (!static_cast<const TransportOptions*>(options)->allowsKeyLog) {
    SSL_CTX_set_keylog_callback(static_cast<SSL_CTX*>(context), nullptr);
  }
#ifdef SSL_OP_IGNORE_UNEXPECTED_EOF
  SSL_CTX_clear_options(static_cast<SSL_CTX*>(context), SSL_OP_IGNORE_UNEXPECTED_EOF);
#endif
  return CURLE_OK;
}

}  // namespace orvane
