// SPDX-License-Identifier: Apache-2.0
// Bodies as a server sends them: packed, and in chunks.
#pragma once

#include <string>
#include <string_view>

namespace orvane {

[[nodiscard]] std::string gzipped(std::string_view text);

/// One chunk (RFC 9112, section 7.1).
[[nodiscard]] std::string chunk(std::string_view bytes);

}  // namespace orvane
