// SPDX-License-Identifier: Apache-2.0
// Invitations, enrolment, devices and contracts, as they are reached from a shell.
#include "CommandLine.h"

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using Arrival = SandboxProcess::Arrival;

const std::string toNora = "--first-name Nora --last-name Frei ";

TEST(PeopleCommandsTest, InvitesToAVehicle) {
  SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  const Environment nora = settingsOf(sandbox, "nora.frei");
  const std::string send =
      "invitations send --vehicles 3006 " + toNora + "--email nora.frei@example.com";
  check({prints("invitations vehicles",
                AllOf(StartsWith("id\tstatus\tfrom\tto\tvehicle\tcreated\n"),
                      HasSubstr("9007\tpending\tDaniel Meier (1004)\tAnna Keller (1001)\t3003\t20"),
                      HasSubstr("9006\tunknown\tAnna Keller (1001)\tUrs Vogt\t3006\t"))),
         prints("invitations vehicles --filtered DECLINED,PENDING --json",
                AllOf(StartsWith("[\n  {\n    \"invitationId\": \"9007\",\n"),
                      HasSubstr("\"status\": \"DECLINED\""), Not(HasSubstr("\"ACCEPTED\"")))),
         prints(send,
                MatchesRegex(
                    "id\t9011\nstatus\tpending\nfrom\tAnna Keller .1001.\nto\tNora Frei .1007.\n"
                    "vehicle\t3006\ncreated\t20.*\nchanged\t20.*\n")),
         fails(send, 40, "(409)")},
        anna);
  check({prints("invitations vehicles --filtered PENDING",
                HasSubstr("\n9011\tpending\tAnna Keller (1001)\tNora Frei (1007)\t3006\t")),
         prints("invitations respond 9011 accept", "The reply has been sent.\n"),
         fails("invitations respond 9011 decline", 40, "(409)")},
        nora);
  sandbox.behave();
  check({prints("invitations respond 9011 accept_acknowledged --of 1007 --json", IsEmpty()),
         prints("invitations vehicles", HasSubstr("\n9011\taccepted-acknowledged\t")),
         prints("invitations remove-from-vehicle 1007 3006",
                "The guest no longer drives the vehicle.\n")},
        anna);
  EXPECT_THAT(sandbox.arrivals(),
              testing::Contains(Arrival{"POST users/1007/invitations/9011", 200}));
}

TEST(PeopleCommandsTest, TakesBackWhatInvitationsMade) {
  SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  // Nothing tells the backend which invitation: all that wait are taken back.
  check({prints("invitations cancel", "The invitations have been taken back.\n"),
         prints("invitations vehicles --filtered PENDING",
                AllOf(HasSubstr("9007\t"), Not(HasSubstr("9001\t"))))},
        anna);
  EXPECT_THAT(sandbox.arrivals(), testing::Contains(Arrival{"DELETE users/1001/vehicles/", 204}));

  check({fails("invitations cancel --of 1004", 43, "does not allow"),
         prints("invitations remove-from-vehicle 1004 3006",
                "The guest no longer drives the vehicle.\n"),
         fails("invitations remove-from-vehicle 1004 3006", 44, "does not know")},
        anna);
  check({prints("invitations remove-from-account 1106 2002 --json", IsEmpty()),
         fails("invitations remove-from-account 1106 2002", 44, "does not know")},
        settingsOf(sandbox, "daniel.meier"));
}

TEST(PeopleCommandsTest, InvitesToAnAccount) {
  const SandboxProcess sandbox;
  check({prints("invitations send-account " + toNora +
                    "--phone '+41 61 000 00 00' --accounts 2001 --format compact",
                AllOf(StartsWith("[{\"invitationId\":\"9011\","),
                      HasSubstr("\"account\":{\"accountId\":\"2001\""))),
         prints("invitations accounts",
                has("9011\tpending\tAnna Keller (1001)\tNora Frei\t2001\t",
                    "9008\tpending\tSam Taylor (1006)\tAnna Keller (1001)\t2003\t"))},
        settingsOf(sandbox));
}

TEST(PeopleCommandsTest, RefusesInvitationsThatAreNone) {
  SandboxProcess sandbox;
  check(
      {
          fails("invitations respond 9007 perhaps", 64, "accept, decline, accept_"),
          fails("invitations respond 9007", 64, "REPLY is required"),
          fails("invitations send --first-name Nora", 64, "--last-name"),
          // An empty identifier would address all that there is.
          fails("invitations respond '' accept", 64, "INVITATION: '' is not"),
          fails("invitations remove-from-vehicle 1004 ''", 64, "VEHICLE: '' is not"),
          fails("invitations remove-from-vehicle '' 3006", 64, "USER: '' is not"),
          fails("invitations remove-from-account 1106 ''", 64, "ACCOUNT: '' is not"),
          fails("invitations cancel --of ''", 64, "--of: '' is not"),
          fails("invitations cancel 9001", 64, "9001"),
          fails("invitations send " + toNora + "--vehicles ''", 64, "--vehicles: '' is not"),
      },
      settingsOf(sandbox));
  EXPECT_THAT(sandbox.arrivals(), IsEmpty());
  check(
      {
          fails("invitations send " + toNora + "--vehicles 3003 --email a@example.com", 43,
                "(403)"),
          // Whoever sends one without vehicles has a list coming.
          fails("invitations send " + toNora + "--email a@example.com", 21),
          fails("invitations send " + toNora + "--vehicles 3001 --email \xC3(", 20, "formed"),
          fails("invitations vehicles --filtered LATE", 40, "(400)"),
          fails("invitations vehicles --filtered \xC3(", 20, "formed"),
          fails("invitations respond 1 accept", 44, "(404)"),
      },
      settingsOf(sandbox));
}

TEST(PeopleCommandsTest, JoinsTheProgramme) {
  SandboxProcess sandbox;
  const std::string device = "6e0a4c9e-52a3-4a5c-8f5e-1f2d3c4b5a69";
  writeFile(sandbox.folder() / "device", device);
  const Environment nora =
      with(settingsOf(sandbox, "nora.frei"), {{"ORVANE_DEVICE_FILE", sandbox.folder() / "device"}});
  const std::string id = "id\t" + device + "\n";
  check(
      {
          fails("device show", 44, "does not know"),
          fails("activate ACT-1007", 64, "CODE is required"),
          fails("activate ACT-1007 111111 nora@example.com", 43, "(403)"),
          fails("activate ACT-1007 424242 nora", 40, "(400)"),
          fails("activate ACT-1007 424242 \xC3(", 20, "formed"),
          prints("activate ACT-1007 424242 nora@example.com", "The enrolment is activated.\n"),
          fails("activate ACT-1007 424242 nora@example.com", 40, "(409)"),
          prints("terms accept", "The terms are accepted.\n"),
          // The address serves as the name, too.
          prints("user show", has("display name\tnora@example.com\n", "e-mail\tnora@example.com\n",
                                  "activated\tyes\n", "terms accepted\tyes\n")),
          prints("device show",
                 AllOf(StartsWith(id), HasSubstr("collects data\tyes\n"),
                       HasSubstr("push notifications\tno\n"), Not(HasSubstr("push token\t")))),
          prints("device deactivate", has(id, "collects data\tno\n")),
          prints("push set 'a+b/c d'", has(id, "push token\ta+b/c d\n", "push notifications\tyes\n",
                                           "collects data\tno\n")),
          prints("device activate --json", has("\n  \"activeForDataCollection\": true\n",
                                               "\n  \"pushNotificationToken\": \"a+b/c d\",\n")),
          prints("push set ''", HasSubstr("push notifications\tno\n")),
      },
      nora);
}

TEST(PeopleCommandsTest, ShowsContracts) {
  const SandboxProcess sandbox;
  check(
      {
          prints("subscriptions",
                 AllOf(StartsWith("enrolment\ttype\tstart\tend\tdays\ttrial days\ttrial end\n"),
                       HasSubstr("70001\tRegular\t20"), HasSubstr("\t365\t90\t20"),
                       HasSubstr("70005\taFNOL\t20"))),
          prints("subscriptions --json",
                 AllOf(StartsWith("[\n  {\n    \"startTimestamp\": "),
                       HasSubstr("\"telematicSubscriptionType\": \"MileagePlus\""))),
          prints("named-drivers list",
                 AllOf(StartsWith(
                           "id\tfirst name\tlast name\te-mail\tphone\tactivated\tactivated on\n"),
                       HasSubstr("\n1201\tOtto\tKeller\t\t\tno\t\n"))),
          prints("named-drivers update 1201 --email otto@example.com --phone '+41 61 555 12 01'",
                 "id\t1201\nprofile id\tP-1201\nfirst name\tOtto\nlast name\tKeller\n"
                 "e-mail\totto@example.com\nphone\t+41 61 555 12 01\nactivated\tno\n"),
          // Both are written every time.
          prints("named-drivers update 1201 --email o@example.com --phone '' --json",
                 AllOf(HasSubstr("\"email\": \"o@example.com\""), Not(HasSubstr("\"phone\"")))),
          fails("named-drivers update 1201 --email o@example.com", 64, "--phone is required"),
          fails("named-drivers update Otto --email '' --phone ''", 64,
                "'Otto' is not a whole number"),
          fails("named-drivers update 7 --email '' --phone ''", 44, "(404)"),
      },
      settingsOf(sandbox));
  check({prints("subscriptions --json", "[]\n"),
         prints("named-drivers list --format compact", "[]\n")},
        settingsOf(sandbox, "nora.frei"));
}

}  // namespace
}  // namespace orvane::test
