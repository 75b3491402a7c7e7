// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Date.h>

#include <atomic>
#include <cmath>

namespace orvane {
namespace {

constinit std::atomic<DeviceClock::Source> clockSource{nullptr};

}  // namespace

std::optional<std::int64_t> millisecondsSince1970(Date date) noexcept {
  const double milliseconds = std::round(secondsSince1970(date) * 1000.0);
  // Written so that a NaN does not pass.
  if (!(milliseconds >= -0x1p63 && milliseconds < 0x1p63)) return std::nullopt;
  return static_cast<std::int64_t>(milliseconds);
}

Date DeviceClock::now() noexcept {
  if (const Source source = clockSource.load(std::memory_order_acquire)) return source();
  return std::chrono::system_clock::now();
}

DeviceClock::Source DeviceClock::setSource(Source source) noexcept {
  return clockSource.exchange(source, std::memory_order_acq_rel);
}

}  // namespace orvane
