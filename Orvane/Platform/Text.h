// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// What the library asks of texts beside their bytes.
#pragma once

#include <string_view>

namespace orvane {

/// True when `text` is well-formed UTF-8 (RFC 3629).
[[nodiscard]] bool isUTF8(std::string_view text) noexcept;

}  // namespace orvane
