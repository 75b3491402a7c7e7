// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Fatal.h>
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
    : former_(DeviceSettings::chosen()) {
  const Result<Unit> outcome = DeviceSettings::set(std::move(settings));
  if (outcome.error()) fatal(outcome.error()->message());
}

ScopedDeviceSettings::~ScopedDeviceSettings() { DeviceSettings::set(former_); }

}  // namespace orvane
