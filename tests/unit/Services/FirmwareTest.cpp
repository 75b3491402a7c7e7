// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/FirmwareHost.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/WedgeFirmware/WedgeFirmwareService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {
namespace {

constexpr const char* packageName = "DFU_4417_Release___2_2_2.zip";

class FirmwareTest : public testing::Test {
 protected:
  // The log as "e|i <message> @ <file>: <function>" lines.
  [[nodiscard]] std::vector<std::string> logged() const {
    std::vector<std::string> lines;
    for (const auto& line : log_.lines()) {
      EXPECT_GT(line.line, 0U);
      lines.push_back((line.level == Logger::Level::error ? "e " : "i ") + line.message + " @ " +
                      line.file + ": " + line.function);
    }
    return lines;
  }

  const TemporaryFolder documents_;
  const ScopedDeviceSettings settings_{{.documentsDirectory = documents_ / "Documents"}};
  const ScopedFoundation foundation_;
  const RecordingLogger log_;
};

// Keeps what a download handler is given.
struct Downloaded {
  std::vector<std::optional<std::string>> versions;

  [[nodiscard]] WedgeFirmwareService::DownloadHandler handler() {
    return [this](std::optional<std::string> version) { versions.push_back(std::move(version)); };
  }
};

using Versions = std::vector<std::optional<std::string>>;

TEST_F(FirmwareTest, isBuiltFromThePublishedPackage) {
  const WedgeFirmwareService service;
  EXPECT_EQ(service.remoteURL().absoluteString(),
            "https://firmware.example/downloads/DFU_4417_Release___2_2_2.zip");
  EXPECT_EQ(service.requestManager(), foundation_.requestManager);
  EXPECT_EQ(service.availableFirmwareVersion, "2.2.2");
  ASSERT_TRUE(service.firmwareLocation);
  EXPECT_EQ(service.firmwareLocation->filePath(), documents_ / "Documents/firmware");
  EXPECT_TRUE(std::filesystem::is_directory(documents_ / "Documents/firmware"));
}

TEST_F(FirmwareTest, takesTheHostFromTheContainer) {
  Container::common()->register_<FirmwareHost>(
      std::make_shared<FirmwareHost>(FirmwareHost{"https://127.0.0.1:8443/store/"}));
  EXPECT_EQ(WedgeFirmwareService().remoteURL().absoluteString(),
            "https://127.0.0.1:8443/store/downloads/DFU_4417_Release___2_2_2.zip");
}

TEST_F(FirmwareTest, tellsNewerVersions) {
  struct Row {
    const char* device;
    bool isNewer;
  };
  const Row rows[] = {{"2.2.1", true},    {"2.2.2", false},  {"3.0.0", false},
                      {"2.2", true},      {"2.10", false},   {"", true},
                      {"2.2.2.0", false}, {"2.2.02", false}, {"1.9.9", true}};
  const WedgeFirmwareService service;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.device);
    const RecordingLogger log;
    std::vector<bool> told;
    service.checkUpdateAvailability(row.device, [&](bool isNewer) { told.push_back(isNewer); });
    EXPECT_EQ(told, std::vector{row.isNewer});
    EXPECT_EQ(log.lines().size(), row.isNewer ? 1U : 0U);
    EXPECT_EQ(service.updateAvailability(row.device), row.isNewer);
  }
  service.checkUpdateAvailability("2.2.1", nullptr);
  EXPECT_EQ(logged(),
            std::vector<std::string>{"i Wedge firmware update available. @ Services/Wedge "
                                     "Firmware/WedgeFirmwareService: "
                                     "checkUpdateAvailability(userFirmwareVersion:_:)"});
}

TEST_F(FirmwareTest, knowsNoUpdateWithoutAPublishedVersion) {
  WedgeFirmwareService service;
  service.availableFirmwareVersion.reset();
  EXPECT_EQ(service.updateAvailability("0.0.1"), false);
  EXPECT_EQ(service.updateAvailability(std::nullopt), FirmwareVersionMissing{});
  EXPECT_TRUE(logged().empty());
}

TEST_F(FirmwareTest, downloadsThePackageUnderItsName) {
  const std::string target = documents_ / (std::string("Documents/firmware/") + packageName);
  const WedgeFirmwareService service;
  writeFile(target, "former");
  foundation_.downloader->answer(std::string("image"));
  std::vector<DownloadProgress> progress;
  Downloaded downloaded;
  service.downloadFirmware([&](const DownloadProgress& now) { progress.push_back(now); },
                           downloaded.handler());
  EXPECT_EQ(foundation_.downloader->questions(),
            (std::vector<RecordedDownload>{{service.remoteURL(), target}}));
  EXPECT_EQ(contentsOf(target), "image");
  EXPECT_EQ(progress, (std::vector<DownloadProgress>{{.received = 5, .total = 5}}));
  EXPECT_EQ(downloaded.versions, Versions{"2.2.2"});
  EXPECT_EQ(logged(),
            std::vector<std::string>{
                "i Downloaded new firmware. (version: Optional(\"2.2.2\")) @ Services/Wedge "
                "Firmware/WedgeFirmwareService: downloadFirmware(_:)"});
}

TEST_F(FirmwareTest, answersThePackage) {
  foundation_.downloader->answer(std::string("image"));
  const WedgeFirmwareService service;
  const Outcome<FirmwarePackage> package;
  service.downloadPackage(nullptr, package.handler());
  EXPECT_EQ(
      package.result(),
      (FirmwarePackage{documents_ / (std::string("Documents/firmware/") + packageName), "2.2.2"}));
  EXPECT_EQ(logged().size(), 1U);
}

TEST_F(FirmwareTest, downloadsAnUnknownVersion) {
  foundation_.downloader->answer(std::string("image"));
  WedgeFirmwareService service;
  service.availableFirmwareVersion.reset();
  Downloaded downloaded;
  service.downloadFirmware(downloaded.handler());
  EXPECT_EQ(downloaded.versions, Versions{std::nullopt});
  EXPECT_EQ(log_.lines().at(0).message, "Downloaded new firmware. (version: nil)");
}

TEST_F(FirmwareTest, tellsAndLogsFailures) {
  struct Row {
    const char* name;
    Result<std::string> answer;
    bool hasDownloader;
    bool hasFolder;
    bool hasVersion;
    std::string message;
    Error error;
  };
  using Case = FirmwareDownloadError::Case;
  const std::string known = "Error downloading firmware version Optional(\"2.2.2\")";
  const auto refused = NetworkError::invalidStatusCode(404);
  const Row rows[] = {
      {"refused", refused, true, true, true, known + ": " + refused.message(), refused},
      {"without a reason",
       {},
       true,
       true,
       true,
       known + ": " + NetworkError::unknown.message(),
       NetworkError::unknown},
      {"unknown version", refused, true, true, false,
       "Error downloading firmware version nil: " + refused.message(), refused},
      {"no downloader", std::string(), false, true, true, known + ": no downloader is registered",
       FirmwareDownloadError{Case::noDownloader}},
      {"no folder", std::string(), true, false, true, known + ": there is no folder for it",
       FirmwareDownloadError{Case::noFolder}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const ScopedFoundation foundation;
    const RecordingLogger log;
    foundation.downloader->answer(row.answer);
    if (!row.hasDownloader) {
      Container::common()->register_<Downloader>(std::shared_ptr<Downloader>());
    }
    WedgeFirmwareService service;
    if (!row.hasFolder) service.firmwareLocation.reset();
    if (!row.hasVersion) service.availableFirmwareVersion.reset();
    Downloaded downloaded;
    const RequestHandle request = service.downloadFirmware(downloaded.handler());
    EXPECT_TRUE(request->isFinished());
    EXPECT_EQ(downloaded.versions, Versions{std::nullopt});
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(log.lines()[0].level, Logger::Level::error);
    EXPECT_EQ(log.lines()[0].message, row.message);
    EXPECT_EQ(log.lines()[0].function, "downloadFirmware(_:)");

    const Outcome<FirmwarePackage> package;
    service.downloadPackage(nullptr, package.handler());
    EXPECT_EQ(package.result(), row.error);
    ASSERT_EQ(log.lines().size(), 2U);
    EXPECT_EQ(log.lines()[1].message, row.message);
  }
}

TEST_F(FirmwareTest, staysSilentWhenCancelled) {
  foundation_.downloader->answer({std::string("image"), AnswerTime::whenTold});
  Downloaded downloaded;
  const RequestHandle request = WedgeFirmwareService().downloadFirmware(downloaded.handler());
  EXPECT_TRUE(request->cancel());
  EXPECT_EQ(foundation_.downloader->answerWaiting(), 0U);
  EXPECT_TRUE(downloaded.versions.empty());
  EXPECT_TRUE(logged().empty());
}

TEST_F(FirmwareTest, printsWhyThereIsNoFolder) {
  struct Row {
    std::string documents;
    std::string printed;
  };
  writeFile(documents_ / "file", "");
  const Row rows[] = {
      {documents_ / "file", "error creating /Documents/firmware directory: Not a directory\n"},
      {documents_ / "\xC3(",
       "error creating /Documents/firmware directory: No such file or directory\n"},
      {documents_ / "fine", ""},
  };
  for (const Row& row : rows) {
    const ScopedDeviceSettings settings({.documentsDirectory = row.documents});
    testing::internal::CaptureStdout();
    const WedgeFirmwareService service;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), row.printed);
    EXPECT_EQ(service.availableFirmwareVersion, "2.2.2");
  }
  EXPECT_TRUE(logged().empty());
}

class FirmwareDeathTest : public DeathTest {};

TEST_F(FirmwareDeathTest, stopsForAnAbsentVersion) {
  const auto check = [] {
    const ScopedFoundation foundation;
    WedgeFirmwareService().checkUpdateAvailability(std::nullopt, nullptr);
  };
  EXPECT_DEATH(check(), "checkUpdateAvailability needs the device's firmware version");
}

TEST_F(FirmwareDeathTest, stopsWithoutARequestManager) {
  const auto make = [] {
    const ScopedFoundation foundation;
    Container::common()->register_<RequestManager>(std::shared_ptr<RequestManager>());
    const WedgeFirmwareService service;
  };
  EXPECT_DEATH(make(),
               "nothing is registered for orvane::RequestManager: "
               "file WedgeFirmwareService, line 33");
}

TEST_F(FirmwareDeathTest, stopsForAHostThatIsNoURL) {
  const auto make = [] {
    const ScopedFoundation foundation;
    Container::common()->register_<FirmwareHost>(
        std::make_shared<FirmwareHost>(FirmwareHost{"no host"}));
    const WedgeFirmwareService service;
  };
  EXPECT_DEATH(make(), "the firmware host is no URL");
}

}  // namespace
}  // namespace orvane
