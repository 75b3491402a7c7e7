// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Printing.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/Invitation.h>

#include <gtest/gtest.h>

#include <string>

namespace orvane {
namespace {

// Vehicles compare by their identifiers; written out, everything shows.
TEST(InvitationTest, isReadAndWrittenWhole) {
  const std::string json =
      R"({"invitationId":"9","creationTimestamp":1700000000123.5,)"
      R"("lastUpdatedTimestamp":1700000001000,"status":"ACCEPTED_ACKNOWLEDGED",)"
      R"("fromUser":{"userId":"42","firstName":"Ann","lastName":"Lee","publicDisplayName":"ann"},)"
      R"("toUser":{"userId":"7"},)"
      R"("vehicle":{"vehicleId":"v1","nickName":"Blue","year":2021,)"
      R"("usersByRole":{"OPERATOR":[{"userId":"7"}],"OWNER":[{"userId":"42"}]}},)"
      R"("account":{"accountId":"a1","identifier":"family"}})";
  const Invitation expected{
      .invitationId = "9",
      .creationTimestamp = 1700000000123.5,
      .lastUpdatedTimestamp = 1700000001000.0,
      .status = Invitation::Status::acceptedAcknowledged,
      .fromUser =
          Invitation::InvitationUser{
              .userId = "42", .firstName = "Ann", .lastName = "Lee", .publicDisplayName = "ann"},
      .toUser = Invitation::InvitationUser{.userId = "7"},
      .vehicle = Vehicle{.vehicleId = "v1",
                         .nickName = "Blue",
                         .year = 2021,
                         .usersByRole =
                             UsersByRole{.OPERATOR = {{{.id = "7"}}}, .OWNER = {{{.id = "42"}}}}},
      .account = Account{.accountId = "a1", .identifier = "family"},
  };
  const auto decoded = decode<Invitation>(json);
  EXPECT_EQ(decoded, expected);
  ASSERT_TRUE(decoded.value());
  EXPECT_TRUE(decoded.value()->vehicle->isIdentical(*expected.vehicle));
  EXPECT_EQ(encode(expected), json);

  EXPECT_EQ(decode<Invitation>(R"({"status":null,"toUser":null,"vehicle":null})"), Invitation{});
}

TEST(InvitationTest, knowsTheseStatusesAndNoOthers) {
  const std::pair<const char*, Invitation::Status> rows[] = {
      {"ACCEPTED", Invitation::Status::accepted},
      {"PENDING", Invitation::Status::pending},
      {"DECLINED", Invitation::Status::declined},
      {"ACCEPTED_ACKNOWLEDGED", Invitation::Status::acceptedAcknowledged},
      {"DECLINED_ACKNOWLEDGED", Invitation::Status::declinedAcknowledged},
      {"UNKNOWN", Invitation::Status::unknown},
  };
  for (const auto& [text, status] : rows) {
    EXPECT_EQ(fromWireText<Invitation::Status>(text), status) << text;
  }
  for (const char* text : {"pending", "EXPIRED", "", " PENDING"}) {
    EXPECT_EQ(fromWireText<Invitation::Status>(text), std::nullopt) << text;
  }
}

TEST(InvitationTest, knowsTheseResponsesAndNoOthers) {
  const std::pair<const char*, Invitation::Response> rows[] = {
      {"accept", Invitation::Response::accept},
      {"decline", Invitation::Response::decline},
      {"accept_acknowledged", Invitation::Response::ackAccept},
      {"decline_acknowledged", Invitation::Response::ackDecline},
  };
  for (const auto& [text, response] : rows) {
    EXPECT_EQ(fromWireText<Invitation::Response>(text), response) << text;
  }
  for (const char* text : {"ACCEPT", "ackAccept", "accept-acknowledged", ""}) {
    EXPECT_EQ(fromWireText<Invitation::Response>(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace orvane
