// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/OpenSockets.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <new>

namespace orvane {
namespace {

int localPortOf(curl_socket_t socket) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
  if (address.ss_family == AF_INET) {
    return ntohs(reinterpret_cast<const sockaddr_in*>(&address)->sin_port);
  }
  if (address.ss_family == AF_INET6) {
    return ntohs(reinterpret_cast<const sockaddr_in6*>(&address)->sin6_port);
  }
  return 0;
}

bool hasPeerClosed(curl_socket_t socket) {
  pollfd asked{socket, POLLRDHUP, 0};
  return ::poll(&asked, 1, 0) == 1 && asked.revents != 0;
}

}  // namespace

bool OpenSockets::isClosedByPeer(int localPort) {
  if (localPort == 0) return false;
  return std::any_of(sockets_.begin(), sockets_.end(), [localPort](Socket& socket) {
    if (socket.localPort == 0) socket.localPort = localPortOf(socket.descriptor);
    return socket.localPort == localPort && hasPeerClosed(socket.descriptor);
  });
}

curl_socket_t OpenSockets::open(void* sockets, curlsocktype, curl_sockaddr* address) noexcept {
  const int descriptor =
      ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
  if (descriptor < 0) return CURL_SOCKET_BAD;
  try {
    static_cast<OpenSockets*>(sockets)->sockets_.push_back({descriptor, 0});
  } catch (const std::bad_alloc&) {
    ::close(descriptor);
    return CURL_SOCKET_BAD;
  }
  return descriptor;
}

int OpenSockets::close(void* sockets, curl_socket_t socket) noexcept {
  std::erase_if(static_cast<OpenSockets*>(sockets)->sockets_,
                [socket](const Socket& open) { return open.descriptor == socket; });
  return ::close(socket);
}

}  // namespace orvane
