// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of a reward token.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <string>
#include <utility>

namespace orvane {

/// Asks for a token; the backend knows for whom from the authentication.
class RewardsComposer final : public URLComposer {
 public:
  explicit RewardsComposer(std::optional<std::string> text = {}) : queryText(std::move(text)) {}

  [[nodiscard]] std::string path(std::string_view) const override { return "jwtgenerator"; }
  [[nodiscard]] std::optional<std::string> query() const override { return queryText; }

  std::optional<std::string> queryText;
};

}  // namespace orvane
