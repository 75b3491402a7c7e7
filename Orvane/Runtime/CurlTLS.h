// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// What libcurl's options do not reach of OpenSSL's connections. Where libcurl has been built with
// another TLS library, none of it applies.
#pragma once

#include <curl/curl.h>

namespace orvane {

/// True when libcurl's TLS is OpenSSL's.
[[nodiscard]] bool usesOpenSSL() noexcept;

/// True when the connection was agreed to speak HTTP/2 (RFC 7301).
[[nodiscard]] bool speaksHTTP2(const curl_tlssessioninfo& session) noexcept;

/// True when the server has ended the connection as TLS wants it ("close_notify"; RFC 8446, section
/// 6.1): what came before is all there is.
[[nodiscard]] bool hasTakenLeave(const curl_tlssessioninfo& session) noexcept;

/// For `CURLOPT_SSL_CTX_FUNCTION`: takes back what libcurl sets so that a connection which has been
/// cut looks like one that was ended; and, unless the options allow it, has no keys written to a
/// file. Its data are the `TransportOptions`.
CURLcode tightenTLS(CURL*, void* context, void* options) noexcept;

}  // namespace orvane
