// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/IntervalTimeMonitor.h>

#include <utility>

namespace orvane {

IntervalTimeMonitor::IntervalTimeMonitor(std::chrono::milliseconds interval, Clock clock)
    : interval_(interval), clock_(std::move(clock)) {}

TimeMonitor::TimePoint IntervalTimeMonitor::now() const { return clock_(); }

bool IntervalTimeMonitor::hasExpired(TimePoint stored) const {
  return clock_() - stored >= interval_;
}

}  // namespace orvane
