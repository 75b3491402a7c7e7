// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests that wait for a connection, host by host.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace orvane {

class Transfer;

/// The requests to one scheme, host and port.
struct HostLine {
  using Waiting = std::list<std::shared_ptr<Transfer>>;

  Waiting waiting;
  std::size_t running = 0;
  bool isEncrypted = false;
  /// The last connection made carries several requests at once.
  bool isMultiplexed = false;
  /// A connection has been reached since requests have been running without a break.
  bool isReached = false;
  /// When the first of those requests began.
  std::chrono::steady_clock::time_point since;
};

/// Lets requests begin in the order in which they came, as many of each host at once as its
/// connections carry. Kept here rather than by libcurl, which looks at the clock of none that it
/// makes wait, and has all of them wait for the first one's handshake, however long that takes.
///
/// Whether a connection carries several requests is known after its handshake. Until then the
/// others wait for that of the first, for a quarter of a second at most. Belongs to one thread.
class HostLines {
 public:
  using Clock = std::chrono::steady_clock;

  /// @param maximumConnections to one host; 0 for any number.
  explicit HostLines(std::uint32_t maximumConnections) : maximumConnections_(maximumConnections) {}

  /// Puts a request at the end of its host's line.
  void add(const std::shared_ptr<Transfer>& transfer);
  /// Takes a request out that has not begun.
  [[nodiscard]] std::shared_ptr<Transfer> remove(Transfer& transfer);
  /// Takes out a request that may begin now, and counts it as running; null when there is none.
  [[nodiscard]] std::shared_ptr<Transfer> next(Clock::time_point now);
  /// Calls `take` with each request that waits, which is to remove it.
  template <class Take>
  void takeAll(Take take) {
    for (auto& [origin, line] : lines_) {
      while (!line.waiting.empty()) take(*line.waiting.front());
    }
  }
  /// Says that a request has a connection, and whether that carries others besides.
  static void hasConnected(Transfer& transfer, bool isMultiplexed) noexcept;
  /// Says that a request that was running has ended.
  void hasEnded(Transfer& transfer);

  /// When it is worth asking for the next request, even if none ends before; absent for never.
  [[nodiscard]] std::optional<Clock::time_point> nextChange(Clock::time_point now) const;

 private:
  [[nodiscard]] bool mayBegin(const HostLine& line, Clock::time_point now) const noexcept;
  [[nodiscard]] bool hasRoom(const HostLine& line) const noexcept;

  const std::size_t maximumConnections_;
  std::unordered_map<std::string, HostLine> lines_;
};

}  // namespace orvane
