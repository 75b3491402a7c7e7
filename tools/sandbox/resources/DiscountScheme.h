// SPDX-License-Identifier: Apache-2.0
//
// Which score earns which discount.
#pragma once

#include <array>
#include <optional>

namespace orvane::sandbox {

struct DiscountStep {
  double minimumScore;
  double discount;  // percent
};

inline constexpr std::array<DiscountStep, 6> discountSteps{
    {{95, 25}, {90, 20}, {85, 15}, {78, 10}, {70, 5}, {0, 0}}};
inline constexpr double minimumKilometres = 250;
inline constexpr double maximumDiscount = discountSteps.front().discount;

[[nodiscard]] constexpr double discountFor(std::optional<double> score) {
  for (const DiscountStep& step : discountSteps) {
    if (score.value_or(0) >= step.minimumScore) return step.discount;
  }
  return 0;
}

}  // namespace orvane::sandbox
