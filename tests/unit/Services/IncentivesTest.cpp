// SPDX-License-Identifier: Apache-2.0
// Discounts, their scheme, and rewards.
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include "tests/support/Requests.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Discount/DiscountMetadataComposer.h>
#include <Orvane/Services/Discount/DiscountMetadataService.h>
#include <Orvane/Services/Discount/DiscountService.h>
#include <Orvane/Services/Rewards/RewardsComposer.h>
#include <Orvane/Services/Rewards/RewardsService.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

TEST(IncentivesTest, sendOneRequestForEachOperation) {
  expectRequests({
      {"a discount",
       [](const Identity& identity) { DiscountService(identity).fetchDiscount({}, nullptr); },
       "GET users/42/discount"},
      {"a discount with scores",
       [](const Identity& identity) {
         DiscountService(identity).fetchDiscount({DiscountService::Expansion::scores}, nullptr);
       },
       "GET users/42/discount?expand=scores"},
      {"the scheme",
       [](const Identity& identity) {
         DiscountMetadataService(identity).fetchDiscountMetadata(nullptr);
       },
       "GET discountMetadata"},
      {"a token", [](const Identity& identity) { RewardsService(identity).fetchToken(nullptr); },
       "GET jwtgenerator"},
  });
}

TEST(IncentivesTest, sendAQueryAsItIs) {
  struct Row {
    std::optional<std::string> query;
    std::string_view end;
  };
  const Row rows[] = {{std::nullopt, ""}, {"", "?"}, {"a=b&c", "?a=b&c"}, {"a b", "?a%20b"}};
  for (const Row& row : rows) {
    const std::string root = std::string(apiRoot) + "/";
    EXPECT_EQ(DiscountMetadataComposer(row.query).url(exampleDetails())->absoluteString(),
              root + "discountMetadata" + std::string(row.end));
    EXPECT_EQ(RewardsComposer(row.query).url(exampleDetails())->absoluteString(),
              root + "jwtgenerator" + std::string(row.end));
  }
}

TEST(IncentivesTest, answerRecordsOrWhyThereIsNone) {
  const auto refused = NetworkError::invalidStatusCode(402, std::nullopt);
  const std::string scheme =
      R"({"discountsForScores":[{"minimumScoreRequired":80,"projectDiscount":15}]})";
  struct Row {
    Result<std::string> response;
    Result<Discount> discount;
    Result<DiscountMetadata> metadata;
    Result<RewardToken> token;
  };
  const NetworkError garbage = NetworkError::invalidResponseData;
  const Row rows[] = {
      {std::string(R"({"currentDiscount":12.5})"), Discount{.currentDiscount = 12.5},
       DiscountMetadata{}, garbage},
      {scheme, Discount{},
       DiscountMetadata{.discountsForScores =
                            std::vector<DiscountMetadata::DiscountScore>{{80, 15}}},
       garbage},
      {std::string(R"({"discountsForScores":[{"projectDiscount":15}]})"), Discount{}, garbage,
       garbage},
      {std::string(R"("e30.e30.c2ln")"), garbage, garbage, RewardToken{"e30.e30.c2ln"}},
      {std::string(R"({"token":"e30.e30.c2ln"})"), Discount{}, DiscountMetadata{}, garbage},
      {std::string("null"), garbage, garbage, garbage},
      {std::string(), NetworkError::noData, NetworkError::noData, NetworkError::noData},
      {refused, refused, refused, refused},
  };
  const ScopedFoundation foundation;
  for (const Row& row : rows) {
    foundation.requestManager->answer(row.response);
    const Outcome<Discount> discount;
    DiscountService(freshIdentity()).fetchDiscount({}, discount.handler());
    EXPECT_EQ(discount.result(), row.discount);
    const Outcome<DiscountMetadata> metadata;
    DiscountMetadataService(freshIdentity()).fetchDiscountMetadata(metadata.handler());
    EXPECT_EQ(metadata.result(), row.metadata);
    const Outcome<RewardToken> token;
    RewardsService(freshIdentity()).fetchToken(token.handler());
    EXPECT_EQ(token.result(), row.token);
  }
}

}  // namespace
}  // namespace orvane
