// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/CurrentDate.h>

#include <atomic>

namespace orvane {
namespace {

constinit std::atomic<double> correction{0.0};

}  // namespace

Date currentDate() noexcept {
  return DeviceClock::now() + Seconds{correction.load(std::memory_order_relaxed)};
}

void setCurrentDateOffset(Seconds offset) noexcept {
  correction.store(offset.count(), std::memory_order_relaxed);
}

}  // namespace orvane
