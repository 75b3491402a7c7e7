// SPDX-License-Identifier: Apache-2.0
// The device's settings on which dates in requests and records depend.
#pragma once

#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <memory>
#include <string>

namespace orvane {

/// Locale, time zone, calendar and folders of the device. What is left empty is taken from the
/// system when the settings are first used, or set, and stays: an application that hears of a new
/// time zone calls `set`. A new locale it must name there: ICU, asked for the system's, keeps the
/// one that it has found first.
struct ORVANE_EXPORT DeviceSettings {
  /// A locale identifier (CLDR), for example "en_US" or "de_DE".
  std::string locale{};
  /// A time zone of the IANA database, for example "Europe/Zurich".
  std::string timeZone{};
  /// A calendar type (CLDR), for example "gregorian" or "buddhist"; empty: the locale's own.
  std::string calendar{};
  /// The folder for the user's documents.
  std::string documentsDirectory{};

  friend bool operator==(const DeviceSettings&, const DeviceSettings&) = default;

  /// The settings in force, none of the members empty but `calendar`, and `documentsDirectory`
  /// where the system names no home folder. Any thread.
  [[nodiscard]] static std::shared_ptr<const DeviceSettings> current();

  /// Replaces the settings, empty members meaning the system's own. Any thread; calls under way may
  /// still use the former ones.
  static void set(DeviceSettings settings);

  /// Changes with every `set`, so that what was derived from the settings can be kept.
  [[nodiscard]] static std::uint64_t version() noexcept;
};

}  // namespace orvane
