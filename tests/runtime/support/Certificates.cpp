// SPDX-License-Identifier: Apache-2.0
#include "tests/runtime/support/Certificates.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <cstdint>

namespace orvane {
namespace {

std::shared_ptr<EVP_PKEY> newKey() { return {EVP_EC_gen("P-256"), &EVP_PKEY_free}; }

void addExtension(X509* certificate, int kind, const char* value) {
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value);
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

// A certificate without extensions and signature.
std::shared_ptr<X509> draft(const char* name, EVP_PKEY* key, long expiresIn) {
  std::shared_ptr<X509> certificate(X509_new(), &X509_free);
  X509_set_version(certificate.get(), X509_VERSION_3);
  std::uint32_t serial = 0;
  RAND_bytes(reinterpret_cast<unsigned char*>(&serial), sizeof serial);
  ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate.get()), serial);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -7200);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), expiresIn);
  X509_set_pubkey(certificate.get(), key);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
  return certificate;
}

}  // namespace

std::string Credentials::pem() const {
  const std::shared_ptr<BIO> text(BIO_new(BIO_s_mem()), &BIO_free);
  PEM_write_bio_X509(text.get(), certificate.get());
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(text.get(), &bytes);
  return {bytes, static_cast<std::size_t>(size)};
}

Authority::Authority() {
  credentials_.key = newKey();
  credentials_.certificate = draft("Test authority", credentials_.key.get(), 3600);
  X509* certificate = credentials_.certificate.get();
  X509_set_issuer_name(certificate, X509_get_subject_name(certificate));
  addExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
  addExtension(certificate, NID_key_usage, "critical,keyCertSign");
  X509_sign(certificate, credentials_.key.get(), EVP_sha256());
}

Credentials Authority::issue(const CertificateOptions& options) const {
  Credentials issued;
  issued.key = newKey();
  issued.certificate = draft("Test server", issued.key.get(), options.expiresIn);
  X509* certificate = issued.certificate.get();
  X509_set_issuer_name(certificate, X509_get_subject_name(credentials_.certificate.get()));
  addExtension(certificate, NID_subject_alt_name, ("IP:" + options.address).c_str());
  X509_sign(certificate, credentials_.key.get(), EVP_sha256());
  return issued;
}

}  // namespace orvane
