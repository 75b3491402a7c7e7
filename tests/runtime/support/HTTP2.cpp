// SPDX-License-Identifier: Apache-2.0
#include "tests/runtime/support/HTTP2.h"

#include <utility>

namespace orvane {
namespace {

// Frame types and flags (RFC 9113, section 6).
constexpr std::uint8_t data = 0, headers = 1, resetStream = 3, settings = 4, ping = 6, away = 7;
constexpr std::uint8_t acknowledgement = 1, endOfStream = 1, endOfHeaders = 4;

constexpr std::size_t prefaceSize = 24;

std::string number(std::uint32_t value) {
  std::string bytes;
  for (const unsigned shift : {24U, 16U, 8U, 0U})
    bytes += static_cast<char>(value >> shift & 0xFFU);
  return bytes;
}

std::uint32_t numberIn(std::string_view bytes) {
  std::uint32_t value = 0;
  for (const char byte : bytes) value = value << 8U | static_cast<unsigned char>(byte);
  return value;
}

std::string frame(std::uint8_t type, std::uint8_t flags, std::uint32_t stream,
                  std::string_view payload) {
  std::string frame = number(static_cast<std::uint32_t>(payload.size())).substr(1);
  frame += static_cast<char>(type);
  frame += static_cast<char>(flags);
  return frame.append(number(stream)).append(payload);
}

}  // namespace

HTTP2Connection::HTTP2Connection(ServerConnection& connection) : connection_(connection) {
  static_cast<void>(connection_.receiveBytes(prefaceSize));
  send(settings, 0, 0, {});
}

std::optional<std::uint32_t> HTTP2Connection::receive() {
  while (const auto head = connection_.receiveBytes(9)) {
    const auto payload = connection_.receiveBytes(numberIn(head->substr(0, 3)));
    if (!payload) break;
    const auto type = static_cast<std::uint8_t>((*head)[3]);
    const auto flags = static_cast<std::uint8_t>((*head)[4]);
    if (type == settings && flags == 0) send(settings, acknowledgement, 0, {});
    if (type == ping && flags == 0) send(ping, acknowledgement, 0, *payload);
    const std::uint32_t stream = numberIn(head->substr(5));
    if (type == data) bodies_[stream] += *payload;
    const bool carriesRequest = type == data || type == headers;
    if (carriesRequest && (flags & endOfStream) != 0) return stream;
  }
  return std::nullopt;
}

std::string HTTP2Connection::takeBody(std::uint32_t stream) {
  return std::exchange(bodies_[stream], {});
}

void HTTP2Connection::answer(std::uint32_t stream, std::string_view body) {
  // RFC 7541, appendix A: ":status: 200"
  connection_.send(frame(headers, endOfHeaders, stream, "\x88") +
                   frame(data, endOfStream, stream, body));
}

void HTTP2Connection::reset(std::uint32_t stream, std::uint8_t code) {
  send(resetStream, 0, stream, number(code));
}

void HTTP2Connection::goAway(std::uint32_t lastStream) {
  send(away, 0, 0, number(lastStream) + number(0));
}

void HTTP2Connection::send(std::uint8_t type, std::uint8_t flags, std::uint32_t stream,
                           std::string_view payload) {
  connection_.send(frame(type, flags, stream, payload));
}

}  // namespace orvane
