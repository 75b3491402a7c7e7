// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Printing.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/Subscription.h>

#include <gtest/gtest.h>

#include <optional>
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
  EXPECT_EQ(decode<Subscription>(json), expected);
  EXPECT_EQ(encode(expected), json);
  EXPECT_EQ(encode(Subscription{}), std::string("{}"));
}

TEST(SubscriptionTest, knowsTheseTypesAndNoOthers) {
  const std::pair<const char*, std::optional<Type>> rows[] = {
      {"Regular", Type::Regular},
      {"MileageOnly", Type::MileageOnly},
      {"MileagePlus", Type::MileagePlus},
      {"TryAndBuy", Type::TryAndBuy},
      {"aFNOL", Type::aFNOL},
      {"AFNOL", std::nullopt},
      {"regular", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [text, type] : rows) EXPECT_EQ(fromWireText<Type>(text), type) << text;
  const auto failed = decode<Subscription>(R"({"telematicSubscriptionType":"AFNOL"})");
  ASSERT_TRUE(failed.error() && failed.error()->as<DecodingError>());
  EXPECT_EQ(failed.error()->as<DecodingError>()->kind, DecodingError::Kind::dataCorrupted);
}

}  // namespace
}  // namespace orvane
