// SPDX-License-Identifier: Apache-2.0
// What safe driving takes off the premium: the user's discount, and the scheme behind it.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/ClosedRange.h>
#include <Orvane/Platform/Export.h>

#include <optional>
#include <vector>

namespace orvane {

/// The current user's discount, in the backend's scale (percent, for example).
struct ORVANE_EXPORT Discount {
  std::optional<double> currentDiscount{};  ///< What has been earned by now.
  /// What will have been earned if the driving goes on like this.
  std::optional<double> projectedDiscount{};
  std::optional<double> discountRangeMin{};          ///< The lower bound of what can be earned.
  std::optional<double> discountRangeMax{};          ///< The upper bound of what can be earned.
  std::optional<double> projectedDiscountMinimum{};  ///< The lower bound of the projection.
  std::optional<double> projectedDiscountMaximum{};  ///< The upper bound of the projection.

  ORVANE_EXPORT bool operator==(const Discount& other) const noexcept;
};

/// The programme's discount scheme: which score earns what. Scores and discounts are in the
/// backend's scale.
struct ORVANE_EXPORT DiscountMetadata {
  /// A step of the scheme.
  struct ORVANE_EXPORT DiscountScore {
    double minimumScoreRequired = 0;  ///< The score from which on it is earned.
    /// What is earned from that score up. (The backend's own name, not "projectedDiscount".)
    double projectDiscount = 0;

    ORVANE_EXPORT bool operator==(const DiscountScore& other) const noexcept;
  };

  /// The scores that earn a discount, both bounds included.
  struct ORVANE_EXPORT DiscountRange {
    ClosedRange<double> scoreRange{0, 0};  ///< Two numbers on the wire: [lower, upper].
    double associatedDiscount = 0;         ///< What a score within it earns.

    ORVANE_EXPORT bool operator==(const DiscountRange& other) const noexcept;
  };

  /// The steps, in the backend's order.
  std::optional<std::vector<DiscountScore>> discountsForScores{};
  /// How much must be driven before a discount applies, in kilometres.
  std::optional<double> minimumKmRequired{};

  /// The scheme as ranges of scores, worked out anew by each call: the largest discount first, up
  /// to the largest finite double. Absent or empty where `discountsForScores` is.
  ///
  /// Neighbours share the score between them: the first match in the list's order, and with it the
  /// larger discount, is the one that counts. A step that asks for a higher score than one with a
  /// larger discount earns nothing and is left out, and so is one whose score is not a number.
  [[nodiscard]] std::optional<std::vector<DiscountRange>> scoreDiscountMap() const;

  ORVANE_EXPORT bool operator==(const DiscountMetadata& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<Discount> = true;
template <>
inline constexpr bool hasCoding<DiscountMetadata> = true;
template <>
inline constexpr bool hasCoding<DiscountMetadata::DiscountScore> = true;
template <>
inline constexpr bool hasCoding<DiscountMetadata::DiscountRange> = true;

}  // namespace orvane
