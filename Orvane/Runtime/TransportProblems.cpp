// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/OutgoingRequest.h>
#include <Orvane/Runtime/TransportProblems.h>

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <climits>
#include <memory>

namespace orvane {
namespace {

struct FreeBIO {
  void operator()(BIO* bio) const noexcept { BIO_free(bio); }
};
struct FreeCertificate {
  void operator()(X509* certificate) const noexcept { X509_free(certificate); }
};

using Source = std::unique_ptr<BIO, FreeBIO>;

bool holdsCertificate(const Source& source) {
  const std::unique_ptr<X509, FreeCertificate> certificate(
      PEM_read_bio_X509(source.get(), nullptr, nullptr, nullptr));
  ERR_clear_error();
  return certificate != nullptr;
}

std::optional<ConfigurationError> problemWithAuthorities(const TransportOptions& options) {
  if (!options.caFile.empty() && !options.caPEM.empty()) {
    return ConfigurationError("caFile and caPEM exclude one another");
  }
  if (!options.caFile.empty()) {
    const Source file(BIO_new_file(options.caFile.c_str(), "rb"));
    ERR_clear_error();
    if (!file) return ConfigurationError("caFile can't be read: " + options.caFile);
    if (!holdsCertificate(file)) {
      return ConfigurationError("caFile holds no certificate: " + options.caFile);
    }
  }
  if (!options.caPEM.empty()) {
    const bool isSane = options.caPEM.size() <= INT_MAX;
    const Source text(
        isSane ? BIO_new_mem_buf(options.caPEM.data(), static_cast<int>(options.caPEM.size()))
               : nullptr);
    if (!text || !holdsCertificate(text)) return ConfigurationError("caPEM holds no certificate");
  }
  return std::nullopt;
}

}  // namespace

std::optional<ConfigurationError> problemWith(const TransportOptions& options) {
  if (options.connectTimeout.count() < 0 || options.idleTimeout.count() < 0 ||
      options.totalTimeout.count() < 0 || options.maximumIdleConnectionAge.count() < 0) {
    return ConfigurationError("a time-out is negative");
  }
  if (!isFieldValue(options.userAgent)) {
    return ConfigurationError("userAgent is not UTF-8, or holds control characters");
  }
  return problemWithAuthorities(options);
}

}  // namespace orvane
