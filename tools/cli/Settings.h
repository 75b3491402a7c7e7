// SPDX-License-Identifier: Apache-2.0
// What the program is told once for every command: from flags, the environment and a file.
#pragma once

#include <array>
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

struct SettingRow {
  Setting setting;
  std::string_view name;      ///< In the file; the flag is "--" and this.
  std::string_view variable;  ///< In the environment.
  std::string_view label;     ///< What stands for the value in the usage.
  std::string_view help;
  bool isSecret = false;
};

/// Every setting, in the order of the enumeration.
[[nodiscard]] std::span<const SettingRow> settingRows() noexcept;

/// The settings in force. A flag beats the environment, the environment the file.
class Settings {
 public:
  /// In ascending order of precedence.
  enum class Source : std::uint8_t { nowhere, builtIn, file, environment, flag };

  /// Reads a variable of the environment; null when it is not set.
  using Environment = std::function<const char*(const char*)>;

  explicit Settings(Environment environment);

  /// Notes what a flag says.
  void setFlag(Setting setting, std::string value);

  /// Fills in, below the flags, what the environment says and what stands in the file: in `path`
  /// when it is given, else in the one that the environment names, else in the default one, which
  /// may be missing. Throws a `Failure` for a file that can't be read, or that sets what there is
  /// not.
  void load(const std::optional<std::filesystem::path>& path);

  [[nodiscard]] const std::optional<std::string>& text(Setting setting) const;
  [[nodiscard]] Source source(Setting setting) const;
  /// Where the value comes from, in words.
  [[nodiscard]] std::string origin(Setting setting) const;

  /// The value; a `Failure` that says how to give it where there is none.
  [[nodiscard]] std::string required(Setting setting) const;
  /// The value as a number; absent where there is none, a `Failure` for any other text.
  [[nodiscard]] std::optional<double> number(Setting setting) const;
  /// What to throw about a value that can't be used, because it "is not …": a mistake in the
  /// command line or in what surrounds it, depending on where the value comes from.
  [[nodiscard]] Failure refusal(Setting setting, const std::string& reason) const;

  /// The file that is read, whether or not it is there; empty where no home folder is known.
  [[nodiscard]] const std::filesystem::path& file() const noexcept { return file_; }

 private:
  struct Value {
    std::optional<std::string> text;
    Source source = Source::nowhere;
  };
  static constexpr std::size_t count = 13;

  void set(Setting setting, Source source, std::string text);
  void readFile();
  [[nodiscard]] Value& value(Setting setting);
  [[nodiscard]] const Value& value(Setting setting) const;
  [[nodiscard]] std::filesystem::path folder(const char* variable, const char* belowHome) const;

  Environment environment_;
  std::array<Value, count> values_;
  std::filesystem::path file_;
};

}  // namespace orvane::cli
