// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Discount.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane {
namespace {

using DiscountScore = DiscountMetadata::DiscountScore;
using DiscountRange = DiscountMetadata::DiscountRange;

// An order even where a discount is not a number, which sorting needs: such a one counts as the
// smallest.
bool earnsMore(const DiscountScore& left, const DiscountScore& right) {
  if (std::isnan(right.projectDiscount)) return !std::isnan(left.projectDiscount);
  return left.projectDiscount > right.projectDiscount;
}

constexpr KeyRow discountKeys[] = {
    key<&Discount::currentDiscount>("currentDiscount"),
    key<&Discount::projectedDiscount>("projectedDiscount"),
    key<&Discount::discountRangeMin>("discountRangeMin"),
    key<&Discount::discountRangeMax>("discountRangeMax"),
    key<&Discount::projectedDiscountMinimum>("projectedDiscountMinimum"),
    key<&Discount::projectedDiscountMaximum>("projectedDiscountMaximum"),
};

constexpr KeyRow discountMetadataKeys[] = {
    key<&DiscountMetadata::discountsForScores>("discountsForScores"),
    key<&DiscountMetadata::minimumKmRequired>("minimumKmRequired"),
};

constexpr KeyRow discountScoreKeys[] = {
    required<&DiscountScore::minimumScoreRequired>("minimumScoreRequired"),
    required<&DiscountScore::projectDiscount>("projectDiscount"),
};

constexpr KeyRow discountRangeKeys[] = {
    required<&DiscountRange::scoreRange>("scoreRange"),
    required<&DiscountRange::associatedDiscount>("associatedDiscount"),
};

}  // namespace

std::optional<std::vector<DiscountRange>> DiscountMetadata::scoreDiscountMap() const {
  if (!discountsForScores) return std::nullopt;
  std::vector<DiscountScore> steps = *discountsForScores;
  std::stable_sort(steps.begin(), steps.end(), earnsMore);

  std::vector<DiscountRange> ranges;
  ranges.reserve(steps.size());
  double upper = std::numeric_limits<double>::max();
  for (const DiscountScore& step : steps) {
    const auto scores = ClosedRange<double>::make(step.minimumScoreRequired, upper);
    if (!scores) continue;
    ranges.push_back({*scores, step.projectDiscount});
    upper = step.minimumScoreRequired;
  }
  return ranges;
}

KeyTables keysOf(RecordTag<Discount>) { return discountKeys; }
KeyTables keysOf(RecordTag<DiscountMetadata>) { return discountMetadataKeys; }
KeyTables keysOf(RecordTag<DiscountScore>) { return discountScoreKeys; }
KeyTables keysOf(RecordTag<DiscountRange>) { return discountRangeKeys; }

template struct RecordCoding<Discount>;
template struct RecordCoding<std::vector<Discount>>;
template struct RecordCoding<DiscountMetadata>;
template struct RecordCoding<std::vector<DiscountMetadata>>;
template struct RecordCoding<DiscountScore>;
template struct RecordCoding<std::vector<DiscountScore>>;
template struct RecordCoding<DiscountRange>;
template struct RecordCoding<std::vector<DiscountRange>>;

bool Discount::operator==(const Discount&) const noexcept = default;
bool DiscountMetadata::DiscountScore::operator==(
    const DiscountMetadata::DiscountScore&) const noexcept = default;
bool DiscountMetadata::DiscountRange::operator==(
    const DiscountMetadata::DiscountRange&) const noexcept = default;
bool DiscountMetadata::operator==(const DiscountMetadata&) const noexcept = default;

}  // namespace orvane
