// SPDX-License-Identifier: Apache-2.0
// Who calls back after a while: for limits of time and for pauses.
#pragma once

#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <chrono>

namespace orvane {

/// Runs jobs after a while. An application that wants them on a loop of its own, or a test that
/// moves the clock by hand, implements it.
class ORVANE_EXPORT Timers {
 public:
  using Clock = std::chrono::steady_clock;  ///< The clock of `now`.

  Timers() = default;
  Timers(const Timers&) = delete;
  Timers& operator=(const Timers&) = delete;
  virtual ~Timers();

  /// Runs `job` when `pause` has passed, on a thread of the implementer's choice and never inside
  /// the call, unless the request is cancelled before. Any thread may call.
  virtual RequestHandle after(std::chrono::milliseconds pause, UniqueFunction<void()> job) = 0;

  /// What time it is.
  [[nodiscard]] virtual Clock::time_point now() const = 0;

  /// The timers of the process. Their jobs run one after the other on a thread that is there while
  /// something waits for it, and for some seconds longer. Nobody may wait for a request there: a
  /// programming fault.
  [[nodiscard]] static Timers& ofProcess();
};

}  // namespace orvane
