// SPDX-License-Identifier: Apache-2.0
// Firmware for the in-car device: whether there is a newer one, and how to get it.
#pragma once

#include <Orvane/Common/Downloader.h>
#include <Orvane/Common/Operation.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

class RequestManager;

/// It is not known what firmware the device has.
struct ORVANE_EXPORT FirmwareVersionMissing {
  [[nodiscard]] std::string message() const;
  friend constexpr bool operator==(const FirmwareVersionMissing&,
                                   const FirmwareVersionMissing&) = default;
};

/// A download of firmware that could not even start.
struct ORVANE_EXPORT FirmwareDownloadError {
  /// What is missing.
  enum class Case : std::uint8_t {
    noDownloader,  ///< No `Downloader` is registered.
    noFolder,      ///< There is no folder for it: `firmwareLocation` is absent, or no file's URL.
  };

  Case kind;  ///< What is missing.

  [[nodiscard]] std::string message() const;
  friend constexpr bool operator==(const FirmwareDownloadError&,
                                   const FirmwareDownloadError&) = default;
};

/// A package that has been downloaded.
struct ORVANE_EXPORT FirmwarePackage {
  std::string path;  ///< Where it stands, in the file system's own form.
  /// Read from the package's name; absent where that tells none.
  std::optional<std::string> version{};

  friend bool operator==(const FirmwarePackage&, const FirmwarePackage&) = default;
};

/// Compares the device's firmware with the published one and downloads that, for the application to
/// transfer. The published version is read from the name of the package. Any thread may call;
/// `firmwareLocation` and `availableFirmwareVersion` must not be written meanwhile.
class ORVANE_EXPORT WedgeFirmwareService {
 public:
  /// Receives the version that has been downloaded, or nothing when that failed.
  using DownloadHandler = UniqueFunction<void(std::optional<std::string>)>;

  /// Creates the folder "firmware" among the user's documents (`DeviceSettings`) where it does not
  /// exist; a failure is printed to standard output, and the service can be used all the same. A
  /// missing `RequestManager`, and a `FirmwareHost` that forms no URL, stop the process.
  WedgeFirmwareService();

  /// The transport that was registered when this was made.
  [[nodiscard]] const std::shared_ptr<RequestManager>& requestManager() const noexcept {
    return requestManager_;
  }
  /// Where the published package is.
  [[nodiscard]] const URL& remoteURL() const noexcept { return remoteURL_; }

  /// Calls `then`, before it returns, with whether the published firmware is newer than the
  /// device's: false for an equal version, and when none is known to be published. An absent
  /// version is a programming fault that stops the process.
  void checkUpdateAvailability(const std::optional<std::string>& userFirmwareVersion,
                               UniqueFunction<void(bool)> then) const;

  /// The same as a value; an absent version is answered with `FirmwareVersionMissing`.
  [[nodiscard]] Result<bool> updateAvailability(
      const std::optional<std::string>& userFirmwareVersion) const;

  /// Downloads the published package into `firmwareLocation`, under its own name, where it replaces
  /// a former one, and calls `then` with its version. `then` runs on a thread of the `Downloader`'s
  /// choice; where none is registered, or there is no folder, it is called with nothing before this
  /// returns. What went wrong is logged.
  RequestHandle downloadFirmware(DownloadHandler then) const {
    return downloadFirmware({}, std::move(then));
  }

  /// The same, telling the progress.
  RequestHandle downloadFirmware(DownloadProgressHandler progress, DownloadHandler then) const;

  /// The same, with what went wrong as an error besides the log: a `FirmwareDownloadError`, or the
  /// `Downloader`'s. `progress` is called in every start.
  Operation<std::optional<std::string>> downloadFirmware() const;
  template <class Progress>
    requires(!std::is_invocable_v<Progress&, std::optional<std::string>> &&
             std::is_invocable_v<Progress&, const DownloadProgress&>)
  Operation<std::optional<std::string>> downloadFirmware(Progress progress)
  const { return downloadVersion(std::move(progress)); }

  /// The same, with the package as the value.
  Operation<FirmwarePackage> downloadPackage(DownloadProgressHandler progress = {}) const;
  RequestHandle downloadPackage(DownloadProgressHandler progress,
                                Completion<FirmwarePackage> then) const;

  /// The folder for downloads, as a file's URL; absent where there is no documents folder.
  std::optional<URL> firmwareLocation;
  /// The published version: major, minor and patch separated by ".".
  std::optional<std::string> availableFirmwareVersion;

 private:
  [[nodiscard]] Operation<std::optional<std::string>> downloadVersion(
      DownloadProgressHandler progress) const;

  URL remoteURL_;
  std::shared_ptr<RequestManager> requestManager_;
  std::shared_ptr<Downloader> downloader_;  // null where none is registered
};

}  // namespace orvane
