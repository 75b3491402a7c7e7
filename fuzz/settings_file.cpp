// SPDX-License-Identifier: Apache-2.0
// Any bytes as the command line's file of settings: each entry stands in them, each fault names a
// line of theirs, and a setting that is changed changes nothing else.
#include "ConfigurationFile.h"
#include "ExitCode.h"
#include "fuzz/Bytes.h"

#include <algorithm>
#include <string>

namespace {

using namespace orvane;

struct Setting {
  std::string profile;
  std::string name;
  std::string value;

  friend auto operator<=>(const Setting&, const Setting&) = default;
};

// Every setting but one, in the order of their profiles and names: a new one may stand before the
// others.
std::vector<Setting> others(const cli::ConfigurationFile& file, const Setting& but) {
  std::vector<Setting> all;
  for (const auto& [profile, name, value, line] : file.entries) {
    if (profile != but.profile || name != but.name) all.push_back({profile, name, value});
  }
  std::ranges::sort(all);
  return all;
}

// A setting is written and read back, and taken away again.
void change(std::string_view text, const cli::ConfigurationFile& file, const Setting& setting) {
  const auto [profile, name, value] = setting;
  const std::string with = cli::withSetting(text, profile, name, value);
  const cli::ConfigurationFile changed = cli::configurationIn(with);
  const auto written = std::ranges::find_if(changed.entries, [&](const auto& entry) {
    return entry.profile == setting.profile && entry.name == setting.name;
  });
  require(written != changed.entries.end() && written->value == value);
  require(others(changed, setting) == others(file, setting));

  const cli::ConfigurationFile without =
      cli::configurationIn(cli::withSetting(with, profile, name, std::nullopt));
  require(without.entries.size() == others(file, setting).size());
  require(others(without, setting) == others(file, setting));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  const cli::ConfigurationFile file = cli::configurationIn(text);
  const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
  for (const cli::ConfigurationEntry& entry : file.entries) {
    require(!entry.name.empty() && entry.line >= 1 && entry.line <= lines);
    require(text.find(entry.name) != std::string_view::npos);
    require(text.find(entry.value) != std::string_view::npos);
    require(entry.profile.empty() || std::ranges::count(file.profiles, entry.profile) == 1);
  }
  for (const cli::ConfigurationFault& fault : file.faults) {
    require(fault.line >= 1 && fault.line <= lines && !fault.message.empty());
  }

  change(text, file, {"", "added", "of blanks and # signs"});
  change(text, file, {"new profile", "added", "\""});
  if (!file.profiles.empty()) change(text, file, {file.profiles.back(), "added", "''"});
  if (!file.entries.empty()) {
    const cli::ConfigurationEntry& last = file.entries.back();
    change(text, file, {last.profile, last.name, ""});
  }
  return 0;
}
