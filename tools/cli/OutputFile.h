// SPDX-License-Identifier: Apache-2.0
// Documents that a command writes to a file of the user's choice.
#pragma once

#include "Output.h"

#include <filesystem>
#include <string_view>

namespace orvane::cli {

/// True for "-", which stands for standard output.
[[nodiscard]] bool isStandardOutput(const std::filesystem::path& file);

/// Who may read a file, as far as the process's mask lets them.
enum class Readers : bool { owner, everyone };

/// Puts a document into a file, the whole of it or nothing: a file of that name stays as it is
/// until the new one is complete. What is no file (a pipe, a device) is written to as it stands,
/// and "-" is `output`. A `Failure` with `ExitCode::output` where it can't be done.
/// A file that is made is for `readers`.
void writeDocument(const std::filesystem::path& file, std::string_view text, Output& output,
                   Readers readers = Readers::everyone);

}  // namespace orvane::cli
