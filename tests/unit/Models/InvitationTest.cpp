// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Invitation.h>

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
  expectMirrored(json, expected);
  EXPECT_TRUE(decode<Invitation>(json).value()->vehicle->isIdentical(*expected.vehicle));
  EXPECT_EQ(decode<Invitation>(R"({"status":null,"toUser":null,"vehicle":null})"), Invitation{});
}

TEST(InvitationTest, knowsTheseStatusesAndResponses) {
  EXPECT_EQ(wireTexts<Invitation::Status>(),
            "ACCEPTED PENDING DECLINED ACCEPTED_ACKNOWLEDGED DECLINED_ACKNOWLEDGED UNKNOWN");
  EXPECT_EQ(wireTexts<Invitation::Response>(),
            "accept decline accept_acknowledged decline_acknowledged");
  EXPECT_EQ(failure<Invitation>(R"({"status":"EXPIRED"})"), "dataCorrupted status");
}

}  // namespace
}  // namespace orvane
