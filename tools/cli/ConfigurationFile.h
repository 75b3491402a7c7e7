// SPDX-License-Identifier: Apache-2.0
// The INI file with the settings.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvane::cli {

struct ConfigurationEntry {
  std::string name;
  std::string value;
};

/// What stands in the file, a name and its value per line, in its order. Throws a `Failure` for a
/// file that can't be read, has sections, or gives a name several values.
[[nodiscard]] std::vector<ConfigurationEntry> readConfigurationFile(
    const std::filesystem::path& file);

}  // namespace orvane::cli
