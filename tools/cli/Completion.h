// SPDX-License-Identifier: Apache-2.0
// Completion: what could stand next in a command line, and the scripts by which shells ask.
#pragma once

#include "CommandWords.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

struct Candidate {
  std::string text;
  std::string meaning{};
};

/// What could stand in place of the last word.
struct Candidates {
  std::vector<Candidate> words;
  Listed listed = Listed::nothing;  ///< What else: the caller knows where these are.
  std::string before{};  ///< What stands before the value in the last word: "--name=", "a,b,".
  std::string begun{};   ///< What there is of the value.
};

/// `words` is the command line without the program's name.
[[nodiscard]] Candidates candidatesFor(const CommandSet& set, std::vector<std::string> words);

/// The words of a line as far as a shell has them, the last of them the unfinished one.
[[nodiscard]] std::vector<std::string> shellWords(std::string_view line);

/// The script for a shell, to be sourced or put where the shell looks for it.
extern const std::string_view bashCompletion;
extern const std::string_view zshCompletion;
extern const std::string_view fishCompletion;

}  // namespace orvane::cli
