// SPDX-License-Identifier: Apache-2.0
//
// The program's --help: an option to a paragraph, wrapped at words.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace orvane::sandbox {

/// As wide as COLUMNS says, or else the terminal; 80 columns where there is none.
class HelpFormatter final : public CLI::Formatter {
 public:
  std::string make_option(const CLI::Option* option, bool isPositional) const override;
};

}  // namespace orvane::sandbox
