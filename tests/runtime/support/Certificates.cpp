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

// Not EVP_EC_gen, a macro that casts a const away.
std::shared_ptr<EVP_PKEY> newKey() {
  return {EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"), &EVP_PKEY_free};
}

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

// What `write` writes.
template <class Write>
std::string written(Write write) {
  const std::shared_ptr<BIO> text(BIO_new(BIO_s_mem()), &BIO_free);
  write(text.get());
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(text.get(), &bytes);
  return {bytes, static_cast<std::size_t>(size)};
}

}  // namespace

std::string Credentials::pem() const {
  return written([this](BIO* text) { PEM_write_bio_X509(text, certificate.get()); });
}

std::string Credentials::keyPEM(const std::string& password) const {
  return written([&](BIO* text) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(password.data());
    PEM_write_bio_PrivateKey(text, key.get(), password.empty() ? nullptr : EVP_aes_256_cbc(),
                             password.empty() ? nullptr : bytes, static_cast<int>(password.size()),
                             nullptr, nullptr);
  });
}

std::string Credentials::pin() const {
  unsigned char* bytes = nullptr;
  const int size = i2d_PUBKEY(key.get(), &bytes);
  unsigned char hash[32];
  EVP_Digest(bytes, static_cast<std::size_t>(size), hash, nullptr, EVP_sha256(), nullptr);
  OPENSSL_free(bytes);
  unsigned char text[45];
  EVP_EncodeBlock(text, hash, sizeof hash);
  return reinterpret_cast<const char*>(text);
}

Authority::Authority() {
  credentials_.key = newKey();
  credentials_.certificate = draft("Test authority", credentials_.key.get(), 3600);
  X509* certificate = credentials_.certificate.get();
  X509_set_issuer_name(certificate, X509_get_subject_name(certificate));
  addExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
  addExtension(certificate, NID_key_usage, "critical,keyCertSign,cRLSign");
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

std::string Authority::revocationList(const Credentials* revoked) const {
  const std::shared_ptr<X509_CRL> list(X509_CRL_new(), &X509_CRL_free);
  X509_CRL_set_version(list.get(), X509_CRL_VERSION_2);
  X509_CRL_set_issuer_name(list.get(), X509_get_subject_name(credentials_.certificate.get()));
  const std::shared_ptr<ASN1_TIME> time(X509_gmtime_adj(nullptr, -60), &ASN1_TIME_free);
  X509_CRL_set1_lastUpdate(list.get(), time.get());
  X509_REVOKED* entry = revoked != nullptr ? X509_REVOKED_new() : nullptr;
  if (entry != nullptr) {
    X509_REVOKED_set_serialNumber(entry, X509_get_serialNumber(revoked->certificate.get()));
    X509_REVOKED_set_revocationDate(entry, time.get());
    X509_CRL_add0_revoked(list.get(), entry);
  }
  X509_gmtime_adj(time.get(), 3600);
  X509_CRL_set1_nextUpdate(list.get(), time.get());
  X509_CRL_sign(list.get(), credentials_.key.get(), EVP_sha256());
  return written([&](BIO* text) { PEM_write_bio_X509_CRL(text, list.get()); });
}

}  // namespace orvane
