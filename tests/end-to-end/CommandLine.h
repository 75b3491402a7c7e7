// SPDX-License-Identifier: Apache-2.0
// Runs the command-line client as its users do, and compares what it says with a table of rows.
#pragma once

#include "SandboxProcess.h"
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace orvane::test {

using Words = std::vector<std::string>;

/// The words of a command line: between blanks, or between single quotes.
[[nodiscard]] Words wordsOf(const std::string& line);

/// Runs `orvane` with the words of `line` to its end.
[[nodiscard]] Ending orvane(const std::string& line, const Environment& environment = {});

/// Runs `orvane --json`, which must succeed, and answers what it printed.
[[nodiscard]] nlohmann::json jsonOf(const std::string& line, const Environment& environment);

/// What a command printed for other programs: the cells of every line, between tabs.
[[nodiscard]] std::vector<Words> cellsOf(const std::string& output);

/// Settings for one of the sandbox's people, as a user would export them. Anna is the first.
[[nodiscard]] Environment settingsOf(const SandboxProcess& sandbox,
                                     const std::string& user = "anna.keller");

/// What a sandbox that is that process says of itself in its data folder.
[[nodiscard]] std::string readyFileOf(const SandboxProcess& sandbox, pid_t process);

/// An environment with some variables changed, or without one.
[[nodiscard]] Environment with(Environment environment, const Environment& changes);
[[nodiscard]] Environment without(Environment environment, const std::string& name);

/// An error is one line on standard error.
MATCHER(IsOneLine, "") { return arg.starts_with("orvane: ") && arg.find('\n') == arg.size() - 1; }

/// A text that contains all of `texts`.
template <class... Texts>
[[nodiscard]] testing::Matcher<std::string> has(const Texts&... texts) {
  return testing::AllOf(testing::HasSubstr(texts)...);
}

/// A command line, and what it should come to.
struct CommandRow {
  std::string line;
  int exitCode;
  testing::Matcher<std::string> output;
  testing::Matcher<std::string> errors;
};

/// A command that succeeds and prints something.
[[nodiscard]] CommandRow prints(std::string line, testing::Matcher<std::string> output);

/// A command that fails with one line, of which `said` is a part, and prints nothing else.
[[nodiscard]] CommandRow fails(std::string line, int exitCode, const std::string& said = {});

/// Runs the rows one after the other.
void check(const std::vector<CommandRow>& rows, const Environment& environment);

}  // namespace orvane::test
