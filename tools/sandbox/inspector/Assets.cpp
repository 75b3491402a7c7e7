// SPDX-License-Identifier: Apache-2.0
#include "inspector/Assets.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvane::sandbox {

const char* Asset::contentType() const {
  constexpr auto types = std::to_array<std::pair<std::string_view, const char*>>({
      {".html", "text/html; charset=utf-8"},
      {".js", "text/javascript; charset=utf-8"},
      {".css", "text/css; charset=utf-8"},
      {".svg", "image/svg+xml"},
      {".png", "image/png"},
  });
  const auto found =
      std::ranges::find_if(types, [&](const auto& type) { return name.ends_with(type.first); });
  return found != types.end() ? found->second : "application/octet-stream";
}

const Asset* findAsset(std::string_view name) {
  const auto found = std::ranges::find(assets(), name, &Asset::name);
  return found != assets().end() ? &*found : nullptr;
}

}  // namespace orvane::sandbox
