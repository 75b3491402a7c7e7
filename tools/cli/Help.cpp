// SPDX-License-Identifier: Apache-2.0
#include "Help.h"

#include "ExitCode.h"
#include "Text.h"

#include <algorithm>

namespace orvane::cli {
namespace {

constexpr std::string_view description =
    "Talks to a telematics backend: a resource, and what to do with it.";

// What stands at the left of a list, and what it means.
struct Entry {
  std::string name;
  std::string meaning;
};

// A page, whatever it is written in.
struct Page {
  std::string usage;
  std::string summary;
  std::vector<Entry> commands{};
  std::vector<Entry> arguments{};
  std::vector<Entry> options{};
  std::vector<Entry> examples{};
};

// More than that are no help in a line.
constexpr std::size_t mostListed = 16;

Entry entryOf(const Option& option) {
  Entry entry{option.name, option.help};
  if (option.isBareAllowed) {
    entry.name += "[=" + option.label + "]";
  } else if (!option.isPositional() && !option.isFlag()) {
    entry.name += " " + option.label;
  }
  if (option.isRequired && !option.isPositional()) entry.meaning += " (required)";
  const bool isInLabel = option.label.find('|') != std::string::npos || option.isBareAllowed;
  const bool isListed = !option.choices.empty() && option.choices.size() <= mostListed;
  if (isListed && (option.isPositional() || !isInLabel)) {
    entry.meaning += (option.isList ? "; any of " : "; one of ") + joined(option.choices, ", ");
  }
  return entry;
}

std::vector<Entry> globalEntries(const CommandSet& set) {
  std::vector<Entry> entries;
  for (const Option& option : set.globals) entries.push_back(entryOf(option));
  entries.push_back({"--help", "Say what a command does and takes"});
  entries.push_back({"--version", "Print the version"});
  return entries;
}

Page pageOf(const std::string& path, std::string_view summary, Verb& verb) {
  Page page{.usage = path + " [OPTIONS]", .summary = std::string(summary)};
  for (const Option& option : optionsOf(verb)) {
    (option.isPositional() ? page.arguments : page.options).push_back(entryOf(option));
    if (!option.isPositional()) continue;
    const std::string name = option.isList ? option.name + "..." : option.name;
    page.usage += option.isRequired ? " " + name : " [" + name + "]";
  }
  for (const Example& example : verb.examples()) {
    page.examples.push_back(
        {"orvane " + std::string(example.arguments), std::string(example.meaning)});
  }
  return page;
}

Page pageOf(const CommandSet& set, const CommandWords& words) {
  if (words.resource == nullptr) {
    Page page{.usage = "orvane [OPTIONS] COMMAND", .summary = std::string(description)};
    for (const Resource& resource : set.resources) {
      page.commands.push_back({resource.name(), resource.summary()});
    }
    page.options = globalEntries(set);
    return page;
  }
  const std::string path = "orvane " + words.resource->name();
  if (words.verb != nullptr) {
    const bool isOnly = words.resource->onlyVerb() != nullptr;
    return pageOf(isOnly ? path : path + " " + std::string(words.verb->name()),
                  words.verb->summary(), *words.verb);
  }
  Page page{.usage = path + " [OPTIONS] COMMAND", .summary = words.resource->summary()};
  for (const auto& verb : words.resource->verbs()) {
    page.commands.push_back({std::string(verb->name()), std::string(verb->summary())});
  }
  return page;
}

// A command line, to be copied: it breaks between words, where the shell lets it.
std::string commandLines(std::string_view command, std::size_t columns, std::size_t indent) {
  constexpr std::string_view ending = " \\";
  std::string whole;
  std::size_t used = indent;
  for (std::size_t at = 0; at < command.size();) {
    bool isQuoted = false;
    std::size_t end = at;
    while (end < command.size() && (isQuoted || command[end] != ' ')) {
      if (command[end++] == '\'') isQuoted = !isQuoted;
    }
    const std::string_view word = command.substr(at, end - at);
    const bool breaks = at > 0 && used + 1 + columnsOf(word) + ending.size() > columns;
    if (breaks) whole.append(ending).append("\n").append(indent + 4, ' ');
    if (at > 0 && !breaks) whole += ' ';
    used = (breaks ? indent + 4 : used + (at > 0 ? 1 : 0)) + columnsOf(word);
    whole += word;
    at = std::min(end + 1, command.size());
  }
  return whole;
}

void add(std::string& text, std::string_view paragraph, std::size_t columns, std::size_t indent) {
  text.append(indent, ' ').append(wrapped(paragraph, columns, indent, indent)).append("\n");
}

// Names and meanings in two columns, where there is room for them; else one above the other.
void add(std::string& text, const char* title, const std::vector<Entry>& entries,
         std::size_t columns) {
  if (entries.empty()) return;
  text.append("\n").append(title).append(":\n");
  constexpr std::size_t indent = 2;
  constexpr std::size_t widest = 30;
  constexpr std::size_t narrow = 60;
  std::size_t width = 0;
  for (const Entry& entry : entries) {
    if (entry.name.size() <= widest) width = std::max(width, entry.name.size());
  }
  const std::size_t margin = columns < narrow ? 2 * indent + 2 : indent + width + 2;
  for (const Entry& entry : entries) {
    const std::size_t used = indent + columnsOf(entry.name);
    text.append(indent, ' ').append(wrapped(entry.name, columns, indent, 2 * indent));
    if (used + 2 <= margin) {
      text.append(margin - used, ' ');
    } else {
      text.append("\n").append(margin, ' ');
    }
    text.append(wrapped(entry.meaning, columns, margin, margin)).append("\n");
  }
}

// --- The manual ----------------------------------------------------------------------------------

// A text that no macro takes for its own.
std::string roff(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    if (character == '\\') escaped += "\\e";
    if (character == '-') escaped += "\\-";
    if (character == '\'') escaped += "\\(aq";
    if (character == '.' && escaped.empty()) escaped += "\\&";
    if (character != '\\' && character != '-' && character != '\'') escaped += character;
  }
  return escaped;
}

void addList(std::string& text, const std::vector<Entry>& entries) {
  for (const Entry& entry : entries) {
    text += ".TP\n.B " + roff(entry.name) + "\n" + roff(entry.meaning) + "\n";
  }
}

void addExamples(std::string& text, const std::vector<Entry>& entries) {
  for (const Entry& entry : entries) {
    text += ".PP\n.nf\n" + roff(entry.name) + "\n.fi\n.RS 4\n" + roff(entry.meaning) + "\n.RE\n";
  }
}

void addVerb(std::string& text, const Page& page) {
  text += ".SS \"" + roff(page.usage) + "\"\n" + roff(page.summary) + ".\n";
  addList(text, page.arguments);
  addList(text, page.options);
  addExamples(text, page.examples);
}

}  // namespace

std::string helpText(const CommandSet& set, const CommandWords& words, std::size_t columns) {
  const Page page = pageOf(set, words);
  std::string text;
  add(text, page.summary, columns, 0);
  text += "\nUsage: " + wrapped(page.usage, columns, 7, 7) + "\n";
  add(text, "Commands", page.commands, columns);
  add(text, "Arguments", page.arguments, columns);
  add(text, "Options", page.options, columns);
  if (!page.examples.empty()) text += "\nExamples:\n";
  for (const Entry& example : page.examples) {
    // A command is to be copied: it breaks where the shell lets it.
    text += "  " + commandLines(example.name, columns, 2) + "\n";
    add(text, example.meaning, columns, 6);
  }
  if (words.resource != nullptr) {
    text += "\n";
    add(text, "orvane --help tells what every command takes.", columns, 0);
    return text;
  }
  std::vector<Entry> codes;
  for (const ExitCodeRow& row : exitCodes()) {
    codes.push_back({std::to_string(static_cast<int>(row.code)), std::string(row.meaning)});
  }
  add(text, "Exit codes", codes, columns);
  return text;
}

std::string manualPage(const CommandSet& set) {
  std::string text =
      ".TH ORVANE 1 \"\" \"orvane " ORVANE_CLI_VERSION
      "\" \"User Commands\"\n"
      ".SH NAME\norvane \\- a telematics backend from the shell\n"
      ".SH SYNOPSIS\n.B orvane\n[\\fIOPTIONS\\fR] \\fICOMMAND\\fR ...\n.SH DESCRIPTION\n";
  text += roff(description) +
          "\nEvery operation of the library is a command. Its answer is a table on a terminal, "
          "lines with tabs in a pipe, and with\n.B \\-\\-json\nwhat the backend sent.\n";
  text += ".SH OPTIONS\nEvery command takes these.\n";
  addList(text, globalEntries(set));
  text += ".SH COMMANDS\n";
  for (const Resource& resource : set.resources) {
    for (const auto& verb : resource.verbs()) {
      const std::string path = "orvane " + resource.name();
      const bool isOnly = resource.onlyVerb() != nullptr;
      addVerb(text, pageOf(isOnly ? path : path + " " + std::string(verb->name()), verb->summary(),
                           *verb));
    }
  }
  text += ".SH EXIT STATUS\n";
  for (const ExitCodeRow& row : exitCodes()) {
    text +=
        ".TP\n.B " + std::to_string(static_cast<int>(row.code)) + "\n" + roff(row.meaning) + "\n";
  }
  text += ".SH ENVIRONMENT\n";
  for (const SettingRow& row : settingRows()) {
    text += ".TP\n.B " + roff(row.variable) + "\nAs\n.BR " + roff(flagOf(row)) + " .\n";
  }
  text += ".TP\n.B COLUMNS\nHow wide help and tables are.\n";
  return text +
         ".SH FILES\n.TP\n.I ~/.config/orvane/config\nSettings: lines of a name, an equals sign "
         "and "
         "a value; names are those of the options without their hyphens. A line with a name in "
         "brackets begins a profile.\n.SH SEE ALSO\n.BR orvane\\-sandbox (1)\n";
}

}  // namespace orvane::cli
