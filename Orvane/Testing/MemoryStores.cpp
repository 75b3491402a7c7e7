// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Testing/MemoryStores.h>

namespace orvane {

MovableTimeMonitor::MovableTimeMonitor(std::chrono::seconds lifetime) : lifetime_(lifetime) {}
MovableTimeMonitor::~MovableTimeMonitor() = default;

const std::shared_ptr<MovableTimeMonitor>& MovableTimeMonitor::shared() {
  static const auto& monitor =
      *new std::shared_ptr<MovableTimeMonitor>(std::make_shared<MovableTimeMonitor>());
  return monitor;
}

TimeMonitor::TimePoint MovableTimeMonitor::now() const {
  return TimePoint(std::chrono::seconds(seconds_));
}

bool MovableTimeMonitor::hasExpired(TimePoint stored) const { return now() - stored >= lifetime_; }

}  // namespace orvane
