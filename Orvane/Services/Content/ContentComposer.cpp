// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Content/ContentComposer.h>

#include <algorithm>

namespace orvane {

std::string ContentComposer::path(std::string_view) const {
  return concatenated({"system/i18nContent/", wireText(key)});
}

std::optional<std::pair<std::string, std::string>> ContentComposer::additionalHeader() const {
  if (!languageTags) return std::nullopt;
  std::string tags = *languageTags;
  std::replace(tags.begin(), tags.end(), '_', '-');
  return std::pair<std::string, std::string>("Accept-Language", std::move(tags));
}

}  // namespace orvane
