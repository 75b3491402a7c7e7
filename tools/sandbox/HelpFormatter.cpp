// SPDX-License-Identifier: Apache-2.0
#include "HelpFormatter.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <sstream>
#include <string_view>

namespace orvane::sandbox {

namespace {

constexpr std::size_t indentation = 26;
constexpr std::size_t widest = 100;  // longer lines are hard to read

std::size_t width() {
  std::size_t columns = 0;
  if (const char* wanted = std::getenv("COLUMNS")) {
    const std::string_view text = wanted;
    std::from_chars(text.data(), text.data() + text.size(), columns);
  }
  winsize size{};
  if (columns == 0 && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) columns = size.ws_col;
  return columns == 0 ? 80 : std::clamp<std::size_t>(columns, indentation + 16, widest);
}

// CLI11 puts the conditions that a value must meet behind its name, and defaults of flags in
// braces.
std::string upTo(const std::string& text, char end) { return text.substr(0, text.find(end)); }

std::string labelOf(const CLI::Option& option, bool isPositional) {
  std::string label = "  ";
  std::istringstream names{option.get_name(isPositional, true)};
  for (std::string name; std::getline(names, name, ',');) {
    label.append(label.size() > 2 ? ", " : "").append(upTo(name, '{'));
  }
  if (!isPositional && option.get_items_expected_max() > 0) {
    label.append(" ").append(upTo(option.get_type_name(), ':'));
  }
  return label;
}

}  // namespace

std::string HelpFormatter::make_option(const CLI::Option* option, bool isPositional) const {
  std::string text = option->get_description();
  if (const std::string value = option->get_default_str(); !value.empty()) {
    text.append(" (").append(value).append(")");
  }
  std::string all = labelOf(*option, isPositional);
  std::size_t column = all.size();
  if (column + 2 > indentation) {
    all.append("\n");
    column = 0;
  }
  all.append(indentation - column, ' ');
  column = indentation;
  std::istringstream words{text};
  for (std::string word; words >> word;) {
    const bool isFirst = column == indentation;
    if (!isFirst && column + 1 + word.size() > width()) {
      all.append("\n").append(indentation, ' ');
      column = indentation;
    } else if (!isFirst) {
      all.append(" ");
      ++column;
    }
    all.append(word);
    column += word.size();
  }
  return all.append("\n");
}

}  // namespace orvane::sandbox
