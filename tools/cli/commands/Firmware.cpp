// SPDX-License-Identifier: Apache-2.0
// orvane firmware: what the in-car device runs.
#include "Commands.h"
#include "ProgressBar.h"
#include "StandardOutputSilence.h"
#include <Orvane/Services/WedgeFirmware/WedgeFirmwareService.h>

namespace orvane::cli {

/// Numbers with points between them.
struct FirmwareVersion {
  std::string text;
};

template <>
struct Argument<FirmwareVersion> {
  static constexpr std::string_view label = "VERSION";
  static constexpr std::string_view meaning = "a version, as 2.2.1";

  [[nodiscard]] static std::optional<FirmwareVersion> parse(std::string_view text) {
    bool isNumber = false;
    for (const char character : text) {
      const bool isDigit = character >= '0' && character <= '9';
      if (!isDigit && !(character == '.' && isNumber)) return std::nullopt;
      isNumber = isDigit;
    }
    if (!isNumber) return std::nullopt;
    return FirmwareVersion{std::string(text)};
  }
};

namespace {

std::string jsonOf(const std::optional<std::string>& text) {
  return text ? jsonText(*text) : "null";
}

// The service tells on standard output that its folder can't be made, which is for answers here.
// A download that needs the folder fails with a line of its own.
WedgeFirmwareService makeService() {
  const StandardOutputSilence silence;
  return {};
}

struct CheckFirmware {
  static constexpr std::string_view name = "check";
  static constexpr std::string_view summary = "Tell whether newer firmware is published";
  static constexpr Example examples[] = {
      {"firmware check 2.2.1", "2.2.1 being what the device runs"},
      {"firmware check 2.2.1 --json | jq .updateIsAvailable", "true or false, for a script"},
  };

  FirmwareVersion version;

  void declare(Options& options) {
    options.positional("VERSION", version, "The version on the device");
  }

  void run(Session& session) const {
    session.connectForDownloads();
    const WedgeFirmwareService service = makeService();
    const Result<bool> isNewer = service.updateAvailability(version.text);
    if (!isNewer.value()) throw failureOf(isNewer.errorOr(NetworkError::unknown));
    print(service.availableFirmwareVersion, *isNewer.value(), session.output());
  }

 private:
  static void print(const std::optional<std::string>& published, bool isNewer, Output& output) {
    if (output.style().isJSON()) {
      return output.json("{\"publishedVersion\":" + jsonOf(published) +
                         ",\"updateIsAvailable\":" + (isNewer ? "true" : "false") + "}");
    }
    output.block(Block().row("published version", published).row("update", toText(isNewer)));
  }
};

struct DownloadFirmware {
  static constexpr std::string_view name = "download";
  static constexpr std::string_view summary = "Download the published firmware";
  static constexpr Example examples[] = {
      {"firmware download", "one that was cut off or cancelled goes on from where it was"},
      {"firmware download --documents-dir .", "into the folder firmware of this one"},
  };

  void run(Session& session) const {
    session.connectForDownloads();
    const WedgeFirmwareService service = makeService();
    if (!service.firmwareLocation) {
      throw Failure(ExitCode::configuration,
                    "there is no folder for documents: give "
                    "--documents-dir or set ORVANE_DOCUMENTS_DIR");
    }
    ProgressBar bar("firmware");
    const auto package = session.download<FirmwarePackage>([&](Completion<FirmwarePackage> then) {
      return service.downloadPackage(bar.handler(), std::move(then));
    });
    bar.end();
    print(package, session.output());
  }

 private:
  static void print(const FirmwarePackage& package, Output& output) {
    if (output.style().isJSON()) {
      return output.json("{\"version\":" + jsonOf(package.version) +
                         ",\"file\":" + jsonText(package.path) + "}");
    }
    output.block(Block().row("version", package.version).row("file", package.path));
  }
};

}  // namespace

Resource firmwareCommands() {
  return Resource("firmware", "What the in-car device runs")
      .add<CheckFirmware>()
      .add<DownloadFirmware>();
}

}  // namespace orvane::cli
