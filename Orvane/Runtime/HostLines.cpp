// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/HostLines.h>
#include <Orvane/Runtime/Transfer.h>

#include <algorithm>

namespace orvane {
namespace {

// RFC 8305, section 5, waits as long for one attempt at a connection before it makes another.
constexpr std::chrono::milliseconds patience{250};

// What libcurl sends over one connection at once, unless the server wants less.
constexpr std::size_t requestsPerConnection = 100;

// Hosts of which is remembered what their connections carry, though no request to them is under
// way.
constexpr std::size_t mostKnownHosts = 64;

}  // namespace

void HostLines::add(const std::shared_ptr<Transfer>& transfer) {
  const OutgoingRequest& request = transfer->request();
  if (lines_.size() > mostKnownHosts) {
    std::erase_if(lines_, [](const auto& entry) {
      return entry.second.running == 0 && entry.second.waiting.empty();
    });
  }
  HostLine& line = lines_[request.origin];
  line.isEncrypted = request.isEncrypted;
  line.waiting.push_back(transfer);
  transfer->hostLine = &line;
  transfer->place = std::prev(line.waiting.end());
  transfer->isWaiting = true;
}

std::shared_ptr<Transfer> HostLines::remove(Transfer& transfer) {
  std::shared_ptr<Transfer> removed = std::move(*transfer.place);
  transfer.hostLine->waiting.erase(transfer.place);
  transfer.isWaiting = false;
  return removed;
}

std::shared_ptr<Transfer> HostLines::next(Clock::time_point now) {
  for (auto& [origin, line] : lines_) {
    if (line.waiting.empty() || !mayBegin(line, now)) continue;
    if (line.running == 0) {
      line.since = now;
      line.isReached = false;
    }
    ++line.running;
    return remove(*line.waiting.front());
  }
  return nullptr;
}

bool HostLines::mayBegin(const HostLine& line, Clock::time_point now) const noexcept {
  if (line.running == 0) return true;
  if (!hasRoom(line)) return false;
  return !line.isEncrypted || line.isReached || now >= line.since + patience;
}

bool HostLines::hasRoom(const HostLine& line) const noexcept {
  if (maximumConnections_ == 0) return true;
  return line.running < maximumConnections_ * (line.isMultiplexed ? requestsPerConnection : 1);
}

void HostLines::hasConnected(Transfer& transfer, bool isMultiplexed) noexcept {
  transfer.hostLine->isReached = true;
  transfer.hostLine->isMultiplexed = isMultiplexed;
}

void HostLines::hasEnded(Transfer& transfer) { --transfer.hostLine->running; }

std::optional<HostLines::Clock::time_point> HostLines::nextChange(Clock::time_point now) const {
  std::optional<Clock::time_point> first;
  for (const auto& [origin, line] : lines_) {
    if (line.waiting.empty()) continue;
    if (mayBegin(line, now)) return now;
    if (!hasRoom(line)) continue;
    const Clock::time_point change = line.since + patience;
    if (!first || change < *first) first = change;
  }
  return first;
}

}  // namespace orvane
