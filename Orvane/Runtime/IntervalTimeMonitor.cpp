// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/IntervalTimeMonitor.h>

#include <utility>

namespace orvane {

IntervalTimeMonitor::IntervalTimeMonitor(std::chrono::milliseconds interval, Clock clock)
    : interval_(interval), clock_(std::move(clock)) {}

TimeMonitor::TimePoint IntervalTimeMonitor::now() const { return clock_(); }

bool IntervalTimeMonitor::hasExpired(TimePoint stored) const {
  // In the interval's unit: in the clock's, which is finer, a long one would not fit.
  return std::chrono::floor<std::chrono::milliseconds>(clock_() - stored) >= interval_;
}

}  // namespace orvane
