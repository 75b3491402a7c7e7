// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Subscription/SubscriptionComposer.h>
#include <Orvane/Services/Subscription/SubscriptionService.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

namespace orvane {
namespace {

using Type = Subscription::SubscriptionType;

TEST(SubscriptionServiceTest, sendsThisRequest) {
  expectRequests(
      {{"contract dates",
        [](const Identity& identity) { SubscriptionService(identity).fetchContractDates(nullptr); },
        "GET users/42/subscriptions"}});
  EXPECT_EQ(SubscriptionComposer("type=Regular").query(), "type=Regular");
}

TEST(SubscriptionServiceTest, answersListsAndFailures) {
  struct Row {
    const char* answer;
    Result<std::vector<Subscription>> expected;
  };
  const Row rows[] = {
      {"[]", std::vector<Subscription>{}},
      {R"([{"telematicSubscriptionType":"aFNOL"},{}])",
       std::vector<Subscription>{{.telematicSubscriptionType = Type::aFNOL}, {}}},
      {R"([{},{"telematicSubscriptionType":"AFNOL"}])", NetworkError::invalidResponseData},
      {R"({})", NetworkError::invalidResponseData},
      {"", NetworkError::noData},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.answer);
    const ScopedFoundation foundation;
    foundation.requestManager->answer(std::string(row.answer));
    const Outcome<std::vector<Subscription>> outcome;
    SubscriptionService(freshIdentity()).fetchContractDates(outcome.handler());
    EXPECT_EQ(outcome.result(), row.expected);
  }
}

}  // namespace
}  // namespace orvane
