// SPDX-License-Identifier: Apache-2.0
#include "tests/runtime/support/TestServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <csignal>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace orvane {
namespace {

// Agrees on HTTP/2 with who speaks it, and on HTTP/1.1 with others.
int selectProtocol(SSL*, const unsigned char** chosen, unsigned char* size,
                   const unsigned char* offered, unsigned offeredSize, void*) {
  static constexpr unsigned char spoken[] = "\x02h2\x08http/1.1";
  unsigned char* selected = nullptr;
  SSL_select_next_proto(&selected, size, spoken, sizeof spoken - 1, offered, offeredSize);
  *chosen = selected;
  return SSL_TLSEXT_ERR_OK;
}

std::shared_ptr<SSL_CTX> contextWith(const Credentials& credentials,
                                     std::string_view protocol = {}) {
  std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
  SSL_CTX_use_certificate(context.get(), credentials.certificate.get());
  SSL_CTX_use_PrivateKey(context.get(), credentials.key.get());
  SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_OFF);  // clients keep tickets
  if (protocol == "h2") SSL_CTX_set_alpn_select_cb(context.get(), selectProtocol, nullptr);
  return context;
}

// Writing to a connection that the client has closed is no reason to die.
void ignoreBrokenPipes() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

std::size_t announcedLength(std::string head) {
  std::transform(head.begin(), head.end(), head.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  constexpr std::string_view name = "\r\ncontent-length:";
  const std::size_t place = head.find(name);
  return place == std::string::npos ? 0 : std::stoul(head.substr(place + name.size()));
}

}  // namespace

std::string ReceivedRequest::word(int place) const {
  std::istringstream line(head);
  std::string word;
  for (int i = 0; i <= place; ++i) line >> word;
  return word;
}

std::string ReceivedRequest::header(const std::string& name) const {
  const std::string start = "\r\n" + name + ": ";
  const std::size_t place = head.find(start);
  if (place == std::string::npos) return {};
  const std::size_t value = place + start.size();
  return head.substr(value, head.find('\r', value) - value);
}

ServerConnection::ServerConnection(int socket, SSL_CTX* context)
    : socket_(socket), tls_(context != nullptr ? SSL_new(context) : nullptr, &SSL_free) {
  const int on = 1;
  ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  if (tls_) {
    SSL_set_fd(tls_.get(), socket);
    SSL_set_accept_state(tls_.get());
  }
}

// What has come and was not read would make the system reset the connection, and the client lose
// what it has not read either.
ServerConnection::~ServerConnection() {
  std::array<char, 4096> bytes;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  while (::recv(socket_, bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
  }
  ::close(socket_);
}

bool ServerConnection::fill() {
  std::array<char, 16384> bytes;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  const auto count = tls_ ? SSL_read(tls_.get(), bytes.data(), static_cast<int>(bytes.size()))
                          : ::recv(socket_, bytes.data(), bytes.size(), 0);
  if (count <= 0) {
    isOpen_ = false;
    return false;
  }
  buffer_.append(bytes.data(), static_cast<std::size_t>(count));
  return true;
}

std::optional<ReceivedRequest> ServerConnection::receive() {
  std::size_t end = 0;
  while ((end = buffer_.find("\r\n\r\n")) == std::string::npos) {
    if (!isOpen_ || !fill()) return std::nullopt;
  }
  ReceivedRequest request;
  request.head = buffer_.substr(0, end);
  const std::size_t length = announcedLength(request.head);
  while (buffer_.size() < end + 4 + length) {
    if (!fill()) return std::nullopt;
  }
  request.body = buffer_.substr(end + 4, length);
  buffer_.erase(0, end + 4 + length);
  return request;
}

std::optional<std::string> ServerConnection::receiveBytes(std::size_t count) {
  while (buffer_.size() < count) {
    if (!isOpen_ || !fill()) return std::nullopt;
  }
  std::string bytes = buffer_.substr(0, count);
  buffer_.erase(0, count);
  return bytes;
}

bool ServerConnection::send(std::string_view bytes) {
  while (isOpen_ && !bytes.empty()) {
    const auto count = tls_ ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size()))
                            : ::send(socket_, bytes.data(), bytes.size(), 0);
    if (count <= 0) isOpen_ = false;
    bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
  }
  return isOpen_;
}

void ServerConnection::answer(int status, std::string_view body, std::string_view headers) {
  std::string text = "HTTP/1.1 " + std::to_string(status) +
                     " Status\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
  text.append(headers).append("\r\n").append(body);
  send(text);
}

void ServerConnection::waitUntilClosed() {
  while (isOpen_ && fill()) buffer_.clear();
}

void ServerConnection::cut() {
  isOpen_ = false;
  interrupt();
}

void ServerConnection::end() {
  if (tls_) SSL_shutdown(tls_.get());
  cut();
}

void ServerConnection::interrupt() const { ::shutdown(socket_, SHUT_RDWR); }

TestServer::TestServer(Handler handler, std::optional<Credentials> credentials)
    : TestServer(
          [this, handler = std::move(handler)](ServerConnection& connection, std::size_t number) {
            serve(handler, connection, number);
          },
          credentials ? contextWith(*credentials) : nullptr) {}

TestServer::TestServer(Handler handler, const Credentials& credentials,
                       const Credentials& authority)
    : TestServer(std::move(handler), credentials) {
  SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
  X509_STORE_add_cert(SSL_CTX_get_cert_store(context_.get()), authority.certificate.get());
}

TestServer::TestServer(ConnectionHandler handler, const Credentials& credentials,
                       std::string_view protocol)
    : TestServer(std::move(handler), contextWith(credentials, protocol)) {}

TestServer::TestServer(ConnectionHandler handler, std::shared_ptr<SSL_CTX> context)
    : handler_(std::move(handler)),
      context_(std::move(context)),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  if (::bind(listener_, generic, size) != 0 || ::listen(listener_, 128) != 0 ||
      ::getsockname(listener_, generic, &size) != 0) {
    throw std::runtime_error("no loopback interface");
  }
  port_ = ntohs(address.sin_port);
  acceptor_ = std::thread([this] { accept(); });
}

TestServer::~TestServer() {
  {
    const std::scoped_lock lock(mutex_);
    isStopping_ = true;
    for (const Served& served : served_) {
      if (served.connection) served.connection->interrupt();
    }
  }
  ::shutdown(listener_, SHUT_RDWR);
  acceptor_.join();
  for (Served& served : served_) served.thread.join();
  ::close(listener_);
}

std::string TestServer::url(std::string_view target) const {
  return (context_ ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(port_) +
         std::string(target);
}

std::size_t TestServer::connectionCount() const {
  const std::scoped_lock lock(mutex_);
  return connectionCount_;
}

std::vector<ReceivedRequest> TestServer::requests() const {
  const std::scoped_lock lock(mutex_);
  return requests_;
}

void TestServer::waitForRequests(std::size_t count) const {
  std::unique_lock lock(mutex_);
  arrived_.wait(lock, [&] { return requests_.size() >= count; });
}

void TestServer::waitForConnections(std::size_t count) const {
  std::unique_lock lock(mutex_);
  arrived_.wait(lock, [&] { return connectionCount_ >= count; });
}

bool TestServer::waitUntilAllHaveEnded(std::chrono::milliseconds timeout) const {
  std::unique_lock lock(mutex_);
  return arrived_.wait_for(lock, timeout, [&] {
    return std::none_of(served_.begin(), served_.end(),
                        [](const Served& served) { return served.connection != nullptr; });
  });
}

void TestServer::accept() {
  while (true) {
    const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    const std::scoped_lock lock(mutex_);
    if (isStopping_ || socket < 0) {
      if (socket >= 0) ::close(socket);
      return;
    }
    begin(socket);
  }
}

// With the lock held, that of threads which have ended included: they have let go of it.
void TestServer::begin(int socket) {
  served_.remove_if([](Served& served) {
    if (served.connection) return false;
    served.thread.join();
    return true;
  });
  Served& served = served_.emplace_back();
  served.connection = std::make_unique<ServerConnection>(socket, context_.get());
  served.thread = std::thread([this, &served, number = connectionCount_++] {
    ignoreBrokenPipes();
    handler_(*served.connection, number);
    end(served);
  });
  arrived_.notify_all();
}

void TestServer::end(Served& served) {
  served.connection->cut();
  const std::scoped_lock lock(mutex_);
  served.connection.reset();
  arrived_.notify_all();
}

void TestServer::serve(const Handler& handler, ServerConnection& connection, std::size_t number) {
  while (auto request = connection.receive()) {
    request->connection = number;
    {
      const std::scoped_lock lock(mutex_);
      requests_.push_back(*request);
    }
    arrived_.notify_all();
    handler(connection, *request);
  }
}

TestServer::Handler answering(std::string body) {
  return [body = std::move(body)](ServerConnection& connection, const ReceivedRequest&) {
    connection.answer(200, body);
  };
}

}  // namespace orvane
