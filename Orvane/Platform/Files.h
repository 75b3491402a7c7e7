// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// What the library does with files beside reading and writing them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace orvane {

/// The absolute path of the folder `name` among the user's documents (`DeviceSettings`), whether it
/// exists or not. Absent where there is no documents folder.
[[nodiscard]] std::optional<std::string> documentsFolder(std::string_view name);

/// Creates a folder, and those above it, where they do not exist.
[[nodiscard]] std::error_code createFolder(const std::string& path);

}  // namespace orvane
