// SPDX-License-Identifier: Apache-2.0
#include "ConfigurationFile.h"

#include "ExitCode.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>

namespace orvane::cli {
namespace {

constexpr std::string_view blanks = " \t\r";

Failure failureIn(const std::filesystem::path& file, const std::string& message) {
  return {ExitCode::configuration, file.string() + ": " + message};
}

std::string_view trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(blanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

// A line that can't be used, by what is wrong with it.
struct Malformed {
  std::string message;
};

std::string unquoted(std::string_view text) {
  const std::size_t end = text.find(text.front(), 1);
  if (end == std::string_view::npos) throw Malformed{"a quotation mark is not closed"};
  const std::string_view rest = trimmed(text.substr(end + 1));
  if (!rest.empty() && rest.front() != '#') throw Malformed{"a value ends with its quotation mark"};
  return std::string(text.substr(1, end - 1));
}

std::string valueIn(std::string_view text) {
  if (text.starts_with('"') || text.starts_with('\'')) return unquoted(text);
  const std::size_t blank = std::min(text.find_first_of(blanks), text.size());
  const std::string_view rest = trimmed(text.substr(blank));
  if (!rest.empty() && rest.front() != '#' && !text.starts_with('#')) {
    throw Malformed{"a value with blanks needs quotation marks"};
  }
  return text.starts_with('#') ? std::string() : std::string(text.substr(0, blank));
}

// Absent where there is no entry: the line is blank or a comment.
std::optional<ConfigurationEntry> entryIn(std::string_view line) {
  line = trimmed(line);
  if (line.empty() || line.front() == '#') return std::nullopt;
  if (line.front() == '[') throw Malformed{"sections are not known"};
  const std::size_t equals = line.find('=');
  const std::string_view name = trimmed(line.substr(0, equals));
  if (equals == std::string_view::npos || name.empty()) {
    throw Malformed{"a name, \"=\" and a value are expected"};
  }
  return ConfigurationEntry{std::string(name), valueIn(trimmed(line.substr(equals + 1)))};
}

}  // namespace

std::vector<ConfigurationEntry> readConfigurationFile(const std::filesystem::path& file) {
  std::ifstream stream(file);
  stream.peek();
  // An empty file ends at once; a folder opens, and then can't be read.
  if (!stream && !stream.eof()) throw failureIn(file, std::strerror(errno));
  std::vector<ConfigurationEntry> entries;
  std::string line;
  for (std::size_t number = 1; std::getline(stream, line); ++number) {
    try {
      auto entry = entryIn(line);
      if (!entry) continue;
      if (std::ranges::find(entries, entry->name, &ConfigurationEntry::name) != entries.end()) {
        throw Malformed{'"' + entry->name + "\" is there already"};
      }
      entries.push_back(*std::move(entry));
    } catch (const Malformed& malformed) {
      throw failureIn(file, "line " + std::to_string(number) + ": " + malformed.message);
    }
  }
  return entries;
}

}  // namespace orvane::cli
