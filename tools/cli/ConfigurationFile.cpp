// SPDX-License-Identifier: Apache-2.0
#include "ConfigurationFile.h"

#include "ExitCode.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

namespace orvane::cli {
namespace {

constexpr std::string_view blanks = " \t\r";

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

// What a line says: nothing where it is blank or a comment.
struct Line {
  std::optional<std::string> heading;
  std::optional<ConfigurationEntry> entry;
};

Line readLine(std::string_view text) {
  text = trimmed(text);
  if (text.empty() || text.front() == '#') return {};
  if (text.front() == '[') {
    const std::size_t end = text.find(']');
    const std::string_view name = trimmed(text.substr(1, std::min(end, text.size()) - 1));
    const std::string_view rest =
        end == std::string_view::npos ? text : trimmed(text.substr(end + 1));
    const bool isHeading = rest.empty() || rest.front() == '#';
    if (!isHeading || name.empty()) throw Malformed{"a profile's name in brackets is expected"};
    return {std::string(name), {}};
  }
  const std::size_t equals = text.find('=');
  const std::string_view name = trimmed(text.substr(0, equals));
  if (equals == std::string_view::npos || name.empty()) {
    throw Malformed{"a name, \"=\" and a value are expected"};
  }
  return {{}, ConfigurationEntry{{}, std::string(name), valueIn(trimmed(text.substr(equals + 1)))}};
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::string_view withoutMark(std::string_view text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (text.starts_with(mark)) text.remove_prefix(mark.size());
  return text;
}

// What a value looks like in the file.
std::string lineOf(const std::string& name, const std::string& value) {
  const bool isPlain = !value.empty() && value.find_first_of(" \t#\"'") == std::string::npos;
  if (isPlain) return name + " = " + value;
  const char mark = value.find('"') == std::string::npos ? '"' : '\'';
  const bool isWritable =
      value.find(mark) == std::string::npos && value.find_first_of("\r\n") == std::string::npos;
  if (!isWritable) throw Failure(ExitCode::usage, "a line of the file can't hold that value");
  return name + " = " + mark + value + mark;
}

}  // namespace

ConfigurationFile configurationIn(std::string_view text) {
  ConfigurationFile file;
  std::string profile;
  std::size_t number = 0;
  for (const std::string_view line : linesOf(withoutMark(text))) {
    ++number;
    try {
      Line read = readLine(line);
      if (read.heading) {
        profile = *read.heading;
        if (std::ranges::find(file.profiles, profile) == file.profiles.end()) {
          file.profiles.push_back(profile);
        }
      }
      if (!read.entry) continue;
      const auto isSame = [&](const ConfigurationEntry& entry) {
        return entry.profile == profile && entry.name == read.entry->name;
      };
      if (std::ranges::any_of(file.entries, isSame)) {
        throw Malformed{'"' + read.entry->name + "\" is there already"};
      }
      read.entry->profile = profile;
      read.entry->line = number;
      file.entries.push_back(*std::move(read.entry));
    } catch (const Malformed& malformed) {
      file.faults.push_back({number, malformed.message});
    }
  }
  return file;
}

std::optional<std::string> contentsOf(const std::filesystem::path& file) {
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) return std::nullopt;
  std::ifstream stream(file);
  stream.peek();
  // An empty file ends at once; a folder opens, and then can't be read.
  if (!stream && !stream.eof()) {
    throw Failure(ExitCode::configuration, file.string() + ": " + std::strerror(errno));
  }
  stream.clear();
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::string withSetting(std::string_view text, const std::string& profile, const std::string& name,
                        const std::optional<std::string>& value) {
  const std::string written = value ? lineOf(name, *value) : std::string();
  std::vector<std::string> lines;
  std::string current;
  std::size_t end = std::string::npos;  // behind the profile's last line
  bool isDone = !value;
  if (profile.empty()) end = 0;
  for (const std::string_view line : linesOf(withoutMark(text))) {
    Line read;
    try {
      read = readLine(line);
    } catch (const Malformed&) {
      // A line that can't be read stays as it is.
    }
    if (read.heading) current = *read.heading;
    const bool isIt = current == profile && read.entry && read.entry->name == name;
    if (!isIt) lines.emplace_back(line);
    if (isIt && value) lines.push_back(written);
    isDone = isDone || isIt;
    if (current == profile && !trimmed(line).empty()) end = lines.size();
  }
  if (!isDone && end == std::string::npos) {
    if (!lines.empty()) lines.emplace_back();
    lines.push_back("[" + profile + "]");
    end = lines.size();
  }
  if (!isDone) lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(end), written);
  std::string whole;
  for (const std::string& line : lines) whole.append(line).append("\n");
  return whole;
}

}  // namespace orvane::cli
