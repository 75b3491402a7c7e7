// SPDX-License-Identifier: Apache-2.0
//
// The files of the inspector's page, which the build puts into the program.
#pragma once

#include <span>
#include <string_view>

namespace orvane::sandbox {

struct Asset {
  std::string_view name;
  std::string_view bytes;

  /// By the name's ending.
  [[nodiscard]] const char* contentType() const;
};

/// Made from the files beside this one (EmbedAssets.cmake).
[[nodiscard]] std::span<const Asset> assets();

/// Null where there is none of that name.
[[nodiscard]] const Asset* findAsset(std::string_view name);

}  // namespace orvane::sandbox
