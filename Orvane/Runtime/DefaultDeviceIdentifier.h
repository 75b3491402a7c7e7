// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The device identifier of an application that names no file for it.
#pragma once

#include <Orvane/Common/Resolvers.h>
#include <Orvane/Runtime/FileDeviceIdentifier.h>

#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// The folders by which the identifier's place is chosen; empty where the system names none.
struct DeviceFolders {
  std::string state{};      ///< $XDG_STATE_HOME.
  std::string home{};       ///< The user's home folder.
  std::string documents{};  ///< `DeviceSettings::documentsDirectory`.

  /// What the environment names, and where it names no home, the user database.
  [[nodiscard]] static DeviceFolders ofTheSystem(std::string documents);
};

/// The file for the identifier; empty where there is no place for it. The first of these:
///
/// - "orvane-device-id" among the documents, where it exists: the identifier's former place;
/// - "orvane/device-id" in the folder for what programs keep: $XDG_STATE_HOME or ~/.local/state
///   (XDG base directories, by which a relative value is ignored), on macOS
///   ~/Library/Application Support. A home that is the root, or not there, is none: daemons' users
///   have such;
/// - "orvane-device-id" among the documents, where that folder exists: on a platform without a
///   home the application names it.
[[nodiscard]] std::string defaultDeviceIdentifierFile(const DeviceFolders& folders);

/// Keeps the identifier there. The place is chosen when the identifier is first asked for; where
/// there is none, a warning says so, and the identifier lasts as long as this object.
class DefaultDeviceIdentifier final : public DeviceIdentifier {
 public:
  explicit DefaultDeviceIdentifier(std::string documents) : documents_(std::move(documents)) {}

  [[nodiscard]] std::string current() const override;

 private:
  const std::string documents_;
  mutable std::mutex mutex_;
  mutable std::optional<FileDeviceIdentifier> file_;
};

}  // namespace orvane
