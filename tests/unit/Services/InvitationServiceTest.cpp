// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/Invitation/InvitationComposer.h>
#include <Orvane/Services/Invitation/InvitationService.h>
#include <Orvane/Testing/ScopedFoundation.h>

namespace orvane {
namespace {

using Response = Invitation::Response;

NewInvitation toBert() {
  return {.fromUserID = "42", .toUserFirstName = "Bert", .toUserLastName = "O'Neil"};
}

RequestRow<InvitationService> responding(Response response, const std::string& action) {
  return {"POST users/7/invitations/9?action=" + action, [response](auto& invitations) {
            invitations.respondToInvitation({.toUserId = "7",
                                             .invitationId = "9",
                                             .response = response,
                                             .vehicleId = "v1",
                                             .accountId = "a1"},
                                            nullptr);
          }};
}

TEST(InvitationServiceTest, sendsTheseRequests) {
  expectRequests<InvitationService>({
      {"GET users/42/invitations?type=vehicle",
       [](auto& invitations) { invitations.fetchVehicleInvites({}, nullptr); }},
      {"GET users/42/invitations?type=account&filtered=PENDING",
       [](auto& invitations) { invitations.fetchAccountInvites("PENDING", nullptr); }},
      {"GET users/42/invitations?type=vehicle&filtered=A&b=c%20d",
       [](auto& invitations) { invitations.fetchVehicleInvites("A&b=c d", nullptr); }},
      responding(Response::accept, "accept"),
      responding(Response::decline, "decline"),
      responding(Response::ackAccept, "accept_acknowledged"),
      responding(Response::ackDecline, "decline_acknowledged"),
      // Cancelling tells the user and not the invitation.
      {"DELETE users/5/vehicles/",
       [](auto& invitations) { invitations.cancelVehicleInvitation("5", "9", nullptr); }},
      {"DELETE users/5/vehicles/v1",
       [](auto& invitations) { invitations.removeGuestDriverFromVehicle("5", "v1", nullptr); }},
      {"DELETE users/5/accounts/a1",
       [](auto& invitations) { invitations.removeGuestDriverFromAccount("5", "a1", nullptr); }},
  });
}

TEST(InvitationServiceTest, sendsTheseInvitations) {
  NewInvitation everything = toBert();
  everything.toUserEmail = "bert@example.com";
  everything.toUserPhoneNumber = "+41 44 \"0\"";
  everything.vehicleIDs = {"v2", "v1"};
  everything.accountIDs = {"a1", "a2"};
  NewInvitation toNoVehicle = toBert();
  toNoVehicle.vehicleIDs.emplace();
  NewInvitation toAccount = toBert();
  toAccount.accountIDs = {"a1"};
  // Vehicles, given though none, decide the type.
  const std::string bert =
      R"("fromUserId":"42","toUserFirstName":"Bert","toUserLastName":"O'Neil")";
  const std::pair<NewInvitation, std::string> rows[] = {
      {everything, R"({"invitationType":"VEHICLE",)" + bert +
                       R"(,"toUserEmail":"bert@example.com","toUserPhoneNumber":"+41 44 \"0\"",)"
                       R"("vehicleIds":"v1,v2","fromAccountIds":"a1,a2"})"},
      {toNoVehicle, R"({"invitationType":"VEHICLE",)" + bert + R"(,"vehicleIds":""})"},
      {toAccount, R"({"invitationType":"ACCOUNT",)" + bert + R"(,"fromAccountIds":"a1"})"},
      {toBert(), R"({"invitationType":"ACCOUNT",)" + bert + "}"},
  };
  for (const auto& [invitation, body] : rows) {
    const std::string request =
        "POST invitations\nContent-Type: application/json\nX-Requested-With: XMLHttpRequest\n\n" +
        body;
    expectRequests<InvitationService>({
        {request,
         [&to = invitation](auto& service) { service.sendVehicleInvitation(to, nullptr); }},
        {request,
         [&to = invitation](auto& service) { service.sendAccountInvitation(to, nullptr); }},
    });
  }
}

TEST(InvitationServiceTest, refusesTextsThatAreNotUTF8) {
  const std::string broken = "\xC3(";
  NewInvitation rows[] = {toBert(), toBert(), toBert(), toBert()};
  rows[0].fromUserID = broken;
  rows[1].toUserLastName = broken;
  rows[2].toUserEmail = broken;
  rows[3].vehicleIDs = {"v1", broken};
  for (const NewInvitation& invitation : rows) {
    const ScopedFoundation foundation;
    const Outcome<Invitation> outcome;
    InvitationService(freshIdentity()).sendVehicleInvitation(invitation, outcome.handler());
    EXPECT_EQ(outcome.result(), NetworkError::malformedRequest);
    EXPECT_TRUE(foundation.requestManager->questions().empty());
  }
}

TEST(InvitationComposerTest, formsWhatNoOperationAsksFor) {
  using Composer = InvitationComposer;
  const Composer leaderboard(Composer::FetchInvitations{Composer::InvitationType::leaderboard});
  EXPECT_EQ(leaderboard.query(), "type=leaderboard");
  EXPECT_EQ(wireText(Composer::InvitationType::leaderboard), "LEADERBOARD");
  const Composer both(
      Composer::DeleteInvitation{.userId = "5", .vehicleId = "v1", .accountID = "a1"});
  EXPECT_EQ(both.path("42"), "users/5/accounts/a1");
}

}  // namespace
}  // namespace orvane
