// SPDX-License-Identifier: Apache-2.0
//
// What people do with each other and with their papers: invitations, enrolment, phones, contracts.
#include "Fixture.h"

#include <gmock/gmock.h>

#include <set>
#include <tuple>

namespace orvane::sandbox::test {
namespace {

using testing::SizeIs;
using testing::UnorderedElementsAre;

class Invitations : public SandboxTest {
 protected:
  Answer send(const json& body) {
    return SandboxTest::send("POST invitations", body.dump(), "application/json",
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
};

TEST_F(Invitations, OnlyWhoIsInvitedAnswersAndOnlyOnce) {
  const Answer sent = send(draft());
  ASSERT_EQ(sent.status, 200) << sent.body;
  EXPECT_EQ(sent.parsed()["toUser"]["userId"], "1005") << "known by the e-mail address";
  EXPECT_EQ(send(draft()).status, 409) << "still waiting for an answer";
  const std::string path = "POST users/1005/invitations/" +
                           sent.parsed()["invitationId"].get<std::string>() + "?action=";
  refuses(403, {path + "accept"});

  actAs("1005");
  refuses(404, {"GET users/1005/vehicles/3001"});
  refuses(409, {path + "accept_acknowledged"});
  EXPECT_EQ(SandboxTest::send(path + "accept").status, 200);
  refuses(409, {path + "decline"});
  EXPECT_EQ(get("users/1005/vehicles/3001").status, 200);
  actAs("1001");
  EXPECT_EQ(SandboxTest::send(path + "accept_acknowledged").status, 200);
  refuses(409, {"DELETE users/1001/vehicles/3001"});  // the owner is no guest
}

TEST_F(Invitations, AnAccountInvitationMakesAnAssociatedUser) {
  json body = draft();
  body.erase("vehicleIds");
  body["invitationType"] = "ACCOUNT";
  body["fromAccountIds"] = "2001";
  const std::string id = send(body).parsed()[0]["invitationId"];
  refuses(403, {"GET users/1005"});
  actAs("1005");
  EXPECT_EQ(post("users/1005/invitations/" + id + "?action=accept").status, 200);
  EXPECT_EQ(get("users/1001").status, 200);
  actAs("1001");
  EXPECT_THAT(read("users/1001?expand=associatedUsers")["associatedUsers"], SizeIs(3));
  refuses(409, {"DELETE users/1002/accounts/2001"});  // at home there
}

TEST_F(Invitations, EveryStateAndTypeIsThereToSee) {
  std::set<std::string> states;
  for (const json& invitation : read("users/1001/invitations?type=vehicle")) {
    states.insert(invitation["status"]);
  }
  EXPECT_THAT(states, UnorderedElementsAre("PENDING", "ACCEPTED", "DECLINED", "UNKNOWN",
                                           "ACCEPTED_ACKNOWLEDGED", "DECLINED_ACKNOWLEDGED"));
  EXPECT_THAT(read("users/1001/invitations?type=leaderboard"), SizeIs(1));
}

TEST_F(Invitations, DraftsAreChecked) {
  // A member that is null is left out.
  const std::tuple<const char*, json, int> rows[] = {
      {"toUserFirstName", nullptr, 400},
      {"toUserEmail", nullptr, 400},  // nobody can be reached
      {"vehicleIds", nullptr, 400},
      {"vehicleIds", json::array({"3001"}), 400},  // ids are joined with commas
      {"vehicleIds", "3001,9", 404},
      {"vehicleIds", "3003", 403},
      {"invitationType", "vehicle", 400},
      {"fromUserId", "1002", 403},
      {"message", "hello", 400},
      {"vehicleIds", "3001,3006", 200},
  };
  for (const auto& [name, value, status] : rows) {
    json body = draft();
    body[name] = value;
    if (value.is_null()) body.erase(name);
    EXPECT_EQ(send(body).status, status) << name << ' ' << value;
  }
  EXPECT_EQ(post("invitations", draft().dump(), "application/json").status, 400);
  EXPECT_EQ(post("invitations", draft().dump(), "text/plain").status, 415);
}

class Enrolment : public SandboxTest {};

TEST_F(Enrolment, ACodeActivatesOnceAndOnlyItsOwner) {
  const auto activation = [](const std::string& id, const std::string& code) {
    return "POST activation?activationId=" + id + "&activationCode=" + code +
           "&email=nora@example.com&displayName=nora@example.com&phoneIdentifier=phone-7";
  };
  const std::string good = activation("ACT-1007", "424242");
  refuses(403, {good});  // Nora's, not Anna's
  actAs("1007");
  refuses(400, {activation("ACT-1007", "")});
  refuses(403, {activation("ACT-1007", "000000"), good + "&accountId=anna.keller"});
  refuses(404, {activation("ACT-9", "424242")});
  refuses(409, {activation("ACT-USED", "111111")});
  EXPECT_EQ(read("users/1007")["activated"], false);
  EXPECT_EQ(SandboxTest::send(good + "&accountId=nora.frei").status, 200);
  EXPECT_EQ(read("users/1007")["email"], "nora@example.com");
  EXPECT_EQ(read("users/1007/devices/phone-7")["activeForDataCollection"], true);
  refuses(409, {good});
}

TEST_F(Enrolment, TermsAreAcceptedByTheOneFormPart) {
  actAs("1007");
  EXPECT_EQ(read("users/1007/eula")["acceptedTerms"], false);
  refuses(415, {"POST users/1007/eula"});
  EXPECT_EQ(postForm("users/1007/eula", {{"acceptedTerms", "true", "", ""}}).status, 400);
  EXPECT_EQ(postForm("users/1001/eula", {{"acceptedTerms", "accept", "", ""}}).status, 403);
  EXPECT_EQ(postForm("users/1007/eula", {{"acceptedTerms", "accept", "", ""}}).status, 204);
  EXPECT_EQ(read("users/1007")["acceptedTermsDate"], parseTimestamp(fixedNow).value());
}

class Devices : public SandboxTest {};

TEST_F(Devices, OnlyOnePhoneCollectsAndTokensComeAndGo) {
  const std::string phone = "users/1001/devices/new";
  refuses(404, {"GET " + phone, "POST " + phone + "?action=deactivate"});
  EXPECT_EQ(post(phone + "?action=activateLimitOne").parsed()["activeForDataCollection"], true);
  EXPECT_EQ(read("users/1001/devices/phone-1001")["activeForDataCollection"], false);
  EXPECT_THAT(read("users/1001/devices"), SizeIs(3));

  EXPECT_EQ(post(phone + "?deviceToken=t%20%2B1&appId=1").parsed()["pushNotificationToken"],
            "t +1");
  const json without = post(phone + "?deviceToken=&appId=1").parsed();
  EXPECT_EQ(without["enablePushNotifications"], false);
  EXPECT_FALSE(without.contains("pushNotificationToken"));
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
}

TEST_F(Policy, NamedDriversAreThePolicyHoldersToCorrect) {
  const json changed =
      send("PUT namedDrivers/1201?namedDriverEmail=otto+k@example.com&namedDriverPhone=").parsed();
  EXPECT_EQ(changed["email"], "otto+k@example.com") << "a plus is a plus";
  EXPECT_FALSE(changed.contains("phone"));
  EXPECT_EQ(changed["userId"], 1201) << "a number, unlike everywhere else";
  EXPECT_EQ(read("namedDrivers")[2], changed);
}

class Refusals : public SandboxTest {};

TEST_F(Refusals, OfWhatPeopleDo) {
  const std::string invitations = "GET users/1001/invitations";
  const std::string phone = "POST users/1001/devices/phone-1001";
  const std::string driver = "PUT namedDrivers/";
  refuses(400, {invitations, invitations + "?type=VEHICLE",
                invitations + "?type=vehicle&filtered=pending",
                invitations + "?type=vehicle&filtered=", phone, phone + "?action=activate",
                phone + "?deviceToken=t", phone + "?deviceToken=t&appId=x",
                phone + "?action=deactivate&deviceToken=t&appId=1", phone + "?appId=1",
                driver + "1201?namedDriverEmail=otto@example.com",
                driver + "1201?namedDriverEmail=otto&namedDriverPhone=",
                driver + "otto?namedDriverEmail=&namedDriverPhone="});
  refuses(403, {"GET users/1002/invitations?type=vehicle", "DELETE users/1002/vehicles/",
                "GET users/1002/devices/phone-1002"});
  refuses(404, {driver + "7?namedDriverEmail=&namedDriverPhone="});
}

}  // namespace
}  // namespace orvane::sandbox::test
