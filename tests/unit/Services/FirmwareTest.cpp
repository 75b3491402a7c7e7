// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/FirmwareHost.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/WedgeFirmware/WedgeFirmwareService.h>
#include <Orvane/Testing/Device.h>
#include <Orvane/Testing/RecordingLogger.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {
namespace {

using testing::ElementsAre;

constexpr const char* packageName = "DFU_4417_Release___2_2_2.zip";

class FirmwareTest : public testing::Test {
 protected:
  // The log so far as "e|i <message> @ <function>" lines.
  [[nodiscard]] std::vector<std::string> logged() const {
    std::vector<std::string> lines;
    for (const auto& line : log_.lines()) {
      EXPECT_GT(line.line, 0U);
      EXPECT_EQ(line.file, "Services/Wedge Firmware/WedgeFirmwareService");
      lines.push_back((line.level == Logger::Level::error ? "e " : "i ") + line.message + " @ " +
                      line.function);
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
  const std::pair<const char*, bool> rows[] = {
      {"2.2.1", true}, {"2.2.2", false},   {"3.0.0", false},  {"2.2", true},  {"2.10", false},
      {"", true},      {"2.2.2.0", false}, {"2.2.02", false}, {"1.9.9", true}};
  const WedgeFirmwareService service;
  for (const auto& [device, isNewer] : rows) {
    SCOPED_TRACE(device);
    const RecordingLogger log;
    std::vector<bool> told;
    service.checkUpdateAvailability(device, [&](bool is) { told.push_back(is); });
    EXPECT_THAT(told, ElementsAre(isNewer));
    EXPECT_EQ(log.lines().size(), isNewer ? 1U : 0U);
    EXPECT_EQ(service.updateAvailability(device), isNewer);
  }
  service.checkUpdateAvailability("2.2.1", nullptr);
  EXPECT_THAT(logged(), ElementsAre("i Wedge firmware update available. @ "
                                    "checkUpdateAvailability(userFirmwareVersion:_:)"));
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
  foundation_.downloader->answer("image");
  std::vector<DownloadProgress> progress;
  Downloaded downloaded;
  service.downloadFirmware([&](const DownloadProgress& now) { progress.push_back(now); },
                           downloaded.handler());
  EXPECT_THAT(foundation_.downloader->questions(),
              ElementsAre(RecordedDownload{service.remoteURL(), target}));
  EXPECT_EQ(contentsOf(target), "image");
  EXPECT_THAT(progress, ElementsAre(DownloadProgress{.received = 5, .total = 5}));
  EXPECT_THAT(downloaded.versions, ElementsAre("2.2.2"));
  const std::string line =
      "i Downloaded new firmware. (version: Optional(\"2.2.2\")) @ downloadFirmware(_:)";
  EXPECT_THAT(logged(), ElementsAre(line));

  EXPECT_EQ(resultOf<FirmwarePackage>(
                [&](auto then) { service.downloadPackage(nullptr, std::move(then)); }),
            (FirmwarePackage{target, "2.2.2"}));
  EXPECT_THAT(logged(), ElementsAre(line, line));
}

TEST_F(FirmwareTest, downloadsAnUnknownVersion) {
  foundation_.downloader->answer("image");
  WedgeFirmwareService service;
  service.availableFirmwareVersion.reset();
  Downloaded downloaded;
  service.downloadFirmware(downloaded.handler());
  EXPECT_THAT(downloaded.versions, ElementsAre(std::nullopt));
  EXPECT_EQ(log_.lines().at(0).message, "Downloaded new firmware. (version: nil)");
}

TEST_F(FirmwareTest, tellsAndLogsFailures) {
  using Case = FirmwareDownloadError::Case;
  const auto refused = NetworkError::invalidStatusCode(404);
  const Result<std::string> silent;
  const std::string known = R"(Optional("2.2.2"))";
  struct Row {
    Result<std::string> answer;
    bool hasDownloader, hasFolder, hasVersion;
    std::string version, reason;
    Error error;
  };
  const Row rows[] = {
      {refused, true, true, true, known, refused.message(), refused},
      {silent, true, true, true, known, NetworkError::unknown.message(), NetworkError::unknown},
      {refused, true, true, false, "nil", refused.message(), refused},
      {silent, false, true, true, known, "no downloader is registered",
       FirmwareDownloadError{Case::noDownloader}},
      {silent, true, false, true, known, "there is no folder for it",
       FirmwareDownloadError{Case::noFolder}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.reason);
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
    EXPECT_TRUE(service.downloadFirmware(downloaded.handler())->isFinished());
    EXPECT_THAT(downloaded.versions, ElementsAre(std::nullopt));
    EXPECT_EQ(resultOf<FirmwarePackage>(
                  [&](auto then) { service.downloadPackage(nullptr, std::move(then)); }),
              row.error);
    ASSERT_EQ(log.lines().size(), 2U);
    for (const auto& line : log.lines()) {
      EXPECT_EQ(line.level, Logger::Level::error);
      EXPECT_EQ(line.message,
                "Error downloading firmware version " + row.version + ": " + row.reason);
      EXPECT_EQ(line.function, "downloadFirmware(_:)");
    }
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
  writeFile(documents_ / "file", "");
  const std::pair<std::string, std::string> rows[] = {
      {"file", "error creating /Documents/firmware directory: Not a directory\n"},
      {"\xC3(", "error creating /Documents/firmware directory: No such file or directory\n"},
      {"fine", ""},
  };
  for (const auto& [documents, printed] : rows) {
    const ScopedDeviceSettings settings({.documentsDirectory = documents_ / documents});
    testing::internal::CaptureStdout();
    const WedgeFirmwareService service;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), printed);
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
