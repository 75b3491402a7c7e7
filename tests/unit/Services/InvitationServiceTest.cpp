// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Invitation/InvitationComposer.h>
#include <Orvane/Services/Invitation/InvitationService.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

namespace orvane {
namespace {

using Response = Invitation::Response;

constexpr const char* jsonHeaders =
    "Content-Type: application/json\n"
    "X-Requested-With: XMLHttpRequest\n\n";

NewInvitation toBert() {
  return {.fromUserID = "42", .toUserFirstName = "Bert", .toUserLastName = "O'Neil"};
}

RequestRow responding(Response response, const std::string& action) {
  return {"responding with " + action,
          [response](const Identity& identity) {
            InvitationService(identity).respondToInvitation({.toUserId = "7",
                                                             .invitationId = "9",
                                                             .response = response,
                                                             .vehicleId = "v1",
                                                             .accountId = "a1"},
                                                            nullptr);
          },
          "POST users/7/invitations/9?action=" + action};
}

TEST(InvitationServiceTest, sendsTheseRequests) {
  expectRequests({
      {"invitations to vehicles, all of them",
       [](const Identity& identity) {
         InvitationService(identity).fetchVehicleInvites(std::nullopt, nullptr);
       },
       "GET users/42/invitations?type=vehicle"},
      {"invitations to accounts, filtered",
       [](const Identity& identity) {
         InvitationService(identity).fetchAccountInvites("PENDING", nullptr);
       },
       "GET users/42/invitations?type=account&filtered=PENDING"},
      {"a filter goes through as it is",
       [](const Identity& identity) {
         InvitationService(identity).fetchVehicleInvites("A&b=c d", nullptr);
       },
       "GET users/42/invitations?type=vehicle&filtered=A&b=c%20d"},
      responding(Response::accept, "accept"),
      responding(Response::decline, "decline"),
      responding(Response::ackAccept, "accept_acknowledged"),
      responding(Response::ackDecline, "decline_acknowledged"),
      {"cancelling tells the user and not the invitation",
       [](const Identity& identity) {
         InvitationService(identity).cancelVehicleInvitation("5", "9", nullptr);
       },
       "DELETE users/5/vehicles/"},
      {"taking a vehicle from a guest",
       [](const Identity& identity) {
         InvitationService(identity).removeGuestDriverFromVehicle("5", "v1", nullptr);
       },
       "DELETE users/5/vehicles/v1"},
      {"taking a guest from an account",
       [](const Identity& identity) {
         InvitationService(identity).removeGuestDriverFromAccount("5", "a1", nullptr);
       },
       "DELETE users/5/accounts/a1"},
  });
}

TEST(InvitationServiceTest, sendsTheseInvitations) {
  struct Row {
    const char* name;
    NewInvitation invitation;
    const char* body;
  };
  NewInvitation everything = toBert();
  everything.toUserEmail = "bert@example.com";
  everything.toUserPhoneNumber = "+41 44 \"0\"";
  everything.vehicleIDs = {"v2", "v1"};
  everything.accountIDs = {"a1", "a2"};
  NewInvitation toNoVehicle = toBert();
  toNoVehicle.vehicleIDs.emplace();
  NewInvitation toAccount = toBert();
  toAccount.accountIDs = {"a1"};
  const Row rows[] = {
      {"vehicles decide the type", everything,
       R"({"invitationType":"VEHICLE","fromUserId":"42","toUserFirstName":"Bert",)"
       R"("toUserLastName":"O'Neil","toUserEmail":"bert@example.com",)"
       R"("toUserPhoneNumber":"+41 44 \"0\"","vehicleIds":"v1,v2","fromAccountIds":"a1,a2"})"},
      {"vehicles are given, though none", toNoVehicle,
       R"({"invitationType":"VEHICLE","fromUserId":"42","toUserFirstName":"Bert",)"
       R"("toUserLastName":"O'Neil","vehicleIds":""})"},
      {"no vehicles", toAccount,
       R"({"invitationType":"ACCOUNT","fromUserId":"42","toUserFirstName":"Bert",)"
       R"("toUserLastName":"O'Neil","fromAccountIds":"a1"})"},
      {"neither vehicles nor accounts", toBert(),
       R"({"invitationType":"ACCOUNT","fromUserId":"42","toUserFirstName":"Bert",)"
       R"("toUserLastName":"O'Neil"})"},
  };
  for (const Row& row : rows) {
    const std::string request = std::string("POST invitations\n") + jsonHeaders + row.body;
    expectRequests({
        {std::string(row.name) + ", to vehicles",
         [&row](const Identity& identity) {
           InvitationService(identity).sendVehicleInvitation(row.invitation, nullptr);
         },
         request},
        {std::string(row.name) + ", to accounts",
         [&row](const Identity& identity) {
           InvitationService(identity).sendAccountInvitation(row.invitation, nullptr);
         },
         request},
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

TEST(InvitationServiceTest, decodesEachAnswerAsItsOwnKind) {
  const ScopedFoundation foundation;
  const InvitationService service(freshIdentity());
  const Invitation pending{.invitationId = "9", .status = Invitation::Status::pending};

  foundation.requestManager->answer(R"({"invitationId":"9","status":"PENDING"})");
  const Outcome<Invitation> one;
  service.sendVehicleInvitation(toBert(), one.handler());
  EXPECT_EQ(one.result(), pending);
  const Outcome<std::vector<Invitation>> noList;
  service.sendAccountInvitation(toBert(), noList.handler());
  EXPECT_EQ(noList.result(), NetworkError::invalidResponseData);

  foundation.requestManager->answer(R"([{"invitationId":"9","status":"PENDING"}])");
  const Outcome<std::vector<Invitation>> sent;
  service.sendAccountInvitation(toBert(), sent.handler());
  EXPECT_EQ(sent.result(), std::vector{pending});
  const Outcome<std::vector<Invitation>> listed;
  service.fetchAccountInvites(std::nullopt, listed.handler());
  EXPECT_EQ(listed.result(), std::vector{pending});

  foundation.requestManager->answer(R"([{"invitationId":"9","status":"EXPIRED"}])");
  const Outcome<std::vector<Invitation>> unlisted;
  service.fetchVehicleInvites(std::nullopt, unlisted.handler());
  EXPECT_EQ(unlisted.result(), NetworkError::invalidResponseData);
}

TEST(InvitationServiceTest, takesAnySuccessForTheOperationsWithoutAValue) {
  const ScopedFoundation foundation;
  const InvitationService service(freshIdentity());
  for (const char* body : {"", "{}", "<html>"}) {
    SCOPED_TRACE(body);
    foundation.requestManager->answer(std::string(body));
    const Outcome<Unit> outcomes[4];
    service.respondToInvitation(
        {.toUserId = "7", .invitationId = "9", .response = Response::accept},
        outcomes[0].handler());
    service.cancelVehicleInvitation("5", "9", outcomes[1].handler());
    service.removeGuestDriverFromVehicle("5", "v1", outcomes[2].handler());
    service.removeGuestDriverFromAccount("5", "a1", outcomes[3].handler());
    for (const auto& outcome : outcomes) EXPECT_EQ(outcome.result(), Unit{});
  }
  foundation.requestManager->answer(NetworkError::invalidStatusCode(403));
  const Outcome<Unit> refused;
  service.cancelVehicleInvitation("5", "9", refused.handler());
  EXPECT_EQ(refused.result(), NetworkError::invalidStatusCode(403));
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
