// SPDX-License-Identifier: Apache-2.0
//
// What people do with each other and with their papers: invitations, enrolment, phones, contracts.
#include "Fixture.h"

#include <gmock/gmock.h>

#include <set>

namespace orvane::sandbox::test {
namespace {

using testing::Each;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class Invitations : public SandboxTest {
 protected:
  Answer send(const json& body) {
    return post("invitations", body.dump(), "application/json",
                {{"X-Requested-With", "XMLHttpRequest"}});
  }

  static json draft() {
    return {{"invitationType", "VEHICLE"},
            {"fromUserId", "1001"},
            {"toUserFirstName", "Priya"},
            {"toUserLastName", "Nair"},
            {"toUserEmail", "Priya.Nair@example.com"},
            {"vehicleIds", "3001"}};
  }

  int answer(const std::string& toUser, const std::string& id, const std::string& action) {
    return post("users/" + toUser + "/invitations/" + id + "?action=" + action).status;
  }
};

TEST_F(Invitations, AVehicleInvitationLivesFromSendingToRemoval) {
  const Answer sent = send(draft());
  ASSERT_EQ(sent.status, 200) << sent.body;
  const std::string id = sent.parsed()["invitationId"];
  EXPECT_EQ(sent.parsed()["status"], "PENDING");
  EXPECT_EQ(sent.parsed()["toUser"]["userId"], "1005") << "known by the e-mail address";
  EXPECT_EQ(sent.parsed()["vehicle"]["vehicleId"], "3001");
  EXPECT_EQ(send(draft()).status, 409) << "still waiting for an answer";
  EXPECT_EQ(answer("1005", id, "accept"), 403) << "not the sender's to accept";

  actAs("1005");
  EXPECT_EQ(get("users/1005/vehicles/3001").status, 404);
  EXPECT_EQ(answer("1005", id, "accept_acknowledged"), 409);
  EXPECT_EQ(answer("1005", id, "accept"), 200);
  EXPECT_EQ(answer("1005", id, "decline"), 409);
  EXPECT_EQ(get("users/1005/vehicles/3001").status, 200);

  actAs("1001");
  EXPECT_EQ(answer("1005", id, "accept_acknowledged"), 200);
  const json acknowledged =
      read("users/1001/invitations?type=vehicle&filtered=ACCEPTED_ACKNOWLEDGED");
  EXPECT_EQ(acknowledged[0]["invitationId"], id);
  EXPECT_EQ(remove("users/1001/vehicles/3001").status, 409) << "the owner is no guest";
  EXPECT_EQ(remove("users/1005/vehicles/3001").status, 204);
  EXPECT_EQ(remove("users/1005/vehicles/3001").status, 404);
}

TEST_F(Invitations, AnAccountInvitationMakesAnAssociatedUser) {
  json body = draft();
  body.erase("vehicleIds");
  body["invitationType"] = "ACCOUNT";
  body["fromAccountIds"] = "2001";
  const Answer sent = send(body);
  ASSERT_EQ(sent.status, 200) << sent.body;
  ASSERT_TRUE(sent.parsed().is_array()) << "account invitations are answered with a list";
  const std::string id = sent.parsed()[0]["invitationId"];
  EXPECT_EQ(sent.parsed()[0]["account"]["accountId"], "2001");
  EXPECT_EQ(get("users/1005").status, 403);

  actAs("1005");
  EXPECT_EQ(answer("1005", id, "accept"), 200);
  EXPECT_EQ(get("users/1001").status, 200);
  actAs("1001");
  EXPECT_THAT(read("users/1001?expand=associatedUsers")["associatedUsers"], SizeIs(3));
  EXPECT_EQ(remove("users/1002/accounts/2001").status, 409) << "at home there";
  EXPECT_EQ(remove("users/1005/accounts/2001").status, 204);
  EXPECT_EQ(get("users/1005").status, 403);
}

TEST_F(Invitations, CancellingCallsBackEveryUnansweredVehicleInvitation) {
  EXPECT_FALSE(read("users/1001/invitations?type=vehicle&filtered=PENDING").size() < 2);
  EXPECT_EQ(remove("users/1001/vehicles/").status, 204);
  const json left = read("users/1001/invitations?type=vehicle&filtered=PENDING");
  ASSERT_THAT(left, SizeIs(1));
  EXPECT_EQ(left[0]["toUser"]["userId"], "1001") << "those of others stay";
  EXPECT_EQ(remove("users/1002/vehicles/").status, 403);
}

TEST_F(Invitations, EveryStateAndTypeIsThereToSee) {
  std::set<std::string> states;
  for (const json& invitation : read("users/1001/invitations?type=vehicle")) {
    states.insert(invitation["status"]);
  }
  EXPECT_THAT(states, UnorderedElementsAre("PENDING", "ACCEPTED", "DECLINED", "UNKNOWN",
                                           "ACCEPTED_ACKNOWLEDGED", "DECLINED_ACKNOWLEDGED"));
  EXPECT_THAT(read("users/1001/invitations?type=account"), SizeIs(1));
  EXPECT_THAT(read("users/1001/invitations?type=leaderboard"), SizeIs(1));
  for (const char* query :
       {"", "?type=VEHICLE", "?type=vehicle&filtered=pending", "?type=vehicle&filtered="}) {
    EXPECT_EQ(get(std::string{"users/1001/invitations"} + query).status, 400) << query;
  }
  EXPECT_EQ(get("users/1002/invitations?type=vehicle").status, 403);
}

TEST_F(Invitations, DraftsAreChecked) {
  const auto with = [this](const char* name, const json& value) {
    json body = draft();
    value.is_null() ? static_cast<void>(body.erase(name)) : static_cast<void>(body[name] = value);
    return send(body).status;
  };
  EXPECT_EQ(with("toUserFirstName", nullptr), 400);
  EXPECT_EQ(with("toUserEmail", nullptr), 400) << "nobody can be reached";
  EXPECT_EQ(with("vehicleIds", nullptr), 400);
  EXPECT_EQ(with("vehicleIds", json::array({"3001"})), 400) << "ids are joined with commas";
  EXPECT_EQ(with("vehicleIds", "3001,9"), 404);
  EXPECT_EQ(with("vehicleIds", "3003"), 403);
  EXPECT_EQ(with("invitationType", "vehicle"), 400);
  EXPECT_EQ(with("fromUserId", "1002"), 403);
  EXPECT_EQ(with("message", "hello"), 400);
  EXPECT_EQ(post("invitations", draft().dump(), "application/json").status, 400);
  EXPECT_EQ(post("invitations", draft().dump(), "text/plain").status, 415);
  EXPECT_EQ(with("vehicleIds", "3001,3006"), 200);
}

class Enrolment : public SandboxTest {
 protected:
  int activate(const std::string& id, const std::string& code, const std::string& more = "") {
    return post("activation?activationId=" + id + "&activationCode=" + code +
                "&email=nora@example.com" + more +
                "&displayName=nora@example.com&phoneIdentifier=phone-7")
        .status;
  }
};

TEST_F(Enrolment, ACodeActivatesOnceAndOnlyItsOwner) {
  EXPECT_EQ(activate("ACT-1007", "424242"), 403) << "Nora's, not Anna's";
  actAs("1007");
  EXPECT_EQ(read("users/1007")["activated"], false);
  EXPECT_EQ(activate("ACT-9", "424242"), 404);
  EXPECT_EQ(activate("ACT-1007", "000000"), 403);
  EXPECT_EQ(activate("ACT-USED", "111111"), 409);
  EXPECT_EQ(activate("ACT-1007", "424242", "&accountId=anna.keller"), 403);
  EXPECT_EQ(activate("ACT-1007", ""), 400);
  EXPECT_EQ(read("users/1007")["activated"], false);
  EXPECT_EQ(activate("ACT-1007", "424242", "&accountId=nora.frei"), 200);
  const json user = read("users/1007");
  EXPECT_EQ(user["activated"], true);
  EXPECT_EQ(user["email"], "nora@example.com");
  EXPECT_EQ(read("users/1007/devices/phone-7")["activeForDataCollection"], true);
  EXPECT_EQ(activate("ACT-1007", "424242"), 409);
}

TEST_F(Enrolment, TermsAreAcceptedByTheOneFormPart) {
  actAs("1007");
  EXPECT_EQ(read("users/1007/eula")["acceptedTerms"], false);
  EXPECT_EQ(postForm("users/1007/eula", {{"acceptedTerms", "true", "", ""}}).status, 400);
  EXPECT_EQ(post("users/1007/eula").status, 415);
  EXPECT_EQ(postForm("users/1001/eula", {{"acceptedTerms", "accept", "", ""}}).status, 403);
  const Answer accepted = postForm("users/1007/eula", {{"acceptedTerms", "accept", "", ""}});
  EXPECT_EQ(accepted.status, 204);
  EXPECT_EQ(accepted.body, "");
  EXPECT_EQ(read("users/1007")["acceptedTerms"], true);
  EXPECT_EQ(read("users/1007")["acceptedTermsDate"], parseTimestamp(fixedNow).value());
}

class Devices : public SandboxTest {};

TEST_F(Devices, OnlyOnePhoneCollectsAndTokensComeAndGo) {
  EXPECT_EQ(get("users/1001/devices/new").status, 404);
  EXPECT_EQ(post("users/1001/devices/new?action=deactivate").status, 404);
  const Answer activated = post("users/1001/devices/new?action=activateLimitOne");
  EXPECT_EQ(activated.parsed()["activeForDataCollection"], true);
  EXPECT_EQ(read("users/1001/devices/phone-1001")["activeForDataCollection"], false);
  EXPECT_THAT(read("users/1001/devices"), SizeIs(3));

  const Answer token = post("users/1001/devices/new?deviceToken=t%20%2B1&appId=1");
  EXPECT_EQ(token.parsed()["pushNotificationToken"], "t +1");
  EXPECT_EQ(token.parsed()["enablePushNotifications"], true);
  const json without = post("users/1001/devices/new?deviceToken=&appId=1").parsed();
  EXPECT_EQ(without["enablePushNotifications"], false);
  EXPECT_FALSE(without.contains("pushNotificationToken"));
  EXPECT_EQ(post("users/1001/devices/new?action=deactivate").parsed()["activeForDataCollection"],
            false);

  for (const char* query : {"", "?action=activate", "?deviceToken=t", "?deviceToken=t&appId=x",
                            "?action=deactivate&deviceToken=t&appId=1", "?appId=1"}) {
    EXPECT_EQ(post(std::string{"users/1001/devices/new"} + query).status, 400) << query;
  }
  EXPECT_EQ(get("users/1002/devices/phone-1002").status, 403);
}

class Policy : public SandboxTest {};

TEST_F(Policy, SubscriptionsOfEveryTypeAreThere) {
  std::set<std::string> types;
  for (const json& subscription : read("users/1001/subscriptions")) {
    types.insert(subscription["telematicSubscriptionType"]);
    EXPECT_EQ(subscription["endTimestamp"].get<std::int64_t>() -
                  subscription["startTimestamp"].get<std::int64_t>(),
              subscription["subscriptionLengthMillis"].get<std::int64_t>());
  }
  EXPECT_THAT(types,
              UnorderedElementsAre("Regular", "MileageOnly", "MileagePlus", "TryAndBuy", "aFNOL"));
  actAs("1007");
  EXPECT_EQ(read("users/1007/subscriptions"), json::array());
}

TEST_F(Policy, NamedDriversAreThePolicyHoldersToCorrect) {
  EXPECT_THAT(read("namedDrivers"), SizeIs(3));
  const Answer changed =
      put("namedDrivers/1201?namedDriverEmail=otto+k@example.com&namedDriverPhone=");
  ASSERT_EQ(changed.status, 200) << changed.body;
  EXPECT_EQ(changed.parsed()["email"], "otto+k@example.com") << "a plus is a plus";
  EXPECT_FALSE(changed.parsed().contains("phone"));
  EXPECT_EQ(changed.parsed()["userId"], 1201) << "a number, unlike everywhere else";
  EXPECT_EQ(read("namedDrivers")[2], changed.parsed());
  EXPECT_EQ(put("namedDrivers/1201?namedDriverEmail=otto@example.com").status, 400);
  EXPECT_EQ(put("namedDrivers/1201?namedDriverEmail=otto&namedDriverPhone=").status, 400);
  EXPECT_EQ(put("namedDrivers/otto?namedDriverEmail=&namedDriverPhone=").status, 400);
  EXPECT_EQ(put("namedDrivers/7?namedDriverEmail=&namedDriverPhone=").status, 404);
}

}  // namespace
}  // namespace orvane::sandbox::test
