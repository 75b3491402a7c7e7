// SPDX-License-Identifier: Apache-2.0
// The device as a test wants it: its clock and its settings, put back when the test ends.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/DeviceSettings.h>
#include <Orvane/Testing/Export.h>

namespace orvane {

/// Takes the place of the device's clock while it lives, and stands still unless it is moved. One
/// may live inside another's scope; otherwise one at a time. Any thread may read and move it.
class ORVANE_TESTING_EXPORT MovableClock {
 public:
  /// Starts at 2023-11-14T22:13:20Z unless told otherwise.
  explicit MovableClock(Date start = dateFromSeconds(1'700'000'000));
  ~MovableClock();
  MovableClock(const MovableClock&) = delete;
  MovableClock& operator=(const MovableClock&) = delete;

  /// Moves it to `date`.
  void set(Date date) noexcept;
  /// Negative moves it back.
  void advance(Seconds time) noexcept;
  /// What it shows.
  [[nodiscard]] Date now() const noexcept;

 private:
  const DeviceClock::Source formerSource_;
  const Date formerDate_;
};

/// Replaces the device's settings while it lives; what is left empty is the system's own. A time
/// zone that is not known stops the process.
class ORVANE_TESTING_EXPORT ScopedDeviceSettings {
 public:
  /// Puts `settings` in force.
  explicit ScopedDeviceSettings(DeviceSettings settings);
  ~ScopedDeviceSettings();
  ScopedDeviceSettings(const ScopedDeviceSettings&) = delete;
  ScopedDeviceSettings& operator=(const ScopedDeviceSettings&) = delete;

 private:
  const DeviceSettings former_;
};

}  // namespace orvane
