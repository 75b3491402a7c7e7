// SPDX-License-Identifier: Apache-2.0
// orvane config: the settings themselves.
#include "Commands.h"
#include "ConfigurationFile.h"
#include "OutputFile.h"
#include <Orvane/Platform/TimeZone.h>
#include <Orvane/Runtime/EndpointResolvers.h>

#include <algorithm>

namespace orvane::cli {

/// The name of a setting.
struct SettingName {
  std::string text;
};

template <>
struct Argument<SettingName> {
  static constexpr std::string_view label = "NAME";
  static constexpr std::string_view meaning = "a setting: orvane config list has them all";
  [[nodiscard]] static std::vector<std::string> choices() {
    std::vector<std::string> names{"profile"};
    for (const SettingRow& row : settingRows()) names.emplace_back(row.name);
    return names;
  }
  [[nodiscard]] static std::optional<SettingName> parse(std::string_view text) {
    if (text != "profile" && settingNamed(text) == nullptr) return std::nullopt;
    return SettingName{std::string(text)};
  }
};

namespace {

struct ListConfig {
  static constexpr std::string_view name = "list";
  static constexpr std::string_view summary = "List every setting and where it comes from";
  static constexpr Example examples[] = {
      {"config list", "secrets are blanked"},
      {"config list --timeout 5", "what a flag makes of them"},
  };

  // What is wrong comes last, so that what is right is seen.
  void run(Session& session) const {
    const Settings& settings = session.settings();
    const auto valueOf = [&](const SettingRow& row) {
      const auto& text = settings.text(row.setting);
      return row.isSecret && text ? "…" : text.value_or("");
    };
    const auto originOf = [&](const SettingRow& row) { return settings.origin(row.setting); };
    Output& output = session.output();
    if (output.style().isJSON()) {
      std::string json;
      for (const SettingRow& row : settingRows()) {
        json += (json.empty() ? "{" : ",") + jsonText(row.name) +
                ":{\"value\":" + (settings.text(row.setting) ? jsonText(valueOf(row)) : "null") +
                ",\"from\":" + jsonText(originOf(row)) + "}";
      }
      output.json(json + "}");
    } else {
      output.table(Table("settings", settingRows(),
                         {{"setting", [](const SettingRow& row) { return std::string(row.name); }},
                          {"value", valueOf},
                          {"from", originOf, 1}}));
    }
    session.finish();
    settings.check();
  }
};

struct GetConfig {
  static constexpr std::string_view name = "get";
  static constexpr std::string_view summary = "Print a setting that is in force";
  static constexpr Example examples[] = {{"config get timeout", "its value alone, secrets too"}};

  SettingName setting;

  void declare(Options& options) { options.positional("NAME", setting, "The setting"); }

  void run(Session& session) const {
    const Settings& settings = session.settings();
    settings.check();
    const SettingRow* row = settingNamed(setting.text);
    const std::string value =
        row != nullptr ? settings.text(row->setting).value_or("") : settings.profile();
    if (value.empty()) throw Failure(ExitCode::configuration, setting.text + " is not set");
    session.output().line(value);
  }
};

// Puts a setting into the file, or takes it away.
void write(Session& session, const std::string& name, const std::optional<std::string>& value) {
  const std::filesystem::path& file = session.settings().file();
  if (file.empty()) {
    throw Failure(ExitCode::configuration, "no home folder is known: name a file with --config");
  }
  const std::string text = contentsOf(file).value_or("");
  std::error_code ignored;
  std::filesystem::create_directories(file.parent_path(), ignored);
  const std::string& profile = name == "profile" ? "" : session.settings().profile();
  // A token may stand in it.
  writeDocument(file, withSetting(text, profile, name, value), session.output(), Readers::owner);
}

// Whether the base URL of a backend, or of firmware, is one.
void checkURL(const SettingRow& row, const std::string& text) {
  const auto made = EndpointSource(text).resolver();
  if (made) return;
  constexpr std::string_view option = "baseURL";
  const std::string said = made.errorOr(NetworkError::unknown).message();
  throw Failure(ExitCode::usage, "'" + text + "' can't be set: " + std::string(row.name) +
                                     said.substr(std::min(option.size(), said.size())));
}

// A `Failure` for a value with which no command that needs the setting could work.
void checkValue(const SettingRow& row, const std::string& text) {
  Settings settings(nullptr);
  settings.setFlag(row.setting, text);
  switch (row.setting) {
    case Setting::baseURL:
    case Setting::firmwareHost:
      return checkURL(row, text);
    case Setting::timeout:
      static_cast<void>(settings.timeout());
      return;
    case Setting::clockOffset:
      static_cast<void>(settings.number(row.setting));
      return;
    case Setting::timeZone:
      if (!TimeZone::named(text)) throw settings.refusal(row.setting, "the device does not know");
      return;
    default:
      return;
  }
}

struct SetConfig {
  static constexpr std::string_view name = "set";
  static constexpr std::string_view summary = "Write a setting into the file";
  static constexpr Example examples[] = {
      {"config set timeout 30", "for every command from now on"},
      {"config set base-url https://staging.example --profile staging",
       "for those with --profile staging"},
  };

  SettingName setting;
  std::string value;

  void declare(Options& options) {
    options.positional("NAME", setting, "The setting");
    options.positional("VALUE", value, "Its value");
  }

  void run(Session& session) const {
    if (const SettingRow* row = settingNamed(setting.text)) checkValue(*row, value);
    write(session, setting.text, value);
  }
};

struct UnsetConfig {
  static constexpr std::string_view name = "unset";
  static constexpr std::string_view summary = "Take a setting out of the file";

  SettingName setting;

  void declare(Options& options) { options.positional("NAME", setting, "The setting"); }

  void run(Session& session) const { write(session, setting.text, std::nullopt); }
};

struct ShowPath {
  static constexpr std::string_view name = "path";
  static constexpr std::string_view summary = "Show which file the settings are read from";
  static constexpr Example examples[] = {{"config path", "whether or not it is there"}};

  void run(Session& session) const { session.output().line(session.settings().file().string()); }
};

}  // namespace

Resource configCommands() {
  return Resource("config", "The settings of this program")
      .add<ListConfig>()
      .add<GetConfig>()
      .add<SetConfig>()
      .add<UnsetConfig>()
      .add<ShowPath>();
}

}  // namespace orvane::cli
