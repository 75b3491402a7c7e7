// SPDX-License-Identifier: Apache-2.0
#include "Settings.h"

#include "Arguments.h"
#include "ConfigurationFile.h"
#include "ExitCode.h"
#include <Orvane/Common/FirmwareHost.h>

#include <algorithm>

namespace orvane::cli {
namespace {

constexpr SettingRow rows[] = {
    {Setting::baseURL, "base-url", "ORVANE_BASE_URL", "URL", "Where the backend is"},
    {Setting::apiKey, "api-key", "ORVANE_API_KEY", "TEXT", "The programme's API key"},
    {Setting::user, "user", "ORVANE_USER", "TEXT",
     "Who is signed in: the external reference id of the person"},
    {Setting::token, "token", "ORVANE_TOKEN", "TEXT", "The bearer token to send", true},
    {Setting::signingKeyFile, "signing-key-file", "ORVANE_SIGNING_KEY_FILE", "FILE",
     "The key to sign tokens with, instead of --token: hexadecimal digits"},
    {Setting::caFile, "ca-file", "ORVANE_CA_FILE", "FILE",
     "The certificate authorities to trust (PEM), instead of the system's"},
    {Setting::timeout, "timeout", "ORVANE_TIMEOUT", "SECONDS",
     "The longest that a call may take, and that a download may stand still"},
    {Setting::clockOffset, "clock-offset", "ORVANE_CLOCK_OFFSET", "SECONDS",
     "Makes this device's clock wrong on purpose: negative for a clock that is behind"},
    {Setting::deviceFile, "device-file", "ORVANE_DEVICE_FILE", "FILE",
     "Where this device's identifier is kept"},
    {Setting::locale, "locale", "ORVANE_LOCALE", "LOCALE",
     "The device's locale, such as de_DE, instead of the system's"},
    {Setting::timeZone, "time-zone", "ORVANE_TIME_ZONE", "ZONE",
     "The device's time zone, such as Europe/Zurich, instead of the system's"},
    {Setting::firmwareHost, "firmware-host", "ORVANE_FIRMWARE_HOST", "URL",
     "Where firmware is published"},
    {Setting::documentsFolder, "documents-dir", "ORVANE_DOCUMENTS_DIR", "DIR",
     "The folder for documents; firmware is kept in its folder \"firmware\""},
};

constexpr const char* fileVariable = "ORVANE_CONFIG";

const SettingRow& rowOf(Setting setting) { return rows[static_cast<std::size_t>(setting)]; }

std::string flagOf(const SettingRow& row) { return "--" + std::string(row.name); }

}  // namespace

std::span<const SettingRow> settingRows() noexcept { return rows; }

Settings::Settings(Environment environment) : environment_(std::move(environment)) {
  static_assert(std::size(rows) == count);
}

void Settings::set(Setting setting, Source source, std::string text) {
  if (source >= value(setting).source) value(setting) = {std::move(text), source};
}

void Settings::setFlag(Setting setting, std::string value) {
  set(setting, Source::flag, std::move(value));
}

void Settings::load(const std::optional<std::filesystem::path>& path) {
  set(Setting::timeout, Source::builtIn, "60");
  set(Setting::firmwareHost, Source::builtIn, FirmwareHost().url);
  const std::filesystem::path state = folder("XDG_STATE_HOME", ".local/state");
  if (!state.empty()) {
    set(Setting::deviceFile, Source::builtIn, (state / "orvane" / "device").string());
  }
  for (const SettingRow& row : rows) {
    const char* text = environment_(row.variable.data());
    // An empty variable counts as none, as everywhere.
    if (text != nullptr && *text != '\0') set(row.setting, Source::environment, text);
  }

  const char* named = environment_(fileVariable);
  const bool isNamed = path || (named != nullptr && *named != '\0');
  if (isNamed) {
    file_ = path ? *path : named;
  } else if (const auto home = folder("XDG_CONFIG_HOME", ".config"); !home.empty()) {
    file_ = home / "orvane" / "config";
  }
  std::error_code ignored;
  if (isNamed || std::filesystem::exists(file_, ignored)) readFile();
}

void Settings::readFile() {
  for (ConfigurationEntry& entry : readConfigurationFile(file_)) {
    const auto row = std::ranges::find(rows, entry.name, &SettingRow::name);
    if (row == std::end(rows)) {
      throw Failure(ExitCode::configuration,
                    file_.string() + ": there is no setting \"" + entry.name + '"');
    }
    set(row->setting, Source::file, std::move(entry.value));
  }
}

const std::optional<std::string>& Settings::text(Setting setting) const {
  return value(setting).text;
}

Settings::Source Settings::source(Setting setting) const { return value(setting).source; }

std::string Settings::origin(Setting setting) const {
  switch (source(setting)) {
    case Source::nowhere:
      return "not set";
    case Source::builtIn:
      return "default";
    case Source::file:
      return file_.string();
    case Source::environment:
      return std::string(rowOf(setting).variable);
    case Source::flag:
      return flagOf(rowOf(setting));
  }
  return {};
}

std::string Settings::required(Setting setting) const {
  if (const auto& found = text(setting)) return *found;
  const SettingRow& row = rowOf(setting);
  throw Failure(ExitCode::configuration,
                "no " + std::string(row.name) + ": give " + flagOf(row) + ", set " +
                    std::string(row.variable) + " or write it into " +
                    (file_.empty() ? "a file named by --config" : file_.string()));
}

std::optional<double> Settings::number(Setting setting) const {
  const auto& found = text(setting);
  if (!found) return std::nullopt;
  const auto number = Argument<double>::parse(*found);
  if (!number) throw refusal(setting, "is not a number");
  return number;
}

Failure Settings::refusal(Setting setting, const std::string& reason) const {
  return {source(setting) == Source::flag ? ExitCode::usage : ExitCode::configuration,
          origin(setting) + ": " + std::string(rowOf(setting).name) + " is '" +
              text(setting).value_or("") + "', which " + reason};
}

Settings::Value& Settings::value(Setting setting) {
  return values_[static_cast<std::size_t>(setting)];
}

const Settings::Value& Settings::value(Setting setting) const {
  return values_[static_cast<std::size_t>(setting)];
}

std::filesystem::path Settings::folder(const char* variable, const char* belowHome) const {
  // The XDG base directories: a relative path is invalid and ignored.
  const char* named = environment_(variable);
  if (named != nullptr && *named == '/') return named;
  const char* home = environment_("HOME");
  if (home == nullptr || *home == '\0') return {};
  return std::filesystem::path(home) / belowHome;
}

}  // namespace orvane::cli
