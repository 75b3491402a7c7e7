// SPDX-License-Identifier: Apache-2.0
// What the program says of itself, made from the declarations of its commands.
#pragma once

#include "CommandWords.h"

#include <cstddef>
#include <string>

namespace orvane::cli {

/// The page about the command that `words` name, as wide as `columns`.
[[nodiscard]] std::string helpText(const CommandSet& set, const CommandWords& words,
                                   std::size_t columns);

/// The manual's page, in the man(7) macros.
[[nodiscard]] std::string manualPage(const CommandSet& set);

}  // namespace orvane::cli
