// SPDX-License-Identifier: Apache-2.0
#include "ConfigurationFile.h"

#include "ExitCode.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace orvane::cli {
namespace {

Failure failureIn(const std::filesystem::path& file, const std::string& message) {
  return {ExitCode::configuration, file.string() + ": " + message};
}

}  // namespace

std::vector<ConfigurationEntry> readConfigurationFile(const std::filesystem::path& file) {
  std::ifstream stream(file);
  stream.peek();
  // An empty file ends at once; a folder opens, and then can't be read.
  if (!stream && !stream.eof()) throw failureIn(file, std::strerror(errno));
  std::vector<ConfigurationEntry> entries;
  for (const CLI::ConfigItem& item : CLI::ConfigINI().from_config(stream)) {
    if (!item.parents.empty()) throw failureIn(file, "sections are not known");
    if (item.inputs.size() != 1) {
      throw failureIn(file, '"' + item.name + "\" has several values; put it in quotes");
    }
    entries.push_back({item.name, item.inputs.front()});
  }
  return entries;
}

}  // namespace orvane::cli
