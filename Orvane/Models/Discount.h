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
  std::optional<double> currentDiscount{};
  std::optional<double> projectedDiscount{};
  std::optional<double> discountRangeMin{};
  std::optional<double> discountRangeMax{};
  std::optional<double> projectedDiscountMinimum{};
  std::optional<double> projectedDiscountMaximum{};

  ORVANE_EXPORT bool operator==(const Discount& other) const noexcept;
};

/// The programme's discount scheme: which score earns what. Scores and discounts are in the
/// backend's scale.
struct ORVANE_EXPORT DiscountMetadata {
  /// A step of the scheme.
  struct ORVANE_EXPORT DiscountScore {
    double minimumScoreRequired = 0;
    /// What is earned from that score up. (The backend's own name, not "projectedDiscount".)
    double projectDiscount = 0;

    ORVANE_EXPORT bool operator==(const DiscountScore& other) const noexcept;
  };

  /// The scores that earn a discount, both bounds included.
  struct ORVANE_EXPORT DiscountRange {
    ClosedRange<double> scoreRange{0, 0};
    double associatedDiscount = 0;

    ORVANE_EXPORT bool operator==(const DiscountRange& other) const noexcept;
  };

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
