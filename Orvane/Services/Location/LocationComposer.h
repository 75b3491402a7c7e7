// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of a user's position.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Reads the current user's last known position.
class LocationComposer final : public URLComposer {
 public:
  explicit LocationComposer(std::optional<std::string> text = {}) : queryText(std::move(text)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override { return queryText; }

  std::optional<std::string> queryText;
};

}  // namespace orvane
