// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of the subscription resource.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// Reads the current user's contracts.
class SubscriptionComposer final : public URLComposer {
 public:
  explicit SubscriptionComposer(std::optional<std::string> text = {})
      : queryText(std::move(text)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override { return queryText; }

  std::optional<std::string> queryText;
};

}  // namespace orvane
