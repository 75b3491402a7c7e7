// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Which part of a file an answer holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvane {

/// What "Content-Range" tells (RFC 9110, section 14.4). Where the part ends is seen from the bytes
/// that come.
struct ContentRange {
  std::int64_t first;
  std::int64_t total;
};

/// Reads "bytes 500-999/1234"; absent for anything else, and where the length is unknown ("*"):
/// that would leave open whether the part reaches the file's end.
[[nodiscard]] std::optional<ContentRange> contentRange(std::string_view text);

}  // namespace orvane
