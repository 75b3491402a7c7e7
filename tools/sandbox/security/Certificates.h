// SPDX-License-Identifier: Apache-2.0
//
// The sandbox's own certificate authority and the server certificate that it signs.
#pragma once

#include <openssl/ssl.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace orvane::sandbox {

enum class CertificateFlaw { none, expired, wrongHost };

/// Makes ca.pem and ca.key in the folder unless they are there, and a fresh server.pem and
/// server.key: EC P-256, valid for localhost, 127.0.0.1, ::1 and `names` (of hosts, or addresses)
/// unless flawed.
void makeCertificates(const std::filesystem::path& folder, CertificateFlaw flaw,
                      const std::vector<std::string>& names);

using TlsContext = std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)>;

/// A server context over the folder's server.pem and server.key; TLS 1.2 and later.
[[nodiscard]] TlsContext makeTlsContext(const std::filesystem::path& folder);

}  // namespace orvane::sandbox
