// SPDX-License-Identifier: Apache-2.0
// A device identifier that survives restarts.
#pragma once

#include <Orvane/Common/Resolvers.h>
#include <Orvane/Runtime/Export.h>

#include <mutex>
#include <string>

namespace orvane {

/// Keeps a random UUID in a file of the application's, readable by its owner only. The file is read
/// when the identifier is first asked for, and made then, whole or not at all, where there is none;
/// of several processes that make it at once, one wins. Warnings through `log`:
///
/// - a file that holds anything but a UUID is replaced;
/// - a file that can't be read is left alone, and one that can't be written is given up: the
///   identifier then lasts as long as this object.
class ORVANE_RUNTIME_EXPORT FileDeviceIdentifier final : public DeviceIdentifier {
 public:
  /// Folders that are missing on the way to `path` are made, for their owner only. An empty path:
  /// no file.
  explicit FileDeviceIdentifier(std::string path);

  [[nodiscard]] std::string current() const override;

 private:
  const std::string path_;
  mutable std::mutex mutex_;
  mutable std::string identifier_;
};

}  // namespace orvane
