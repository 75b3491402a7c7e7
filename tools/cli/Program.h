// SPDX-License-Identifier: Apache-2.0
// The whole program: reads a command line, runs the verb, and answers with an exit code.
#pragma once

#include "Command.h"
#include "ExitCode.h"
#include "Options.h"
#include "Output.h"
#include "Settings.h"

#include <filesystem>
#include <optional>

namespace orvane::cli {

/// The options that every command takes.
class GlobalOptions {
 public:
  /// Flags are noted in `settings`, which has to outlive the parsing.
  void declare(Options& options, Settings& settings);

  /// How the output is to look, going by the flags, the environment and what standard output is.
  [[nodiscard]] OutputStyle style() const;
  [[nodiscard]] const std::optional<std::filesystem::path>& configurationFile() const noexcept {
    return configurationFile_;
  }
  [[nodiscard]] bool isVerbose() const noexcept { return isVerbose_; }

 private:
  std::optional<std::filesystem::path> configurationFile_;
  std::optional<OutputStyle::Format> format_;
  bool isJSON_ = false;
  bool isVerbose_ = false;
  bool isColourless_ = false;
};

[[nodiscard]] ExitCode runProgram(int argumentCount, const char* const* arguments);

}  // namespace orvane::cli
