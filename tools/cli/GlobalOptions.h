// SPDX-License-Identifier: Apache-2.0
// The options that every command takes.
#pragma once

#include "ExchangeLog.h"
#include "Options.h"
#include "Output.h"
#include "Settings.h"

#include <optional>
#include <string>

namespace orvane::cli {

class GlobalOptions {
 public:
  /// Flags are noted in `settings`, which has to outlive the parsing.
  void declare(Options& options, Settings& settings);

  /// How the output is to look, going by the flags, the environment and what standard output is.
  [[nodiscard]] OutputStyle style() const;
  [[nodiscard]] const SettingsPlace& place() const noexcept { return place_; }
  [[nodiscard]] ExchangeLog::Shown shown() const noexcept { return shown_; }

 private:
  SettingsPlace place_;
  std::optional<OutputStyle::Format> format_;
  bool isJSON_ = false;
  bool isRaw_ = false;
  bool isColourless_ = false;
  ExchangeLog::Shown shown_ = ExchangeLog::Shown::nothing;
};

/// The columns that help and tables have: as `COLUMNS` says, or else the terminal.
[[nodiscard]] std::size_t columnsOfOutput();

}  // namespace orvane::cli
