// SPDX-License-Identifier: Apache-2.0
// Completion scripts for shells, made from the commands as they are.
#pragma once

#include "Command.h"

#include <span>
#include <string>

namespace orvane::cli {

/// The script for a shell, to be sourced or put where the shell looks for it. `globals` are the
/// options that every command takes.
[[nodiscard]] std::string bashCompletion(std::span<const Resource> resources,
                                         std::span<const Option> globals);
[[nodiscard]] std::string zshCompletion(std::span<const Resource> resources,
                                        std::span<const Option> globals);
[[nodiscard]] std::string fishCompletion(std::span<const Resource> resources,
                                         std::span<const Option> globals);

}  // namespace orvane::cli
