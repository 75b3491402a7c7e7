// SPDX-License-Identifier: Apache-2.0
//
// The published firmware package of the in-car device. It stands outside the API and needs no
// token.
#pragma once

#include "http/Message.h"

#include <filesystem>
#include <string_view>

namespace orvane::sandbox {

inline constexpr std::string_view downloads = "/downloads/";
inline constexpr std::string_view firmwarePackage = "DFU_4417_Release___2_2_2.zip";

/// Makes the package, some 2 MB, in the folder unless it is there.
void makeFirmware(const std::filesystem::path& folder);

/// Serves the package, whole or one range of it (RFC 9110, section 14). Throws a `Problem`.
[[nodiscard]] Reply answerDownload(const std::filesystem::path& folder, const Request& request);

}  // namespace orvane::sandbox
