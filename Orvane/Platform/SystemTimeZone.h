// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The time zone that the machine is set to, which somebody may change at any time.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

namespace orvane {

/// Where the machine says what its zone is, and the clock by which it is asked again.
struct SystemTimeZoneSource {
  using Clock = std::chrono::steady_clock::time_point (*)();

  /// The environment's variable that comes first (POSIX, "TZ").
  const char* variable = "TZ";
  /// A link into the zone database, or a copy of one of its files.
  std::filesystem::path file = "/etc/localtime";
  Clock clock = &std::chrono::steady_clock::now;
};

struct SystemTimeZone {
  /// A name of the zone database: "UTC" where the machine's is not known.
  std::string name = "UTC";
  bool isKnown = false;
  /// False where the environment says it, which stays.
  bool canChange = true;
};

/// Looks what the machine's zone is. One thread at a time.
[[nodiscard]] SystemTimeZone systemTimeZone(const SystemTimeZoneSource& source);

/// Differs once the file may stand for another zone than before. Opens nothing.
[[nodiscard]] std::string stampOf(const std::filesystem::path& file);

// The rest belongs to `DeviceSettings`, which holds what was found.

/// Where the device's zone is the machine's: looks whether that has changed, not more often than
/// once a second in the whole process. In between it reads an atomic and the clock. Any thread.
void followSystemTimeZone();

/// True once in a process, after a machine's zone was looked up that is not known: days are UTC's.
/// Reads an atomic. Any thread.
[[nodiscard]] bool takeUnknownSystemTimeZone() noexcept;

/// For tests: replaces the source, forgets what was found and told, and answers the former source.
SystemTimeZoneSource setSystemTimeZoneSource(SystemTimeZoneSource source);

}  // namespace orvane
