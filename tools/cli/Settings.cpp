// SPDX-License-Identifier: Apache-2.0
#include "Settings.h"

#include "Arguments.h"
#include "ConfigurationFile.h"
#include "ExitCode.h"
#include <Orvane/Common/FirmwareHost.h>

#include <nlohmann/json.hpp>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): kill is of POSIX

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <utility>

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
constexpr const char* profileVariable = "ORVANE_PROFILE";

const SettingRow& rowOf(Setting setting) { return rows[static_cast<std::size_t>(setting)]; }

// What a sandbox says of itself as long as it runs.
constexpr const char* readyFile = "ready.json";

}  // namespace

std::string flagOf(const SettingRow& row) { return "--" + std::string(row.name); }

const SettingRow* settingNamed(std::string_view name) noexcept {
  const auto* const found = std::ranges::find(rows, name, &SettingRow::name);
  return found == std::end(rows) ? nullptr : found;
}

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

void Settings::addFault(const std::string& fault) {
  faults_.append(faults_.empty() ? "" : "; ").append(fault);
}

void Settings::check() const {
  if (!faults_.empty()) throw Failure(ExitCode::configuration, faults_);
}

void Settings::load(const SettingsPlace& place) {
  set(Setting::timeout, Source::builtIn, "60");
  set(Setting::firmwareHost, Source::builtIn, FirmwareHost().url);
  const std::filesystem::path state = folder("XDG_STATE_HOME", ".local/state");
  if (!state.empty()) {
    set(Setting::deviceFile, Source::builtIn, (state / "orvane" / "device").string());
  }
  // An empty variable counts as none, as everywhere.
  const auto variable = [this](const char* name) -> std::optional<std::string> {
    const char* text = environment_(name);
    return text != nullptr && *text != '\0' ? std::optional<std::string>(text) : std::nullopt;
  };
  for (const SettingRow& row : rows) {
    if (auto text = variable(row.variable.data())) {
      set(row.setting, Source::environment, *std::move(text));
    }
  }
  const auto named = variable(fileVariable);
  if (place.file || named) {
    file_ = place.file.value_or(named.value_or(""));
    std::error_code ignored;
    if (!std::filesystem::exists(file_, ignored))
      addFault(file_.string() + ": there is no such file");
  } else if (const auto home = folder("XDG_CONFIG_HOME", ".config"); !home.empty()) {
    file_ = home / "orvane" / "config";
  }
  if (!place.profile) profile_ = variable(profileVariable).value_or("");
  readFile(place.profile);
  if (place.sandbox) readSandbox(*place.sandbox);
}

void Settings::readFile(const std::optional<std::string>& chosenProfile) {
  ConfigurationFile file;
  try {
    if (!file_.empty()) file = configurationIn(contentsOf(file_).value_or(""));
  } catch (const Failure& failure) {
    addFault(failure.what());
  }
  for (const ConfigurationEntry& entry : file.entries) {
    const bool namesProfile = entry.profile.empty() && entry.name == "profile";
    if (namesProfile && profile_.empty()) profile_ = entry.value;
    if (!namesProfile && settingNamed(entry.name) == nullptr) {
      file.faults.push_back({entry.line, "there is no setting \"" + entry.name + '"'});
    }
  }
  std::ranges::stable_sort(file.faults, {}, &ConfigurationFault::line);
  std::string words;
  for (const auto& [line, message] : file.faults) {
    words.append(words.empty() ? file_.string() + ": " : "; ")
        .append("line " + std::to_string(line) + ": " + message);
  }
  if (!words.empty()) addFault(words);
  if (chosenProfile) profile_ = *chosenProfile;
  if (!profile_.empty() && std::ranges::find(file.profiles, profile_) == file.profiles.end()) {
    const std::string fault = "there is no profile \"" + profile_ + '"';
    addFault(faults_.empty() ? file_.string() + ": " + fault : fault);
  }
  for (ConfigurationEntry& entry : file.entries) {
    const SettingRow* row = settingNamed(entry.name);
    if (row == nullptr || (!entry.profile.empty() && entry.profile != profile_)) continue;
    const Source ofProfile = chosenProfile ? Source::profile : Source::fileProfile;
    set(row->setting, entry.profile.empty() ? Source::file : ofProfile, std::move(entry.value));
  }
}

// The ready file is a sandbox's word that it answers; it goes when the sandbox stops. One that was
// left behind by a sandbox that was killed names a process that is gone.
void Settings::readSandbox(const std::filesystem::path& folder) {
  sandbox_ = folder;
  const std::filesystem::path file = folder / readyFile;
  std::ifstream stream(file);
  const auto ready = nlohmann::json::parse(stream, nullptr, false);
  const auto pid = ready.is_object() ? ready.value("pid", nlohmann::json()) : nlohmann::json();
  const bool isAlive = pid.is_number_integer() && pid.get<std::int64_t>() > 0 &&
                       (::kill(pid.get<pid_t>(), 0) == 0 || errno == EPERM);
  if (!isAlive) {
    lackSandbox_ = true;
    std::error_code ignored;
    const std::string whole = std::filesystem::absolute(folder, ignored).lexically_normal();
    return addFault("no sandbox runs on " + whole + " (start one: orvane-sandbox --data " + whole +
                    ", or name its folder: --sandbox=DIR)");
  }
  const auto take = [&](Setting setting, const char* member) {
    const auto found = ready.find(member);
    if (found != ready.end() && found->is_string()) {
      set(setting, Source::sandbox, found->get<std::string>());
    }
  };
  take(Setting::baseURL, "baseURL");
  take(Setting::firmwareHost, "baseURL");
  take(Setting::caFile, "certificateAuthority");
  take(Setting::apiKey, "apiKey");
  // Somebody else than the sandbox's default person needs a token of their own.
  if (source(Setting::user) == Source::flag) {
    set(Setting::signingKeyFile, Source::sandbox, (folder / "signing.key").string());
  } else {
    take(Setting::token, "token");
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
    case Source::fileProfile:
    case Source::profile:
      return file_.string() + " [" + profile_ + "]";
    case Source::sandbox:
      return "the sandbox on " + sandbox_.string();
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
                flagOf(row) + " is not set: give it, set " + std::string(row.variable) +
                    ", or run orvane config set " + std::string(row.name) + " " +
                    std::string(row.label) + "; orvane --sandbox talks to a sandbox");
}

std::optional<double> Settings::number(Setting setting) const {
  const auto& found = text(setting);
  if (!found) return std::nullopt;
  const auto number = Argument<double>::parse(*found);
  if (!number) throw refusal(setting, "is not a number");
  return number;
}

std::chrono::milliseconds Settings::timeout() const {
  // Long enough for everything, and small enough for every clock.
  constexpr double longest = 1e6;
  const double seconds = number(Setting::timeout).value_or(longest);
  if (!(seconds >= 0.001 && seconds <= longest)) {
    throw refusal(Setting::timeout, "is not from 0.001 to 1000000 seconds");
  }
  return std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000.0));
}

Failure Settings::refusal(Setting setting, const std::string& reason) const {
  return {source(setting) == Source::flag ? ExitCode::usage : ExitCode::configuration,
          flagOf(rowOf(setting)) + " is '" + text(setting).value_or("") + "'" +
              (source(setting) == Source::flag ? "" : " (from " + origin(setting) + ")") +
              ", which " + reason};
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
