// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/OpenSockets.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <new>

namespace orvane {
namespace {

// One side of a connection.
struct End {
  std::string address;
  int port = 0;

  friend bool operator==(const End&, const End&) = default;
};

using GetName = int (*)(int, sockaddr*, socklen_t*);

End endOf(curl_socket_t socket, GetName getName) {
  sockaddr_storage storage{};
  socklen_t size = sizeof storage;
  if (getName(socket, reinterpret_cast<sockaddr*>(&storage), &size) != 0) return {};
  std::array<char, INET6_ADDRSTRLEN> text{};
  const auto endAt = [&](const void* address, in_port_t port) {
    ::inet_ntop(storage.ss_family, address, text.data(), text.size());
    return End{text.data(), ntohs(port)};
  };
  if (storage.ss_family == AF_INET) {
    const auto* address = reinterpret_cast<const sockaddr_in*>(&storage);
    return endAt(&address->sin_addr, address->sin_port);
  }
  if (storage.ss_family == AF_INET6) {
    const auto* address = reinterpret_cast<const sockaddr_in6*>(&storage);
    return endAt(&address->sin6_addr, address->sin6_port);
  }
  return {};
}

}  // namespace

bool OpenSocket::isClosedByPeer() const noexcept {
  pollfd asked{descriptor, POLLRDHUP, 0};
  return ::poll(&asked, 1, 0) == 1 && asked.revents != 0;
}

std::shared_ptr<OpenSocket> OpenSockets::find(int localPort, const std::string& remoteAddress,
                                              int remotePort) const {
  std::shared_ptr<OpenSocket> found;
  for (const auto& socket : sockets_) {
    if (socket->localPort == 0) socket->localPort = endOf(socket->descriptor, &::getsockname).port;
    if (localPort == 0 || socket->localPort != localPort) continue;
    // Nearly always there is but one, which need not be asked where it leads.
    const bool isMeant =
        !found || endOf(found->descriptor, &::getpeername) != End{remoteAddress, remotePort};
    if (isMeant) found = socket;
  }
  return found;
}

curl_socket_t OpenSockets::open(void* sockets, curlsocktype, curl_sockaddr* address) noexcept {
  const int descriptor =
      ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
  if (descriptor < 0) return CURL_SOCKET_BAD;
  try {
    auto& open = static_cast<OpenSockets*>(sockets)->sockets_;
    open.push_back(std::make_shared<OpenSocket>(OpenSocket{descriptor, 0, {}}));
  } catch (const std::bad_alloc&) {
    ::close(descriptor);
    return CURL_SOCKET_BAD;
  }
  return descriptor;
}

int OpenSockets::close(void* sockets, curl_socket_t socket) noexcept {
  std::erase_if(static_cast<OpenSockets*>(sockets)->sockets_, [socket](const auto& open) {
    if (open->descriptor != socket) return false;
    open->descriptor = CURL_SOCKET_BAD;
    return true;
  });
  return ::close(socket);
}

}  // namespace orvane
