// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Subscription.h>

#include <string>

namespace orvane {
namespace {

using Type = Subscription::SubscriptionType;

TEST(SubscriptionTest, isReadAndWrittenWhole) {
  const std::string json =
      R"({"startTimestamp":1672531200000,"endTimestamp":1704067199999.5,)"
      R"("telematicSubscriptionEnrollmentId":9007199254740993,)"
      R"("telematicSubscriptionType":"TryAndBuy","subscriptionLengthMillis":31536000001,)"
      R"("trialLengthMillis":2592000001,"trialEndTimestamp":1675123200000})";
  const Subscription expected{.startTimestamp = 1672531200000.0,
                              .endTimestamp = 1704067199999.5,
                              .telematicSubscriptionEnrollmentId = 9007199254740993,
                              .telematicSubscriptionType = Type::TryAndBuy,
                              .subscriptionLengthMillis = 31536000001.0,
                              .trialLengthMillis = 2592000001.0,
                              .trialEndTimestamp = 1675123200000.0};
  expectMirrored(json, expected);
  expectMirrored("{}", Subscription{});
}

TEST(SubscriptionTest, knowsTheseTypesAndNoOthers) {
  EXPECT_EQ(wireTexts<Type>(), "Regular MileageOnly MileagePlus TryAndBuy aFNOL");
  EXPECT_EQ(failure<Subscription>(R"({"telematicSubscriptionType":"AFNOL"})"),
            "dataCorrupted telematicSubscriptionType");
}

}  // namespace
}  // namespace orvane
