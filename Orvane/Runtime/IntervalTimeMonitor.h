// SPDX-License-Identifier: Apache-2.0
// How long user identifiers are kept.
#pragma once

#include <Orvane/Common/Stores.h>
#include <Orvane/Runtime/Export.h>

#include <chrono>
#include <functional>

namespace orvane {

/// Expires what is older than an interval, by a clock that nobody sets. Any thread.
class ORVANE_RUNTIME_EXPORT IntervalTimeMonitor final : public TimeMonitor {
 public:
  /// Reads a clock that never goes back; any thread may call it.
  using Clock = std::function<TimePoint()>;

  /// Entries last for `interval` by `clock`, which must not be empty.
  explicit IntervalTimeMonitor(std::chrono::milliseconds interval = std::chrono::hours(1),
                               Clock clock = std::chrono::steady_clock::now);

  [[nodiscard]] TimePoint now() const override;
  [[nodiscard]] bool hasExpired(TimePoint stored) const override;

 private:
  const std::chrono::milliseconds interval_;
  const Clock clock_;
};

}  // namespace orvane
