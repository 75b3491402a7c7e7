// SPDX-License-Identifier: Apache-2.0
#include "GlobalOptions.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace orvane::cli {
namespace {

// Where a sandbox keeps its data unless it is told.
constexpr const char* usualSandbox = "orvane-sandbox-data";

Listed listedBy(const SettingRow& row) {
  if (row.label == "FILE") return Listed::files;
  return row.label == "DIR" ? Listed::folders : Listed::nothing;
}

// As POSIX has it: the first of these that says something counts. The locale need not be installed:
// what matters is what the terminal shows.
bool showsUnicode() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* locale = std::getenv(name);
    if (locale == nullptr || *locale == '\0') continue;
    std::string_view text = locale;
    text = text.substr(0, text.find('@'));
    const std::size_t dot = text.find('.');
    return dot != std::string_view::npos && sameChoice(text.substr(dot + 1), "utf-8");
  }
  return false;
}

bool wantsNoColour() {
  const char* noColour = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return (noColour != nullptr && *noColour != '\0') ||
         (terminal != nullptr && std::string_view(terminal) == "dumb");
}

}  // namespace

void GlobalOptions::declare(Options& options, Settings& settings) {
  for (const SettingRow& row : settingRows()) {
    Option option{.name = flagOf(row),
                  .label = std::string(row.label),
                  .help = std::string(row.help) + " [" + std::string(row.variable) + "]",
                  .listed = listedBy(row)};
    option.accept = [&settings, setting = row.setting](const std::string& text) {
      settings.setFlag(setting, text);
      return true;
    };
    options.add(std::move(option));
  }
  options.add({.name = "--sandbox",
               .label = "DIR",
               .help = "Talk to the sandbox that runs on this data folder, orvane-sandbox-data "
                       "unless it is named: its address, certificate and token",
               .meaning = "a folder",
               .listed = Listed::folders,
               .isBareAllowed = true,
               .accept = [this](const std::string& text) {
                 place_.sandbox = text.empty() ? usualSandbox : text;
                 return true;
               }});
  options.add({.name = "--profile",
               .label = "NAME",
               .help = "The settings under this heading of the file [ORVANE_PROFILE]",
               .meaning = "a name",
               .listed = Listed::profiles,
               .accept = [this](const std::string& text) {
                 place_.profile = text;
                 return !text.empty();
               }});
  options.option("--config", place_.file, "The file to read settings from [ORVANE_CONFIG]");
  options.option("--format", format_,
                 "How to print: table (as to a terminal), tabs (as to a pipe), JSON as the backend "
                 "sent it, indented or on one line, or its answer byte by byte");
  options.flag("--json", isJSON_, "Short for --format json");
  options.flag("--raw", isRaw_, "Short for --format raw");
  options.add({.name = "--verbose",
               .label = "bodies",
               .help = "Show the exchanges with the backend on standard error, tokens and the "
                       "values of queries blanked; with =bodies what is in them, too, people's "
                       "data included",
               .meaning = "bodies, or nothing",
               .choices = {"bodies"},
               .isBareAllowed = true,
               .accept = [this](const std::string& text) {
                 using enum ExchangeLog::Shown;
                 shown_ = text.empty() ? exchanges : bodies;
                 return text.empty() || text == "bodies";
               }});
  options.flag("--no-color", isColourless_, "Print without colours [NO_COLOR]");
}

OutputStyle GlobalOptions::style() const {
  OutputStyle style;
  const bool isTerminal = ::isatty(STDOUT_FILENO) == 1;
  style.isTerminal = isTerminal;
  if (isTerminal) style.format = OutputStyle::Format::table;
  if (isJSON_) style.format = OutputStyle::Format::json;
  if (isRaw_) style.format = OutputStyle::Format::raw;
  if (format_) style.format = *format_;
  style.isColoured = isTerminal && !isColourless_ && !wantsNoColour();
  style.isUnicode = showsUnicode();
  style.columns = columnsOfOutput();
  return style;
}

std::size_t columnsOfOutput() {
  constexpr std::size_t usual = 80;
  // What is narrower is a mistake rather than a terminal.
  constexpr std::uint64_t narrowest = 20;
  const char* named = std::getenv("COLUMNS");
  const auto columns = Argument<std::uint64_t>::parse(named == nullptr ? "" : named);
  if (columns && *columns >= narrowest) return static_cast<std::size_t>(*columns);
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return usual;
}

}  // namespace orvane::cli
