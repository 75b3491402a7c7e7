// SPDX-License-Identifier: Apache-2.0
#include "tests/soak/Backend.h"

#include <chrono>
#include <string_view>

namespace orvane::soak {
namespace {

constexpr std::string_view api = "/kavra/api/sdk/";

// The number that a path ends with.
std::uint64_t numberIn(std::string_view target) {
  target = target.substr(0, target.find('?'));
  return std::stoull(std::string(target.substr(target.rfind('/') + 1)));
}

Kind kindOf(const ReceivedRequest& request) {
  const std::string target = request.target();
  if (target.starts_with("/uploads/")) return Kind::upload;
  if (target.starts_with("/files/")) return Kind::download;
  return request.method() == "GET" ? Kind::read : Kind::write;
}

}  // namespace

std::string answerTo(Kind kind, std::uint64_t number, const Dice& dice) {
  const std::string digits = std::to_string(number);
  switch (kind) {
    case Kind::read:
    case Kind::write:
      return R"({"tripId":")" + digits +
             R"(","tripStatus":"FINISHED","transportMode":"DRIVER","purpose":"BUSINESS"})";
    case Kind::upload:
    case Kind::multiplex:
      return "taken: " + digits;
    case Kind::download:
      break;
  }
  std::string file;
  for (std::uint64_t lines = 1 + dice.roll('f', number, 3000); lines > 0; --lines) {
    file += digits + '\n';
  }
  return file;
}

Backend::Backend(const Dice& dice)
    : dice_(dice),
      server_(
          [this](ServerConnection& connection, std::size_t number) { serve(connection, number); },
          credentials_),
      multiplexServer_([this](ServerConnection& connection,
                              std::size_t number) { serveMultiplexed(connection, number); },
                       credentials_, "h2") {}

unsigned Backend::arrivals(std::uint64_t number) const {
  const std::scoped_lock lock(mutex_);
  const auto found = arrivals_.find(number);
  return found != arrivals_.end() ? found->second : 0;
}

bool Backend::rest() {
  constexpr std::chrono::seconds patience(30);
  const bool areClosed =
      server_.waitUntilAllHaveEnded(patience) && multiplexServer_.waitUntilAllHaveEnded(patience);
  const std::scoped_lock lock(mutex_);
  arrivals_.clear();
  return areClosed;
}

bool Backend::isRefused(ServerConnection& connection, char what, std::size_t number) const {
  const std::uint64_t chosen = dice_.roll(what, number, 100);
  if (chosen < 2) connection.cut();
  return chosen < 2;
}

unsigned Backend::count(std::uint64_t number) {
  const std::scoped_lock lock(mutex_);
  return ++arrivals_[number];
}

void Backend::serve(ServerConnection& connection, std::size_t number) {
  if (isRefused(connection, '1', number)) return;
  while (const auto request = connection.receive()) answer(connection, *request);
}

void Backend::answer(ServerConnection& connection, const ReceivedRequest& request) {
  if (request.target().starts_with(std::string(api) + "identity")) {
    const std::string identity = R"({"userId":"42"})";
    const std::uint64_t lookup = lookups_++;
    if (dice_.roll('i', lookup, 20) > 0) return connection.answer(200, identity);
    return dice_.behaviour(lookup).answer(connection, identity);
  }
  const std::uint64_t number = numberIn(request.target());
  count(number);
  dice_.behaviour(number).answer(connection, answerTo(kindOf(request), number, dice_));
}

void Backend::serveMultiplexed(ServerConnection& connection, std::size_t number) {
  if (isRefused(connection, '2', number)) return;
  constexpr std::uint8_t internalError = 2;
  constexpr std::uint8_t refused = 7;  // RFC 9113, section 7
  HTTP2Connection http(connection);
  for (std::uint64_t taken = 0; const auto stream = http.receive(); ++taken) {
    const std::uint64_t call = std::stoull(http.takeBody(*stream));
    const std::uint64_t chosen = dice_.roll('s', 1000 * number + taken, 100);
    if (chosen < 10) {
      http.reset(*stream, refused);
      continue;
    }
    if (chosen < 14) {
      http.goAway(*stream - 2);  // says that it was not looked at
      return connection.end();
    }
    count(call);
    if (chosen < 18) {
      http.reset(*stream, internalError);
    } else if (chosen < 20) {
      return connection.cut();
    } else {
      http.answer(*stream, answerTo(Kind::multiplex, call, dice_));
    }
  }
}

}  // namespace orvane::soak
