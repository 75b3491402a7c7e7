// SPDX-License-Identifier: Apache-2.0
#include "ServerProbe.h"

#include "Arguments.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>

namespace orvane::cli {
namespace {

template <auto free>
struct Deleter {
  template <class T>
  void operator()(T* object) const {
    free(object);
  }
};
using Context = std::unique_ptr<SSL_CTX, Deleter<SSL_CTX_free>>;
using Connection = std::unique_ptr<SSL, Deleter<SSL_free>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;

bool isDate(int error) {
  return error == X509_V_ERR_CERT_HAS_EXPIRED || error == X509_V_ERR_CERT_NOT_YET_VALID;
}

// The first error of the chain that is none of its dates: these are looked at by themselves. The
// handshake goes on whatever there is.
int keepChainError(int isWell, X509_STORE_CTX* store) {
  const int error = X509_STORE_CTX_get_error(store);
  if (isWell == 1 || isDate(error)) return 1;
  auto* ssl =
      static_cast<SSL*>(X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx()));
  auto* kept = static_cast<int*>(SSL_get_ex_data(ssl, 0));
  if (*kept == X509_V_OK) *kept = error;
  return 1;
}

std::string dayOf(const ASN1_TIME* time) {
  std::tm parts{};
  if (ASN1_TIME_to_tm(time, &parts) != 1) return "an unreadable day";
  std::array<char, 11> text{};
  const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%d", &parts);
  return {text.data(), size};
}

std::string nameOf(const X509_NAME* name) {
  std::array<char, 256> text{};
  X509_NAME_oneline(name, text.data(), static_cast<int>(text.size()));
  return text.data();
}

bool isAddress(const std::string& host) {
  std::array<unsigned char, sizeof(in6_addr)> bytes{};
  return ::inet_pton(AF_INET, host.c_str(), bytes.data()) == 1 ||
         ::inet_pton(AF_INET6, host.c_str(), bytes.data()) == 1;
}

// The names and addresses that a certificate was made out to.
std::string subjectsOf(X509* certificate) {
  auto* names = static_cast<GENERAL_NAMES*>(
      X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr));
  std::vector<std::string> texts;
  for (int index = 0; index < sk_GENERAL_NAME_num(names); ++index) {
    const GENERAL_NAME* name = sk_GENERAL_NAME_value(names, index);
    if (name->type == GEN_DNS) {
      texts.emplace_back(reinterpret_cast<const char*>(ASN1_STRING_get0_data(name->d.dNSName)),
                         static_cast<std::size_t>(ASN1_STRING_length(name->d.dNSName)));
    } else if (name->type == GEN_IPADD) {
      std::array<char, INET6_ADDRSTRLEN> text{};
      const int family = ASN1_STRING_length(name->d.iPAddress) == 4 ? AF_INET : AF_INET6;
      ::inet_ntop(family, ASN1_STRING_get0_data(name->d.iPAddress), text.data(), text.size());
      texts.emplace_back(text.data());
    }
  }
  GENERAL_NAMES_free(names);
  return texts.empty() ? nameOf(X509_get_subject_name(certificate)) : joined(texts, ", ");
}

std::string lastError() {
  const unsigned long code = ERR_get_error();
  const char* reason = ERR_reason_error_string(code);
  return reason != nullptr ? reason : "the connection ended";
}

Finding nameFinding(X509* certificate, const std::string& host) {
  const bool isWell =
      isAddress(host) ? X509_check_ip_asc(certificate, host.c_str(), 0) == 1
                      : X509_check_host(certificate, host.c_str(), host.size(), 0, nullptr) == 1;
  return {isWell, "made out to " + subjectsOf(certificate)};
}

Finding dateFinding(X509* certificate) {
  const ASN1_TIME* begin = X509_get0_notBefore(certificate);
  const ASN1_TIME* end = X509_get0_notAfter(certificate);
  const bool isWell = X509_cmp_current_time(begin) < 0 && X509_cmp_current_time(end) > 0;
  return {isWell, "from " + dayOf(begin) + " to " + dayOf(end)};
}

}  // namespace

bool ServerAddress::isLoopback() const {
  return host == "localhost" || host == "::1" || (isAddress(host) && host.starts_with("127."));
}

std::optional<ServerAddress> addressIn(const std::string& url) {
  ServerAddress address;
  std::string_view rest = url;
  if (rest.starts_with("https://")) {
    rest.remove_prefix(8);
  } else if (rest.starts_with("http://")) {
    rest.remove_prefix(7);
    address.isEncrypted = false;
  } else {
    return std::nullopt;
  }
  rest = rest.substr(0, rest.find_first_of("/?#"));
  const bool isBracketed = rest.starts_with('[');
  const std::size_t end = isBracketed ? rest.find(']') : rest.find(':');
  if (isBracketed && end == std::string_view::npos) return std::nullopt;
  address.host = rest.substr(isBracketed ? 1 : 0, end - (isBracketed ? 1 : 0));
  if (end != std::string_view::npos) rest.remove_prefix(end + (isBracketed ? 1 : 0));
  const auto port = end != std::string_view::npos && rest.starts_with(':')
                        ? Argument<std::uint64_t>::parse(rest.substr(1))
                        : std::optional<std::uint64_t>(address.isEncrypted ? 443 : 80);
  if (address.host.empty() || !port || *port == 0 || *port > 65535) return std::nullopt;
  address.port = static_cast<std::uint16_t>(*port);
  return address;
}

ServerProbe::~ServerProbe() {
  if (socket_ >= 0) ::close(socket_);
}

Finding ServerProbe::lookUp() {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int failure =
      ::getaddrinfo(address_.host.c_str(), std::to_string(address_.port).c_str(), &wanted, &found);
  if (failure != 0) return {false, address_.host + ": " + ::gai_strerror(failure)};
  std::vector<std::string> texts;
  for (const addrinfo* one = found; one != nullptr; one = one->ai_next) {
    std::array<char, NI_MAXHOST> text{};
    ::getnameinfo(one->ai_addr, one->ai_addrlen, text.data(), text.size(), nullptr, 0,
                  NI_NUMERICHOST);
    const auto* bytes = reinterpret_cast<const unsigned char*>(one->ai_addr);
    endpoints_.push_back({{bytes, bytes + one->ai_addrlen}, one->ai_family, text.data()});
    texts.emplace_back(text.data());
  }
  ::freeaddrinfo(found);
  const bool isItself = texts.size() == 1 && texts.front() == address_.host;
  return {true, isItself ? address_.host : address_.host + " is " + joined(texts, ", ")};
}

Finding ServerProbe::connect() {
  std::string words = "there is no address";
  for (const Endpoint& endpoint : endpoints_) {
    const std::string place = endpoint.text + ", port " + std::to_string(address_.port);
    const int socket = ::socket(endpoint.family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    int error = errno;
    if (socket >= 0) {
      const auto* target = reinterpret_cast<const sockaddr*>(endpoint.bytes.data());
      const auto size = static_cast<socklen_t>(endpoint.bytes.size());
      error = ::connect(socket, target, size) == 0 ? 0 : errno;
      if (error == EINPROGRESS) {
        pollfd waiting{socket, POLLOUT, 0};
        socklen_t length = sizeof error;
        error = ETIMEDOUT;
        if (::poll(&waiting, 1, static_cast<int>(limit_.count())) == 1) {
          ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length);
        }
      }
    }
    if (error == 0) {
      socket_ = socket;
      return {true, place};
    }
    if (socket >= 0) ::close(socket);
    words = place + ": " + std::strerror(error);
  }
  return {false, words};
}

CertificateFindings ServerProbe::certificate(const std::string& caFile) {
  const Context context(SSL_CTX_new(TLS_client_method()));
  if (!context) return {.handshake = {false, lastError()}};
  const int isLoaded = caFile.empty()
                           ? SSL_CTX_set_default_verify_paths(context.get())
                           : SSL_CTX_load_verify_locations(context.get(), caFile.c_str(), nullptr);
  if (isLoaded != 1) return {.handshake = {false, caFile + " can't be read"}};
  SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, keepChainError);
  const Connection connection(SSL_new(context.get()));
  int chainError = X509_V_OK;
  SSL_set_ex_data(connection.get(), 0, &chainError);
  // Blocking from here on, within bounds.
  ::fcntl(socket_, F_SETFL, ::fcntl(socket_, F_GETFL) & ~O_NONBLOCK);
  timeval bound{};
  bound.tv_sec = static_cast<decltype(bound.tv_sec)>(limit_.count() / 1000);
  bound.tv_usec = static_cast<decltype(bound.tv_usec)>(limit_.count() % 1000 * 1000);
  ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &bound, sizeof bound);
  SSL_set_fd(connection.get(), socket_);
  if (!isAddress(address_.host)) {
    std::string name = address_.host;
    SSL_ctrl(connection.get(), SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name,
             name.data());
  }
  if (SSL_connect(connection.get()) != 1) return {.handshake = {false, lastError()}};

  const Certificate shown(SSL_get1_peer_certificate(connection.get()));
  if (!shown) return {.handshake = {false, "the server shows no certificate"}};
  CertificateFindings findings;
  findings.handshake = {true, SSL_get_version(connection.get())};
  const bool isTrusted = chainError == X509_V_OK;
  const std::string issuer = "issued by " + nameOf(X509_get_issuer_name(shown.get()));
  findings.chain = {isTrusted,
                    isTrusted ? issuer : issuer + ": " + X509_verify_cert_error_string(chainError)};
  findings.name = nameFinding(shown.get(), address_.host);
  findings.dates = dateFinding(shown.get());
  SSL_shutdown(connection.get());
  return findings;
}

std::optional<std::int64_t> secondsOfDate(const std::string& header) {
  std::tm parts{};
  if (::strptime(header.c_str(), "%a, %d %b %Y %H:%M:%S GMT", &parts) == nullptr) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(::timegm(&parts));
}

}  // namespace orvane::cli
