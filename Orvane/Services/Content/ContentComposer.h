// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of the content resource.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Services/Content/ContentService.h>

#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Reads one localised text, the same for every user.
class ContentComposer final : public URLComposer {
 public:
  ContentComposer(std::optional<std::string> tags, ContentService::Key of)
      : languageTags(std::move(tags)), key(of) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override { return queryText; }
  [[nodiscard]] std::optional<std::pair<std::string, std::string>> additionalHeader()
      const override;

  const std::optional<std::string> languageTags;
  const ContentService::Key key;
  std::optional<std::string> queryText;
};

}  // namespace orvane
