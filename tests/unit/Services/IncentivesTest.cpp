// SPDX-License-Identifier: Apache-2.0
// Discounts, their scheme, and rewards.
#include "tests/support/RequestRows.h"
#include "tests/support/Requests.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Discount/DiscountMetadataComposer.h>
#include <Orvane/Services/Discount/DiscountMetadataService.h>
#include <Orvane/Services/Discount/DiscountService.h>
#include <Orvane/Services/Rewards/RewardsComposer.h>
#include <Orvane/Services/Rewards/RewardsService.h>
#include <Orvane/Testing/FixedResolvers.h>

#include <optional>
#include <string>

namespace orvane {
namespace {

TEST(IncentivesTest, sendOneRequestForEachOperation) {
  using enum DiscountService::Expansion;
  expectRequests<DiscountService>({
      {"GET users/42/discount", [](auto& discounts) { discounts.fetchDiscount({}, nullptr); }},
      {"GET users/42/discount?expand=scores",
       [](auto& discounts) { discounts.fetchDiscount({scores}, nullptr); }},
  });
  expectRequests<DiscountMetadataService>(
      {{"GET discountMetadata", [](auto& scheme) { scheme.fetchDiscountMetadata(nullptr); }}});
  expectRequests<RewardsService>(
      {{"GET jwtgenerator", [](auto& rewards) { rewards.fetchToken(nullptr); }}});
}

TEST(IncentivesTest, sendAQueryAsItIs) {
  const std::pair<std::optional<std::string>, std::string> rows[] = {
      {std::nullopt, ""}, {"", "?"}, {"a=b&c", "?a=b&c"}, {"a b", "?a%20b"}};
  for (const auto& [query, end] : rows) {
    const std::string root = std::string(apiRoot) + "/";
    EXPECT_EQ(DiscountMetadataComposer(query).url(exampleDetails())->absoluteString(),
              root + "discountMetadata" + end);
    EXPECT_EQ(RewardsComposer(query).url(exampleDetails())->absoluteString(),
              root + "jwtgenerator" + end);
  }
}

}  // namespace
}  // namespace orvane
