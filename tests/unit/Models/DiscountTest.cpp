// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include "tests/support/Values.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Discount.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

using Score = DiscountMetadata::DiscountScore;
using Range = DiscountMetadata::DiscountRange;
using Scores = std::vector<Score>;
using Ranges = std::vector<Range>;

constexpr double largest = 1.7976931348623157e308;

TEST(DiscountTest, isTheNumbersThatTheBackendSends) {
  constexpr std::string_view json =
      R"({"currentDiscount":12.5,"projectedDiscount":0.1,"discountRangeMin":-3,)"
      R"("discountRangeMax":1e+23,"projectedDiscountMinimum":0,"projectedDiscountMaximum":5e-324})";
  const Discount discount{.currentDiscount = 12.5,
                          .projectedDiscount = 0.1,
                          .discountRangeMin = -3,
                          .discountRangeMax = 1e23,
                          .projectedDiscountMinimum = 0,
                          .projectedDiscountMaximum = 5e-324};
  expectMirrored(json, discount);
  expectMirrored("{}", Discount{});
  EXPECT_EQ(decode<Discount>(R"({"currentDiscount":null,"projectDiscount":7})"), Discount{});
  for (const std::string_view wrong : {R"({"currentDiscount":"12.5"})", "[]", "null", "12.5"}) {
    EXPECT_FALSE(decode<Discount>(wrong)) << wrong;
  }
}

TEST(DiscountMetadataTest, isReadAndWrittenWhole) {
  constexpr std::string_view json =
      R"({"discountsForScores":[{"minimumScoreRequired":80.5,"projectDiscount":15},)"
      R"({"minimumScoreRequired":60,"projectDiscount":0.25}],"minimumKmRequired":1500.75})";
  const DiscountMetadata metadata{.discountsForScores = Scores{{80.5, 15}, {60, 0.25}},
                                  .minimumKmRequired = 1500.75};
  expectMirrored(json, metadata);
  expectMirrored("{}", DiscountMetadata{});
}

TEST(DiscountMetadataTest, failsWithOneMalformedStep) {
  expectNeeds<Score>(R"({"minimumScoreRequired":5,"projectDiscount":5})",
                     {"minimumScoreRequired", "projectDiscount"});
  const std::pair<std::string, std::string> rows[] = {
      {R"({"minimumScoreRequired":5,"projectedDiscount":5})",
       "keyNotFound discountsForScores[1].projectDiscount"},
      {R"({"minimumScoreRequired":"5","projectDiscount":5})",
       "typeMismatch discountsForScores[1].minimumScoreRequired"},
      {"null", "valueNotFound discountsForScores[1]"},
  };
  for (const auto& [step, why] : rows) {
    const std::string json =
        R"({"discountsForScores":[{"minimumScoreRequired":80,"projectDiscount":15},)" + step + "]}";
    EXPECT_EQ(failure<DiscountMetadata>(json), why);
  }
}

TEST(DiscountRangeTest, isAnArrayOfItsTwoBounds) {
  expectMirrored(R"({"scoreRange":[60,80.5],"associatedDiscount":10})", Range{{60, 80.5}, 10});
  expectMirrored(R"({"scoreRange":[60,60],"associatedDiscount":-1})", Range{{60, 60}, -1});
  expectMirrored(R"({"scoreRange":[0,1.7976931348623157e+308],"associatedDiscount":0.1})",
                 Range{{0, largest}, 0.1});
  expectNeeds<Range>(R"({"scoreRange":[60,80],"associatedDiscount":10})",
                     {"scoreRange", "associatedDiscount"});
  for (const std::string bounds : {"[80,60]", "[60]", "[]", "[60,70,80]", "[60,null]",
                                   R"(["60",80])", R"({"lower":60,"upper":80})"}) {
    EXPECT_FALSE(decode<Range>(R"({"scoreRange":)" + bounds + R"(,"associatedDiscount":10})"))
        << bounds;
  }
}

TEST(DiscountMetadataTest, derivesRangesOfScores) {
  struct Row {
    std::string_view what;
    std::optional<Scores> steps;
    std::optional<Ranges> ranges;
  };
  const Row rows[] = {
      {"absent", {}, {}},
      {"empty", Scores{}, Ranges{}},
      {"one", Scores{{50, 10}}, Ranges{{{50, largest}, 10}}},
      {"neighbours share a bound", Scores{{80, 15}, {60, 10}, {40, 5}},
       Ranges{{{80, largest}, 15}, {{60, 80}, 10}, {{40, 60}, 5}}},
      {"the smaller discount asks for more", Scores{{50, 10}, {70, 5}},
       Ranges{{{50, largest}, 10}}},
      {"a skipped step does not move the bound", Scores{{50, 10}, {70, 5}, {30, 1}},
       Ranges{{{50, largest}, 10}, {{30, 50}, 1}}},
      {"an equal score is not skipped", Scores{{60, 10}, {60, 5}},
       Ranges{{{60, largest}, 10}, {{60, 60}, 5}}},
      {"equal discounts keep their order", Scores{{70, 10}, {50, 10}},
       Ranges{{{70, largest}, 10}, {{50, 70}, 10}}},
      {"equal discounts keep their order, and the higher score comes too late",
       Scores{{50, 10}, {70, 10}}, Ranges{{{50, largest}, 10}}},
      {"negative", Scores{{-10, -5}, {-20, -7}}, Ranges{{{-10, largest}, -5}, {{-20, -10}, -7}}},
      {"the largest score", Scores{{largest, 9}}, Ranges{{{largest, largest}, 9}}},
      {"a score beyond all others", Scores{{infinity, 9}, {1, 8}}, Ranges{{{1, largest}, 8}}},
      {"a score below all others", Scores{{-infinity, 9}, {1, 8}},
       Ranges{{{-infinity, largest}, 9}}},
      {"a score that is no number", Scores{{notANumber, 9}, {1, 8}}, Ranges{{{1, largest}, 8}}},
  };
  for (const Row& row : rows) {
    const DiscountMetadata metadata{.discountsForScores = row.steps};
    EXPECT_EQ(metadata.scoreDiscountMap(), row.ranges) << row.what;
    EXPECT_EQ(metadata.discountsForScores.has_value(), row.steps.has_value());
  }
}

TEST(DiscountMetadataTest, derivesTheSameRangesFromStepsInAnyOrder) {
  Scores steps{{20, 1}, {40, 5}, {60, 10}, {70, 7}, {80, 15}};
  const Ranges ranges{
      {{80, largest}, 15}, {{60, 80}, 10}, {{40, 60}, 5}, {{20, 40}, 1}};  // 70 earns nothing
  const auto byScore = [](const Score& left, const Score& right) {
    return left.minimumScoreRequired < right.minimumScoreRequired;
  };
  do {
    EXPECT_EQ(DiscountMetadata{.discountsForScores = steps}.scoreDiscountMap(), ranges);
  } while (std::next_permutation(steps.begin(), steps.end(), byScore));
}

// Short lists come out right by accident: many sorting functions keep their order.
TEST(DiscountMetadataTest, keepsTheOrderOfManyEqualDiscounts) {
  Scores steps;
  for (int i = 0; i < 1000; ++i) {
    const int pair = i / 2;
    steps.push_back({double(1000 - pair), double(i % 2)});
  }
  const auto ranges = DiscountMetadata{.discountsForScores = steps}.scoreDiscountMap();
  ASSERT_TRUE(ranges);
  ASSERT_EQ(ranges->size(), 501U);  // and of the smaller discount, the one at the common bound
  for (std::size_t i = 0; i < 500; ++i) {
    EXPECT_EQ((*ranges)[i].scoreRange.lowerBound(), 1000.0 - double(i));
    EXPECT_EQ((*ranges)[i].associatedDiscount, 1);
  }
  EXPECT_EQ(ranges->back(), (Range{{501, 501}, 0}));
}

TEST(DiscountMetadataTest, sortsDiscountsThatAreNoNumbersLast) {
  Scores steps;
  for (int i = 0; i < 300; ++i) {
    steps.push_back({double(i), i % 3 == 0 ? notANumber : double(i)});
  }
  const auto ranges = DiscountMetadata{.discountsForScores = steps}.scoreDiscountMap();
  ASSERT_TRUE(ranges);
  ASSERT_EQ(ranges->size(), 201U);
  EXPECT_EQ(ranges->front(), (Range{{299, largest}, 299}));
  EXPECT_EQ((*ranges)[199], (Range{{1, 2}, 1}));
  EXPECT_EQ(ranges->back().scoreRange, (ClosedRange<double>{0, 1}));
}

TEST(DiscountTest, whatIsNotFiniteIsNotWritten) {
  for (const double number : {infinity, -infinity, notANumber}) {
    EXPECT_FALSE(encode(Discount{.projectedDiscount = number}));
    EXPECT_FALSE(encode(Score{number, 1}));
    EXPECT_FALSE(encode(DiscountMetadata{.minimumKmRequired = number}));
    EXPECT_FALSE(encode(DiscountMetadata{.discountsForScores = Scores{{1, number}}}));
    EXPECT_FALSE(encode(Range{{0, 1}, number}));
  }
  EXPECT_FALSE(encode(Range{{0, infinity}, 1}));
}

}  // namespace
}  // namespace orvane
