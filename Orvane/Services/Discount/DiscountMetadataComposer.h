// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of the discount scheme.
#pragma once

#include <Orvane/Core/URLComposer.h>

#include <string>
#include <utility>

namespace orvane {

/// Reads the programme's discount scheme, which is nobody's own.
class DiscountMetadataComposer final : public URLComposer {
 public:
  explicit DiscountMetadataComposer(std::optional<std::string> text = {})
      : queryText(std::move(text)) {}

  [[nodiscard]] std::string path(std::string_view) const override { return "discountMetadata"; }
  [[nodiscard]] std::optional<std::string> query() const override { return queryText; }

  std::optional<std::string> queryText;
};

}  // namespace orvane
