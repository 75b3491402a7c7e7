// SPDX-License-Identifier: Apache-2.0
// The stores that last as long as the process.
#pragma once

#include <Orvane/Common/Stores.h>
#include <Orvane/Platform/Export.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace orvane {

/// Keeps clock offsets in memory. Any thread.
class ORVANE_EXPORT MemoryTimeOffsetStore final : public TimeOffsetStore {
 public:
  [[nodiscard]] std::optional<double> get(const Identity& identity) const override;
  void set(const Identity& identity, std::optional<double> offset) override;

 private:
  mutable std::mutex mutex_;
  std::unordered_map<Identity, double> offsets_;
};

/// Expires what is older than an interval, by a clock that nobody sets. Any thread.
class ORVANE_EXPORT IntervalTimeMonitor final : public TimeMonitor {
 public:
  /// Reads a clock that never goes back; any thread may call it.
  using Clock = std::function<TimePoint()>;

  explicit IntervalTimeMonitor(std::chrono::milliseconds interval = std::chrono::hours(1),
                               Clock clock = std::chrono::steady_clock::now);

  [[nodiscard]] TimePoint now() const override;
  [[nodiscard]] bool hasExpired(TimePoint stored) const override;

 private:
  const std::chrono::milliseconds interval_;
  const Clock clock_;
};

}  // namespace orvane
