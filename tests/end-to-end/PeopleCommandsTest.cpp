// SPDX-License-Identifier: Apache-2.0
// Invitations, enrolment, devices and contracts, as they are reached from a shell.
#include "CommandLine.h"

#include <utility>

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using Arrival = SandboxProcess::Arrival;

// The settings of another one of the sandbox's people.
Environment as(const char* user, const SandboxProcess& sandbox) {
  return with(settingsOf(sandbox), {{"ORVANE_USER", user}});
}

CommandRow failing(Words arguments, int code, const std::string& said) {
  return {std::move(arguments), code, IsEmpty(), AllOf(IsOneLine(), HasSubstr(said))};
}

TEST(PeopleCommandsTest, InvitesToAVehicle) {
  SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  const Environment nora = as("nora.frei", sandbox);
  check({{{"invitations", "vehicles"},
          0,
          AllOf(StartsWith("id\tstatus\tfrom\tto\tvehicle\tcreated\n"),
                HasSubstr("9007\tpending\tDaniel Meier (1004)\tAnna Keller (1001)\t3003\t20"),
                HasSubstr("9006\tunknown\tAnna Keller (1001)\tUrs Vogt\t3006\t"))},
         {{"invitations", "vehicles", "--filtered", "DECLINED,PENDING", "--json"},
          0,
          AllOf(StartsWith("[\n  {\n    \"invitationId\": \"9007\",\n"),
                HasSubstr("\"status\": \"DECLINED\""), Not(HasSubstr("\"ACCEPTED\"")))},
         {{"invitations", "send", "--vehicles", "3006", "--first-name", "Nora", "--last-name",
           "Frei", "--email", "nora.frei@example.com"},
          0,
          MatchesRegex("id\t9011\nstatus\tpending\nfrom\tAnna Keller .1001.\nto\tNora Frei .1007.\n"
                       "vehicle\t3006\ncreated\t20.*\nchanged\t20.*\n")},
         failing({"invitations", "send", "--vehicles", "3006", "--first-name", "Nora",
                  "--last-name", "Frei", "--email", "nora.frei@example.com"},
                 40, "(409)")},
        anna);
  check({{{"invitations", "vehicles", "--filtered", "PENDING"},
          0,
          HasSubstr("\n9011\tpending\tAnna Keller (1001)\tNora Frei (1007)\t3006\t")},
         {{"invitations", "respond", "9011", "accept"}, 0, "The reply has been sent.\n"},
         failing({"invitations", "respond", "9011", "decline"}, 40, "(409)")},
        nora);
  sandbox.behave();
  check({{{"invitations", "respond", "9011", "accept_acknowledged", "--to", "1007", "--json"}, 0},
         {{"invitations", "vehicles"}, 0, HasSubstr("\n9011\taccepted-acknowledged\t")},
         {{"invitations", "remove-from-vehicle", "1007", "3006"},
          0,
          "The guest no longer drives the vehicle.\n"}},
        anna);
  EXPECT_THAT(sandbox.arrivals(),
              testing::Contains(Arrival{"POST users/1007/invitations/9011", 200}));
}

TEST(PeopleCommandsTest, TakesBackWhatInvitationsMade) {
  SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  // Nothing tells the backend which invitation: all that wait are taken back.
  check({{{"invitations", "cancel"}, 0, "The invitations have been taken back.\n"},
         {{"invitations", "vehicles", "--filtered", "PENDING"},
          0,
          AllOf(HasSubstr("9007\t"), Not(HasSubstr("9001\t")))}},
        anna);
  EXPECT_THAT(sandbox.arrivals(), testing::Contains(Arrival{"DELETE users/1001/vehicles/", 204}));

  check({failing({"invitations", "cancel", "--from", "1004"}, 43, "does not allow"),
         {{"invitations", "remove-from-vehicle", "1004", "3006"},
          0,
          "The guest no longer drives the vehicle.\n"},
         failing({"invitations", "remove-from-vehicle", "1004", "3006"}, 44, "does not know")},
        anna);
  check({{{"invitations", "remove-from-account", "1106", "2002", "--json"}, 0},
         failing({"invitations", "remove-from-account", "1106", "2002"}, 44, "does not know")},
        as("daniel.meier", sandbox));
}

TEST(PeopleCommandsTest, InvitesToAnAccount) {
  const SandboxProcess sandbox;
  check({{{"invitations", "send-account", "--first-name", "Nora", "--last-name", "Frei", "--phone",
           "+41 61 000 00 00", "--accounts", "2001", "--format", "compact"},
          0,
          AllOf(StartsWith("[{\"invitationId\":\"9011\","),
                HasSubstr("\"account\":{\"accountId\":\"2001\""))},
         {{"invitations", "accounts"},
          0,
          AllOf(HasSubstr("9011\tpending\tAnna Keller (1001)\tNora Frei\t2001\t"),
                HasSubstr("9008\tpending\tSam Taylor (1006)\tAnna Keller (1001)\t2003\t"))}},
        settingsOf(sandbox));
}

TEST(PeopleCommandsTest, RefusesInvitationsThatAreNone) {
  SandboxProcess sandbox;
  const auto sending = [](Words more) {
    Words words{"invitations", "send", "--first-name", "Nora", "--last-name", "Frei"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  };
  sandbox.behave();
  check(
      {
          failing({"invitations", "respond", "9007", "perhaps"}, 64, "accept, decline, accept_"),
          failing({"invitations", "respond", "9007"}, 64, "REPLY is required"),
          failing({"invitations", "send", "--first-name", "Nora"}, 64, "--last-name"),
          // An empty identifier would address all that there is.
          failing({"invitations", "respond", "", "accept"}, 64, "INVITATION: '' is not"),
          failing({"invitations", "remove-from-vehicle", "1004", ""}, 64, "VEHICLE: '' is not"),
          failing({"invitations", "remove-from-vehicle", "", "3006"}, 64, "USER: '' is not"),
          failing({"invitations", "remove-from-account", "1106", ""}, 64, "ACCOUNT: '' is not"),
          failing({"invitations", "cancel", "--from", ""}, 64, "--from: '' is not"),
          failing({"invitations", "cancel", "9001"}, 64, "9001"),
          failing(sending({"--vehicles", ""}), 64, "--vehicles: '' is not"),
      },
      settingsOf(sandbox));
  EXPECT_THAT(sandbox.arrivals(), IsEmpty());
  check(
      {
          failing(sending({"--vehicles", "3003", "--email", "a@example.com"}), 43, "(403)"),
          // Whoever sends one without vehicles has a list coming.
          failing(sending({"--email", "a@example.com"}), 21, ""),
          failing(sending({"--vehicles", "3001", "--email", "\xC3("}), 20, "formed"),
          failing({"invitations", "vehicles", "--filtered", "LATE"}, 40, "(400)"),
          failing({"invitations", "vehicles", "--filtered", "\xC3("}, 20, "formed"),
          failing({"invitations", "respond", "1", "accept"}, 44, "(404)"),
      },
      settingsOf(sandbox));
}

TEST(PeopleCommandsTest, JoinsTheProgramme) {
  SandboxProcess sandbox;
  const std::string device =
      sandbox.folder().write("device", "6e0a4c9e-52a3-4a5c-8f5e-1f2d3c4b5a69");
  const Environment nora = with(as("nora.frei", sandbox), {{"ORVANE_DEVICE_FILE", device}});
  const std::string id = "id\t6e0a4c9e-52a3-4a5c-8f5e-1f2d3c4b5a69\n";
  check(
      {
          failing({"device", "show"}, 44, "does not know"),
          failing({"activate", "ACT-1007"}, 64, "CODE is required"),
          failing({"activate", "ACT-1007", "111111", "nora@example.com"}, 43, "(403)"),
          failing({"activate", "ACT-1007", "424242", "nora"}, 40, "(400)"),
          failing({"activate", "ACT-1007", "424242", "\xC3("}, 20, "formed"),
          {{"activate", "ACT-1007", "424242", "nora@example.com"},
           0,
           "The enrolment is activated.\n"},
          failing({"activate", "ACT-1007", "424242", "nora@example.com"}, 40, "(409)"),
          {{"terms", "accept"}, 0, "The terms are accepted.\n"},
          // The address serves as the name, too.
          {{"user", "show"},
           0,
           AllOf(HasSubstr("display name\tnora@example.com\n"),
                 HasSubstr("e-mail\tnora@example.com\n"), HasSubstr("activated\tyes\n"),
                 HasSubstr("terms accepted\tyes\n"))},
          {{"device", "show"},
           0,
           AllOf(StartsWith(id), HasSubstr("collects data\tyes\n"),
                 HasSubstr("push notifications\tno\n"), Not(HasSubstr("push token\t")))},
          {{"device", "deactivate"}, 0, AllOf(StartsWith(id), HasSubstr("collects data\tno\n"))},
          {{"push", "set", "a+b/c d"},
           0,
           AllOf(StartsWith(id), HasSubstr("push token\ta+b/c d\n"),
                 HasSubstr("push notifications\tyes\n"), HasSubstr("collects data\tno\n"))},
          {{"device", "activate", "--json"},
           0,
           AllOf(HasSubstr("\n  \"activeForDataCollection\": true\n"),
                 HasSubstr("\n  \"pushNotificationToken\": \"a+b/c d\",\n"))},
          {{"push", "set", ""}, 0, HasSubstr("push notifications\tno\n")},
      },
      nora);
}

TEST(PeopleCommandsTest, ShowsContracts) {
  const SandboxProcess sandbox;
  check(
      {
          {{"subscriptions"},
           0,
           AllOf(StartsWith("enrolment\ttype\tstart\tend\tdays\ttrial days\ttrial end\n"),
                 HasSubstr("70001\tRegular\t20"), HasSubstr("\t365\t90\t20"),
                 HasSubstr("70005\taFNOL\t20"))},
          {{"subscriptions", "--json"},
           0,
           AllOf(StartsWith("[\n  {\n    \"startTimestamp\": "),
                 HasSubstr("\"telematicSubscriptionType\": \"MileagePlus\""))},
          {{"named-drivers", "list"},
           0,
           AllOf(StartsWith("id\tfirst name\tlast name\te-mail\tphone\tactivated\tactivated on\n"),
                 HasSubstr("\n1201\tOtto\tKeller\t\t\tno\t\n"))},
          {{"named-drivers", "update", "1201", "--email", "otto@example.com", "--phone",
            "+41 61 555 12 01"},
           0,
           "id\t1201\nprofile id\tP-1201\nfirst name\tOtto\nlast name\tKeller\n"
           "e-mail\totto@example.com\nphone\t+41 61 555 12 01\nactivated\tno\n"},
          // Both are written every time.
          {{"named-drivers", "update", "1201", "--email", "o@example.com", "--phone", "", "--json"},
           0,
           AllOf(HasSubstr("\"email\": \"o@example.com\""), Not(HasSubstr("\"phone\"")))},
          failing({"named-drivers", "update", "1201", "--email", "o@example.com"}, 64,
                  "--phone is required"),
          failing({"named-drivers", "update", "Otto", "--email", "", "--phone", ""}, 64,
                  "'Otto' is not a whole number"),
          failing({"named-drivers", "update", "7", "--email", "", "--phone", ""}, 44, "(404)"),
      },
      settingsOf(sandbox));
  check({{{"subscriptions", "--json"}, 0, "[]\n"},
         {{"named-drivers", "list", "--format", "compact"}, 0, "[]\n"}},
        as("nora.frei", sandbox));
}

}  // namespace
}  // namespace orvane::test
