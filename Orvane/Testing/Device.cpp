// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Testing/Device.h>

#include <atomic>
#include <utility>

namespace orvane {
namespace {

constinit std::atomic<double> movableSeconds{0};

Date readMovableClock() { return dateFromSeconds(movableSeconds.load()); }

}  // namespace

MovableClock::MovableClock(Date start)
    : formerSource_(DeviceClock::setSource(&readMovableClock)), formerDate_(now()) {
  set(start);
}

MovableClock::~MovableClock() {
  set(formerDate_);
  DeviceClock::setSource(formerSource_);
}

void MovableClock::set(Date date) noexcept { movableSeconds.store(secondsSince1970(date)); }

void MovableClock::advance(Seconds time) noexcept { set(now() + time); }

Date MovableClock::now() const noexcept { return readMovableClock(); }

ScopedDeviceSettings::ScopedDeviceSettings(DeviceSettings settings)
    : former_(*DeviceSettings::current()) {
  DeviceSettings::set(std::move(settings));
}

ScopedDeviceSettings::~ScopedDeviceSettings() { DeviceSettings::set(former_); }

}  // namespace orvane
