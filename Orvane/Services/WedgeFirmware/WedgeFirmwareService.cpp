// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/FirmwareHost.h>
#include <Orvane/Common/Logger.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Common/Version.h>
#include <Orvane/Core/Container+Network.h>
#include <Orvane/Core/Once.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Files.h>
#include <Orvane/Platform/Regex.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/WedgeFirmware/WedgeFirmwareService.h>

#include <cstdio>

namespace orvane {
namespace {

constexpr std::string_view sourceFile = "Services/Wedge Firmware/WedgeFirmwareService";

constexpr std::string_view packageName = "DFU_4417_Release___2_2_2.zip";
constexpr std::string_view versionPresent = R"(\.*?DFU_4417.*___(\d+)_(\d+)_(\d+).*)";
constexpr std::string_view versionGroups =
    R"(\.*?DFU_4417.*___(?<major>\d+)_(?<minor>\d+)_(?<patch>\d+).*)";

URL packageURL() {
  const auto registered = networkContainer().find<FirmwareHost>();
  const auto host = URL::parse(registered ? registered->url : FirmwareHost().url);
  precondition(host.has_value(), "the firmware host is no URL");
  // A text of plain characters can always be appended.
  return *host->appendingPathComponent(concatenated({"downloads/", packageName}));
}

std::optional<std::string> versionIn(std::string_view url) {
  if (!isFound(versionPresent, url)) return std::nullopt;
  const auto numbers = findGroups(versionGroups, url, {"major", "minor", "patch"});
  if (!numbers) return std::nullopt;
  return concatenated({(*numbers)[0], ".", (*numbers)[1], ".", (*numbers)[2]});
}

std::optional<URL> makeFirmwareFolder() {
  const auto path = documentsFolder("firmware");
  std::optional<URL> folder = path ? URL::fromFilePath(*path) : std::nullopt;
  const std::error_code failure =
      folder ? createFolder(*path) : std::make_error_code(std::errc::no_such_file_or_directory);
  if (failure) {
    std::printf("error creating /Documents/firmware directory: %s\n", failure.message().c_str());
  }
  return folder;
}

// The form in which the version stands in the log.
std::string description(const std::optional<std::string>& text) {
  return text ? concatenated({"Optional(\"", *text, "\")"}) : "nil";
}

void logUpdate() {
  log.i("Wedge firmware update available.", sourceFile,
        "checkUpdateAvailability(userFirmwareVersion:_:)", __LINE__);
}

void logDownload(const std::optional<std::string>& version) {
  log.i(concatenated({"Downloaded new firmware. (version: ", description(version), ")"}),
        sourceFile, "downloadFirmware(_:)", __LINE__);
}

void logFailure(const std::optional<std::string>& version, const Error& error) {
  log.e(concatenated(
            {"Error downloading firmware version ", description(version), ": ", error.message()}),
        sourceFile, "downloadFirmware(_:)", __LINE__);
}

}  // namespace

std::string FirmwareVersionMissing::message() const {
  return "the device's firmware version is not known";
}

std::string FirmwareDownloadError::message() const {
  return kind == Case::noDownloader ? "no downloader is registered" : "there is no folder for it";
}

WedgeFirmwareService::WedgeFirmwareService()
    : remoteURL_(packageURL()),
      requestManager_(
          injectOrStop<RequestManager>(networkContainer(), {"WedgeFirmwareService", 33})),
      downloader_(networkContainer().find<Downloader>()) {
  firmwareLocation = makeFirmwareFolder();
  availableFirmwareVersion = versionIn(remoteURL_.absoluteString());
}

void WedgeFirmwareService::checkUpdateAvailability(
    const std::optional<std::string>& userFirmwareVersion, UniqueFunction<void(bool)> then) const {
  precondition(userFirmwareVersion.has_value(),
               "checkUpdateAvailability needs the device's firmware version");
  then(*updateAvailability(userFirmwareVersion).value());
}

Result<bool> WedgeFirmwareService::updateAvailability(
    const std::optional<std::string>& userFirmwareVersion) const {
  if (!userFirmwareVersion) return FirmwareVersionMissing{};
  const bool isNewer =
      availableFirmwareVersion && isVersion(*availableFirmwareVersion, *userFirmwareVersion);
  if (isNewer) logUpdate();
  return isNewer;
}

RequestHandle WedgeFirmwareService::downloadFirmware(DownloadProgressHandler progress,
                                                     DownloadHandler then) const {
  return downloadVersion(std::move(progress))
      .start([then = std::move(then)](Result<std::optional<std::string>> version) mutable {
        then(std::move(version).value_or(std::nullopt));
      });
}

Operation<std::optional<std::string>> WedgeFirmwareService::downloadFirmware() const {
  return downloadVersion({});
}

Operation<std::optional<std::string>> WedgeFirmwareService::downloadVersion(
    DownloadProgressHandler progress) const {
  return Operation<std::optional<std::string>>(
      [package =
           downloadPackage(std::move(progress))](Completion<std::optional<std::string>> then) {
        return package.start([then = std::move(then)](Result<FirmwarePackage> downloaded) mutable {
          then(std::move(downloaded).transform([](FirmwarePackage whole) {
            return std::move(whole.version);
          }));
        });
      },
      Effect::reads);
}

Operation<FirmwarePackage> WedgeFirmwareService::downloadPackage(
    DownloadProgressHandler progress) const {
  const auto folder = firmwareLocation ? firmwareLocation->filePath() : std::nullopt;
  const FirmwarePackage package{folder ? concatenated({*folder, "/", packageName}) : std::string(),
                                availableFirmwareVersion};
  const auto onProgress =
      progress ? std::make_shared<DownloadProgressHandler>(std::move(progress)) : nullptr;
  std::optional<Error> obstacle;
  if (!folder) obstacle = FirmwareDownloadError{FirmwareDownloadError::Case::noFolder};
  if (!downloader_) obstacle = FirmwareDownloadError{FirmwareDownloadError::Case::noDownloader};

  return Operation<FirmwarePackage>(
      [url = remoteURL_, downloader = downloader_, package, onProgress,
       obstacle](Completion<FirmwarePackage> then) -> RequestHandle {
        Completion<Unit> finish = [package,
                                   then = std::move(then)](const Result<Unit>& result) mutable {
          if (!result) {
            Error error = result.errorOr(NetworkError::unknown);
            logFailure(package.version, error);
            return then(std::move(error));
          }
          logDownload(package.version);
          then(package);
        };
        if (obstacle) {
          finish(*obstacle);
          return std::make_shared<EmptyRequest>();
        }
        DownloadProgressHandler tell;
        if (onProgress) tell = [onProgress](const DownloadProgress& now) { (*onProgress)(now); };
        return downloader->download(url, package.path, std::move(tell), once(std::move(finish)));
      },
      Effect::reads);
}

RequestHandle WedgeFirmwareService::downloadPackage(DownloadProgressHandler progress,
                                                    Completion<FirmwarePackage> then) const {
  return downloadPackage(std::move(progress)).start(std::move(then));
}

}  // namespace orvane
