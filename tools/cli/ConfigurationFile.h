// SPDX-License-Identifier: Apache-2.0
// The file of settings: lines of a name and a value, and profiles under headings of their own.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

struct ConfigurationEntry {
  std::string profile;  ///< Empty for what stands above every heading: it holds for all.
  std::string name;
  std::string value;
  std::size_t line = 0;
};

struct ConfigurationFault {
  std::size_t line = 0;
  std::string message;
};

/// What a file holds, and what of it can't be used. A fault costs its own line alone.
struct ConfigurationFile {
  std::vector<ConfigurationEntry> entries;
  std::vector<std::string> profiles;
  std::vector<ConfigurationFault> faults;
};

/// What `text` holds: `name = value`, with quotation marks around a value that contains blanks,
/// "[profile]", and "#" before comments. A byte order mark at its beginning is skipped.
[[nodiscard]] ConfigurationFile configurationIn(std::string_view text);

/// The contents of a file; absent where there is none. A `Failure` where it can't be read.
[[nodiscard]] std::optional<std::string> contentsOf(const std::filesystem::path& file);

/// `text` with the setting changed in place, added to its profile, or, without a value, taken away.
/// Comments and everything else stay. A `Failure` for a value that no line can hold.
[[nodiscard]] std::string withSetting(std::string_view text, const std::string& profile,
                                      const std::string& name,
                                      const std::optional<std::string>& value);

}  // namespace orvane::cli
