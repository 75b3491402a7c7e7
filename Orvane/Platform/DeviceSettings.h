// SPDX-License-Identifier: Apache-2.0
// The device's settings on which dates in requests and records depend.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>

#include <cstdint>
#include <memory>
#include <string>

namespace orvane {

/// The error of a time zone's name that is in no zone database.
struct ORVANE_EXPORT UnknownTimeZone {
  std::string name;  ///< What was asked for.

  [[nodiscard]] std::string message() const;
  friend bool operator==(const UnknownTimeZone&, const UnknownTimeZone&) = default;
};

/// Locale, time zone, calendar and folders of the device. What is left empty is taken from the
/// system when the settings are first used, or set, and stays, but for the time zone: where
/// somebody sets the machine to another one, the days of the next second are that zone's. (Where
/// the environment says it, it stays, too.) A new locale an application must name in `set`: ICU,
/// asked for the system's, keeps the one that it has found first.
struct ORVANE_EXPORT DeviceSettings {
  /// A locale identifier (CLDR), for example "en_US" or "de_DE".
  std::string locale{};
  /// A time zone of the IANA database, for example "Europe/Zurich". Where the machine's own has no
  /// name there (TZ may hold a rule, such as "CET-1CEST"): UTC, of which the log is told once.
  std::string timeZone{};
  /// A calendar type (CLDR), for example "gregorian" or "buddhist"; empty: the locale's own.
  std::string calendar{};
  /// The folder for the user's documents.
  std::string documentsDirectory{};

  friend bool operator==(const DeviceSettings&, const DeviceSettings&) = default;

  /// The settings in force, none of the members empty but `calendar`, and `documentsDirectory`
  /// where the system names no home folder. Any thread.
  [[nodiscard]] static std::shared_ptr<const DeviceSettings> current();

  /// The settings as they were last set, what was left empty still empty: what `set` takes to put
  /// them back. Any thread.
  [[nodiscard]] static DeviceSettings chosen();

  /// Replaces the settings, empty members meaning the system's own. Fails with `UnknownTimeZone`,
  /// and changes nothing, for a time zone that is not known. Any thread; calls under way may still
  /// use the former ones.
  static Result<Unit> set(DeviceSettings settings);

  /// Changes with every `set` and every time zone of the system's that was seen to be new, so that
  /// what was derived from the settings can be kept. Reads an atomic.
  [[nodiscard]] static std::uint64_t version() noexcept;
};

}  // namespace orvane
