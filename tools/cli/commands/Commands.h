// SPDX-License-Identifier: Apache-2.0
// One function per resource; `resources()` lists them.
#pragma once

#include "Command.h"

namespace orvane::cli {

[[nodiscard]] Resource userCommands();
[[nodiscard]] Resource configCommands();
[[nodiscard]] Resource completionCommands();

}  // namespace orvane::cli
