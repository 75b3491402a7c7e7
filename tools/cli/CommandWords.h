// SPDX-License-Identifier: Apache-2.0
// The words of a command line as far as they go: for help, which wants to know what it is about,
// and for completion, which wants to know what is missing.
#pragma once

#include "Command.h"

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orvane::cli {

/// Everything that can be said to the program. What the options are bound to lives elsewhere.
struct CommandSet {
  std::vector<Option> globals;  ///< What every command takes.
  std::vector<Resource> resources = cli::resources();
};

/// The commands with options that take every value and keep none.
[[nodiscard]] CommandSet describedCommands();

/// What words come to, unfinished or wrong as they may be.
struct CommandWords {
  CommandWords(const CommandSet& set, std::span<const std::string> words);

  const Resource* resource = nullptr;
  Verb* verb = nullptr;
  std::vector<Option> options;             ///< The verb's, if there is one, and the global ones.
  std::size_t positionals = 0;             ///< How many arguments without a name there are.
  std::optional<Option> awaiting{};        ///< The option whose value comes next.
  std::optional<std::string> unknown;      ///< The first word that is no command where one stands.
  const Resource* unknownBelow = nullptr;  ///< Whose verb it would have been, if any.
  std::optional<std::string> stray;  ///< The first option before `unknown` that there is none of.
  /// The options that are given, with their values.
  std::vector<std::pair<Option, std::string>> given;
};

/// "There is no command 'usr'; did you mean user?": of a word for which there is none of `what`.
[[nodiscard]] std::string thereIsNo(const std::string& what, const std::string& word,
                                    const std::vector<std::string>& known);
/// The same of `words.unknown`, which is there.
[[nodiscard]] std::string unknownCommand(const CommandSet& set, const CommandWords& words);

/// The one of `known` that `word` may have been meant for.
[[nodiscard]] std::optional<std::string> nearestOf(const std::vector<std::string>& known,
                                                   const std::string& word);

}  // namespace orvane::cli
