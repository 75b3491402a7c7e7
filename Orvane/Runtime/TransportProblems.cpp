// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/OutgoingRequest.h>
#include <Orvane/Runtime/TransportProblems.h>

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <string_view>

namespace orvane {
namespace {

struct FreeBIO {
  void operator()(BIO* bio) const noexcept { BIO_free(bio); }
};
struct FreeCertificate {
  void operator()(X509* certificate) const noexcept { X509_free(certificate); }
};

struct FreeKey {
  void operator()(EVP_PKEY* key) const noexcept { EVP_PKEY_free(key); }
};
struct FreeList {
  void operator()(X509_CRL* list) const noexcept { X509_CRL_free(list); }
};

using Problem = std::optional<ConfigurationError>;
using Source = std::unique_ptr<BIO, FreeBIO>;
using Certificate = std::unique_ptr<X509, FreeCertificate>;
using Key = std::unique_ptr<EVP_PKEY, FreeKey>;

// What a file or a text holds. Where OpenSSL finds fault it leaves word of that; nobody is to come
// across it later.
template <class Object, class Read>
Object readFrom(const Source& source, Read read) {
  Object object(source ? read(source.get()) : nullptr);
  ERR_clear_error();
  return object;
}

Source sourceOf(const std::string& file, const std::string& pem) {
  if (!file.empty()) return Source(BIO_new_file(file.c_str(), "rb"));
  const bool isSane = pem.size() <= INT_MAX;
  return Source(isSane ? BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())) : nullptr);
}

Certificate certificateIn(const Source& source) {
  return readFrom<Certificate>(
      source, [](BIO* bio) { return PEM_read_bio_X509(bio, nullptr, nullptr, nullptr); });
}

// A certificate is expected in the file, or in the text: at most one of the two is given.
Problem problemWithCertificate(const std::string& fileName, const std::string& file,
                               const std::string& pemName, const std::string& pem) {
  if (!file.empty() && !pem.empty()) {
    return ConfigurationError(fileName + " and " + pemName + " exclude one another");
  }
  if (file.empty() && pem.empty()) return std::nullopt;
  const Source source = sourceOf(file, pem);
  ERR_clear_error();
  if (!source) return ConfigurationError(fileName + " can't be read: " + file);
  if (certificateIn(source)) return std::nullopt;
  if (file.empty()) return ConfigurationError(pemName + " holds no certificate");
  return ConfigurationError(fileName + " holds no certificate: " + file);
}

// Answers the password; without one OpenSSL would ask for it at the terminal.
int givePassword(char* room, int size, int, void* options) {
  const std::string& password = static_cast<const TransportOptions*>(options)->clientKeyPassword;
  if (password.size() > static_cast<std::size_t>(size)) return -1;
  std::copy(password.begin(), password.end(), room);
  return static_cast<int>(password.size());
}

Key clientKey(const TransportOptions& options) {
  const bool isApart = !options.clientKeyFile.empty() || !options.clientKeyPEM.empty();
  const Source source = isApart
                            ? sourceOf(options.clientKeyFile, options.clientKeyPEM)
                            : sourceOf(options.clientCertificateFile, options.clientCertificatePEM);
  return readFrom<Key>(source, [&options](BIO* bio) {
    return PEM_read_bio_PrivateKey(bio, nullptr, &givePassword,
                                   const_cast<TransportOptions*>(&options));
  });
}

Problem problemWithIdentity(const TransportOptions& options) {
  const bool hasCertificate =
      !options.clientCertificateFile.empty() || !options.clientCertificatePEM.empty();
  const bool hasKey = !options.clientKeyFile.empty() || !options.clientKeyPEM.empty();
  if (!hasCertificate) {
    if (hasKey) return ConfigurationError("a client key needs a client certificate");
    return std::nullopt;
  }
  if (auto problem = problemWithCertificate("clientCertificateFile", options.clientCertificateFile,
                                            "clientCertificatePEM", options.clientCertificatePEM)) {
    return problem;
  }
  if (!options.clientKeyFile.empty() && !options.clientKeyPEM.empty()) {
    return ConfigurationError("clientKeyFile and clientKeyPEM exclude one another");
  }
  const Key key = clientKey(options);
  if (!key)
    return ConfigurationError("the client key can't be read, or clientKeyPassword is wrong");
  const Certificate certificate =
      certificateIn(sourceOf(options.clientCertificateFile, options.clientCertificatePEM));
  const bool belongsToIt = X509_check_private_key(certificate.get(), key.get()) == 1;
  ERR_clear_error();
  if (!belongsToIt) return ConfigurationError("the client key is not that of the certificate");
  return std::nullopt;
}

Problem problemWithRevocation(const TransportOptions& options) {
  const std::string& file = options.revocationListFile;
  if (file.empty()) return std::nullopt;
  using List = std::unique_ptr<X509_CRL, FreeList>;
  const auto list = readFrom<List>(sourceOf(file, {}), [](BIO* bio) {
    return PEM_read_bio_X509_CRL(bio, nullptr, nullptr, nullptr);
  });
  if (list) return std::nullopt;
  return ConfigurationError("revocationListFile holds no list, or can't be read: " + file);
}

// A SHA-256 in base64 (RFC 4648): 43 characters for 32 bytes, and one to fill up.
bool isPin(const std::string& text) {
  constexpr std::string_view letters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  return text.size() == 44 && text.back() == '=' && text.find_first_not_of(letters) == 43;
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
  if (!std::all_of(options.pinnedPublicKeys.begin(), options.pinnedPublicKeys.end(), isPin)) {
    return ConfigurationError("pinnedPublicKeys: one is no SHA-256 in base64");
  }
  if (auto problem = problemWithCertificate("caFile", options.caFile, "caPEM", options.caPEM)) {
    return problem;
  }
  if (auto problem = problemWithRevocation(options)) return problem;
  return problemWithIdentity(options);
}

}  // namespace orvane
