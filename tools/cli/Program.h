// SPDX-License-Identifier: Apache-2.0
// The whole program: reads a command line, runs the verb, and answers with an exit code.
#pragma once

#include "ExitCode.h"

namespace orvane::cli {

[[nodiscard]] ExitCode runProgram(int argumentCount, const char* const* arguments);

}  // namespace orvane::cli
