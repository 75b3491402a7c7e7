// SPDX-License-Identifier: Apache-2.0
// Runs the command-line client as its users do, and compares what it says with a table of rows.
#pragma once

#include "SandboxProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvane::test {

using Words = std::vector<std::string>;

/// Runs `orvane` to its end.
[[nodiscard]] Ending orvane(const Words& arguments, const Environment& environment = {});

/// Settings for the first of the sandbox's people, as a user would export them.
[[nodiscard]] Environment settingsOf(const SandboxProcess& sandbox);

/// An environment with some variables changed, or without one.
[[nodiscard]] Environment with(Environment environment, const Environment& changes);
[[nodiscard]] Environment without(Environment environment, const std::string& name);

/// An error is one line on standard error.
MATCHER(IsOneLine, "") { return arg.starts_with("orvane: ") && arg.find('\n') == arg.size() - 1; }

/// A command line, and what it should come to.
struct CommandRow {
  Words arguments;
  int exitCode = 0;
  testing::Matcher<std::string> output = testing::IsEmpty();
  testing::Matcher<std::string> errors = testing::IsEmpty();
};

/// Runs the rows one after the other.
void check(const std::vector<CommandRow>& rows, const Environment& environment);

}  // namespace orvane::test
