// SPDX-License-Identifier: Apache-2.0
// orvane help: what the commands do.
#include "Help.h"

#include "Commands.h"
#include "GlobalOptions.h"

namespace orvane::cli {

/// A word of a command's name.
struct CommandWord {
  std::string text;
};

template <>
struct Argument<CommandWord> {
  static constexpr std::string_view label = "COMMAND";
  static constexpr std::string_view meaning = "a command";
  static constexpr Listed listed = Listed::commands;
  [[nodiscard]] static std::optional<CommandWord> parse(std::string_view text) {
    return CommandWord{std::string(text)};
  }
};

namespace {

struct ShowHelp {
  static constexpr std::string_view name = "help";
  static constexpr std::string_view summary = "Say what a command does and takes";
  static constexpr Example examples[] = {
      {"help trips list", "the same as orvane trips list --help"},
      {"help --man > orvane.1", "the manual's page, all of it"},
  };

  std::vector<CommandWord> command;
  bool isManual = false;

  void declare(Options& options) {
    options.positional("COMMAND", command, "Which; left out, all of them");
    options.flag("--man", isManual, "Print the page for man(1)");
  }

  void run(Session& session) const {
    const CommandSet set = describedCommands();
    if (isManual) return session.output().raw(manualPage(set));
    std::vector<std::string> texts;
    for (const CommandWord& word : command) texts.push_back(word.text);
    const CommandWords words(set, texts);
    if (words.unknown) throw Failure(ExitCode::usage, unknownCommand(set, words));
    session.output().raw(helpText(set, words, session.output().style().columns));
  }
};

}  // namespace

Resource helpCommand() { return Resource::only<ShowHelp>(); }

}  // namespace orvane::cli
