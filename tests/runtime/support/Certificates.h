// SPDX-License-Identifier: Apache-2.0
// Certificates, right and wrong, made when a test needs them.
#pragma once

#include <memory>
#include <string>

using EVP_PKEY = struct evp_pkey_st;
using X509 = struct x509_st;

namespace orvane {

/// A certificate and its private key.
struct Credentials {
  std::shared_ptr<X509> certificate;
  std::shared_ptr<EVP_PKEY> key;

  /// The certificate as PEM.
  [[nodiscard]] std::string pem() const;
  /// The private key as PEM, encrypted where there is a password.
  [[nodiscard]] std::string keyPEM(const std::string& password = {}) const;
  /// The SHA-256 of the public key, in base64.
  [[nodiscard]] std::string pin() const;
};

/// What a server's certificate says.
struct CertificateOptions {
  std::string address = "127.0.0.1";
  /// When it ceases to be valid, in seconds from now.
  long expiresIn = 3600;
};

/// Signs certificates, its own one included.
class Authority {
 public:
  Authority();

  [[nodiscard]] Credentials issue(const CertificateOptions& options) const;
  [[nodiscard]] std::string pem() const { return credentials_.pem(); }
  [[nodiscard]] const Credentials& credentials() const noexcept { return credentials_; }
  /// A list of revoked certificates as PEM, with that of `revoked` on it, if there is one.
  [[nodiscard]] std::string revocationList(const Credentials* revoked = nullptr) const;

 private:
  Credentials credentials_;
};

}  // namespace orvane
