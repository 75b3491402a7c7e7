// SPDX-License-Identifier: Apache-2.0
#include "tests/support/RequestRows.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Subscription/SubscriptionComposer.h>
#include <Orvane/Services/Subscription/SubscriptionService.h>

namespace orvane {
namespace {

TEST(SubscriptionServiceTest, sendsThisRequest) {
  expectRequests<SubscriptionService>(
      {{"GET users/42/subscriptions", [](auto& dates) { dates.fetchContractDates(nullptr); }}});
  EXPECT_EQ(SubscriptionComposer("type=Regular").query(), "type=Regular");
}

}  // namespace
}  // namespace orvane
