// SPDX-License-Identifier: Apache-2.0
//
// ZIP archives, as far as a firmware package needs them.
#pragma once

#include <span>
#include <string>

namespace orvane::sandbox {

struct ArchiveEntry {
  std::string name;
  std::string content;
};

/// An archive with the files as they are, without compression, dated 2024-01-01.
[[nodiscard]] std::string makeArchive(std::span<const ArchiveEntry> entries);

}  // namespace orvane::sandbox
