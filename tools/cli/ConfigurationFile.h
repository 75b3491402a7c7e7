// SPDX-License-Identifier: Apache-2.0
// The file with the settings.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::cli {

struct ConfigurationEntry {
  std::string name;
  std::string value;
};

/// What stands in the file, in its order: a line `name = value` for each. A "#" begins a comment,
/// at the start of a line or behind a blank; quotation marks, of either kind, stand around a value
/// with blanks. Throws a `Failure` for a file that can't be read, and for the first line that is
/// anything else or repeats a name.
[[nodiscard]] std::vector<ConfigurationEntry> readConfigurationFile(
    const std::filesystem::path& file);

}  // namespace orvane::cli
