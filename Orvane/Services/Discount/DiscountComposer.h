// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of a user's discount.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Services/Discount/DiscountService.h>

#include <set>
#include <string>
#include <utility>

namespace orvane {

/// Reads the current user's discount.
class DiscountComposer final : public URLComposer {
 public:
  explicit DiscountComposer(std::set<DiscountService::Expansion> expanded)
      : expansions(std::move(expanded)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  std::set<DiscountService::Expansion> expansions;
};

}  // namespace orvane
