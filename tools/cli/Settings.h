// SPDX-License-Identifier: Apache-2.0
// What the program is told once for every command: from flags, the environment and a file.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orvane::cli {

class Failure;

enum class Setting : std::uint8_t {
  baseURL,
  apiKey,
  user,
  token,
  signingKeyFile,
  caFile,
  timeout,
  clockOffset,
  deviceFile,
  locale,
  timeZone,
  firmwareHost,
  documentsFolder,
};

/// What the library adds to every base URL.
inline constexpr std::string_view apiRoot = "/kavra/api/sdk";

struct SettingRow {
  Setting setting;
  std::string_view name;      ///< In the file; the flag is "--" and this.
  std::string_view variable;  ///< In the environment.
  std::string_view label;     ///< What stands for the value in the usage.
  std::string_view help;
  bool isSecret = false;
};

/// The setting's flag: "--base-url".
[[nodiscard]] std::string flagOf(const SettingRow& row);
/// The row of that name; null where there is none.
[[nodiscard]] const SettingRow* settingNamed(std::string_view name) noexcept;

/// Every setting, in the order of the enumeration.
[[nodiscard]] std::span<const SettingRow> settingRows() noexcept;

/// Where a command line says that settings come from.
struct SettingsPlace {
  std::optional<std::filesystem::path> file{};
  std::optional<std::string> profile{};
  /// The data folder of a sandbox that runs on this machine.
  std::optional<std::filesystem::path> sandbox{};
};

/// The settings in force. A flag beats the sandbox and the profile that the command line names,
/// these the environment, and that the file.
class Settings {
 public:
  /// In ascending order of precedence.
  enum class Source : std::uint8_t {
    nowhere,
    builtIn,
    file,
    fileProfile,  ///< Of a profile that the environment, or the file, names.
    environment,
    profile,  ///< Of a profile that the command line names.
    sandbox,
    flag,
  };

  /// Reads a variable of the environment; null when it is not set.
  using Environment = std::function<const char*(const char*)>;

  explicit Settings(Environment environment);

  /// Notes what a flag says.
  void setFlag(Setting setting, std::string value);

  /// Fills in, below the flags, what the place, the environment and the file say: the file of
  /// `place`, else the one that the environment names, else the default one, which may be missing.
  /// What is wrong with them is kept: see `faults`.
  void load(const SettingsPlace& place);

  /// Everything that can't be used of what was loaded, in one line; empty where all is well.
  [[nodiscard]] const std::string& faults() const noexcept { return faults_; }
  /// True where a sandbox is named and none runs there.
  [[nodiscard]] bool lackSandbox() const noexcept { return lackSandbox_; }
  /// A `Failure` where there are faults: for whoever needs the settings.
  void check() const;

  [[nodiscard]] const std::optional<std::string>& text(Setting setting) const;
  [[nodiscard]] Source source(Setting setting) const;
  /// Where the value comes from, in words.
  [[nodiscard]] std::string origin(Setting setting) const;

  /// The value; a `Failure` that says how to give it where there is none.
  [[nodiscard]] std::string required(Setting setting) const;
  /// The value as a number; absent where there is none, a `Failure` for any other text.
  [[nodiscard]] std::optional<double> number(Setting setting) const;
  /// The longest that a call may take; a `Failure` for what is no such time.
  [[nodiscard]] std::chrono::milliseconds timeout() const;
  /// What to throw about a value that can't be used, because it "is not …": a mistake in the
  /// command line or in what surrounds it, depending on where the value comes from.
  [[nodiscard]] Failure refusal(Setting setting, const std::string& reason) const;

  /// The file that is read, whether or not it is there; empty where no home folder is known.
  [[nodiscard]] const std::filesystem::path& file() const noexcept { return file_; }
  /// The profile in force; empty where there is none.
  [[nodiscard]] const std::string& profile() const noexcept { return profile_; }
  /// A folder of XDG's, such as "XDG_CACHE_HOME"; empty where no home is known.
  [[nodiscard]] std::filesystem::path folder(const char* variable, const char* belowHome) const;

 private:
  struct Value {
    std::optional<std::string> text;
    Source source = Source::nowhere;
  };
  static constexpr std::size_t count = 13;

  void set(Setting setting, Source source, std::string text);
  void readFile(const std::optional<std::string>& chosenProfile);
  void readSandbox(const std::filesystem::path& folder);
  void addFault(const std::string& fault);
  [[nodiscard]] Value& value(Setting setting);
  [[nodiscard]] const Value& value(Setting setting) const;

  Environment environment_;
  std::array<Value, count> values_;
  std::filesystem::path file_;
  std::filesystem::path sandbox_;
  std::string profile_;
  std::string faults_;
  bool lackSandbox_ = false;
};

}  // namespace orvane::cli
