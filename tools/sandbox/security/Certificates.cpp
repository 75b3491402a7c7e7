// SPDX-License-Identifier: Apache-2.0
#include "security/Certificates.h"

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace orvane::sandbox {

namespace {

template <auto release>
struct Deleter {
  template <class T>
  void operator()(T* object) const {
    release(object);
  }
};

using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;
struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

constexpr long secondsPerDay = 24L * 60 * 60;

void require(bool success, const char* what) {
  if (success) return;
  std::array<char, 256> text{};
  ERR_error_string_n(ERR_get_error(), text.data(), text.size());
  throw std::runtime_error(std::string{what} + ": " + text.data());
}

File open(const std::filesystem::path& path, const char* mode) {
  File file{std::fopen(path.c_str(), mode)};
  if (!file) throw std::runtime_error("can't open " + path.string());
  return file;
}

Key makeKey() {
  Key key{EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256")};
  require(key != nullptr, "making a key");
  return key;
}

struct Validity {
  long start;  // seconds from now
  long end;
};

Certificate makeUnsigned(EVP_PKEY* key, const char* commonName, X509* issuer, Validity validity) {
  Certificate certificate{X509_new()};
  require(certificate != nullptr, "making a certificate");
  X509* raw = certificate.get();
  X509_set_version(raw, X509_VERSION_3);

  std::array<unsigned char, 16> serial{};
  require(RAND_bytes(serial.data(), serial.size()) == 1, "random serial number");
  serial[0] &= 0x7FU;  // positive
  const std::unique_ptr<BIGNUM, Deleter<BN_free>> number{
      BN_bin2bn(serial.data(), serial.size(), nullptr)};
  BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(raw));

  X509_gmtime_adj(X509_getm_notBefore(raw), validity.start);
  X509_gmtime_adj(X509_getm_notAfter(raw), validity.end);
  X509_set_pubkey(raw, key);
  X509_NAME* name = X509_get_subject_name(raw);
  const auto add = [name](const char* field, const char* text) {
    X509_NAME_add_entry_by_txt(name, field, MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(text), -1, -1, 0);
  };
  add("O", "Orvane Sandbox");
  add("CN", commonName);
  X509_set_issuer_name(raw, X509_get_subject_name(issuer != nullptr ? issuer : raw));
  return certificate;
}

void extend(X509* certificate, X509* issuer, int nid, const char* value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION_free>> extension{
      X509V3_EXT_conf_nid(nullptr, &context, nid, value)};
  require(extension && X509_add_ext(certificate, extension.get(), -1) == 1, value);
}

void sign(X509* certificate, EVP_PKEY* key) {
  require(X509_sign(certificate, key, EVP_sha256()) > 0, "signing a certificate");
}

void save(const std::filesystem::path& path, X509* certificate) {
  require(PEM_write_X509(open(path, "w").get(), certificate) == 1, "writing a certificate");
}

void save(const std::filesystem::path& path, EVP_PKEY* key) {
  const File file = open(path, "w");
  std::filesystem::permissions(
      path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  require(PEM_write_PrivateKey(file.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
          "writing a key");
}

void makeAuthority(const std::filesystem::path& folder) {
  const Key key = makeKey();
  const Certificate certificate =
      makeUnsigned(key.get(), "Orvane Sandbox CA", nullptr, {-secondsPerDay, 3650 * secondsPerDay});
  X509* raw = certificate.get();
  extend(raw, raw, NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
  extend(raw, raw, NID_key_usage, "critical,keyCertSign,cRLSign");
  extend(raw, raw, NID_subject_key_identifier, "hash");
  sign(raw, key.get());
  save(folder / "ca.key", key.get());
  save(folder / "ca.pem", raw);
}

Validity validityFor(CertificateFlaw flaw) {
  if (flaw == CertificateFlaw::expired) return {-30 * secondsPerDay, -secondsPerDay};
  return {-secondsPerDay,
          397 * secondsPerDay};  // phones refuse server certificates that live longer
}

std::string alternativeNames(const std::vector<std::string>& names) {
  std::string all = "DNS:localhost,IP:127.0.0.1,IP:::1";
  for (const std::string& name : names) {
    const std::unique_ptr<ASN1_OCTET_STRING, Deleter<ASN1_OCTET_STRING_free>> address{
        a2i_IPADDRESS(name.c_str())};
    all.append(address ? ",IP:" : ",DNS:").append(name);
  }
  return all;
}

}  // namespace

void makeCertificates(const std::filesystem::path& folder, CertificateFlaw flaw,
                      const std::vector<std::string>& names) {
  if (!exists(folder / "ca.pem") || !exists(folder / "ca.key")) makeAuthority(folder);
  const Certificate authority{
      PEM_read_X509(open(folder / "ca.pem", "r").get(), nullptr, nullptr, nullptr)};
  require(authority != nullptr, "reading ca.pem");
  const Key authorityKey{
      PEM_read_PrivateKey(open(folder / "ca.key", "r").get(), nullptr, nullptr, nullptr)};
  require(authorityKey != nullptr, "reading ca.key");

  const bool wrongHost = flaw == CertificateFlaw::wrongHost;
  const Key key = makeKey();
  const Certificate certificate = makeUnsigned(
      key.get(), wrongHost ? "elsewhere.example" : "localhost", authority.get(), validityFor(flaw));
  X509* raw = certificate.get();
  extend(raw, authority.get(), NID_basic_constraints, "critical,CA:FALSE");
  extend(raw, authority.get(), NID_key_usage, "critical,digitalSignature");
  extend(raw, authority.get(), NID_ext_key_usage, "serverAuth");
  extend(raw, authority.get(), NID_subject_key_identifier, "hash");
  extend(raw, authority.get(), NID_authority_key_identifier, "keyid:always");
  extend(raw, authority.get(), NID_subject_alt_name,
         wrongHost ? "DNS:elsewhere.example" : alternativeNames(names).c_str());
  sign(raw, authorityKey.get());
  save(folder / "server.key", key.get());
  save(folder / "server.pem", raw);
}

TlsContext makeTlsContext(const std::filesystem::path& folder) {
  TlsContext context{SSL_CTX_new(TLS_server_method()), &SSL_CTX_free};
  require(context != nullptr, "making a TLS context");
  SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
  SSL_CTX_set_mode(context.get(),
                   SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
  require(SSL_CTX_use_certificate_chain_file(context.get(), (folder / "server.pem").c_str()) == 1,
          "using server.pem");
  require(SSL_CTX_use_PrivateKey_file(context.get(), (folder / "server.key").c_str(),
                                      SSL_FILETYPE_PEM) == 1,
          "using server.key");
  return context;
}

}  // namespace orvane::sandbox
