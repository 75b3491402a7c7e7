// SPDX-License-Identifier: Apache-2.0
// The command-line client as a process: arguments and environment in, streams and exit code out.
#include "CommandLine.h"

#include <csignal>
#include <filesystem>
#include <limits>
#include <tuple>
#include <utility>

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST(CommandLineTest, WorksOnTheUser) {
  const SandboxProcess sandbox;
  check(
      {
          prints("user show", AllOf(has("id\t1001\n", "address: city\t", "gender\tfemale\n"),
                                    Not(HasSubstr("\x1b")))),
          prints("user show 1001 --expand role,associated-account --expand ASSOCIATED_USERS",
                 has("account: identifier\t", "role: names\trole-owner", "id\tdisplay name\t")),
          prints("--json user show --expand role",
                 has("{\n  \"userId\": \"1001\",\n",
                     "\n  \"userRole\": {\n    \"roleNames\": [\n      \"ROLE_OWNER\"")),
          prints("user show --format compact",
                 AllOf(StartsWith("{\"userId\":\"1001\","), Not(HasSubstr("\n ")))),
          prints("user show --format=table --token " + sandbox.developmentToken(),
                 AllOf(has("id                  1001\n", "\naddress\n"), Not(HasSubstr("\x1b")))),
          prints("user update --display-name Zo\xC3\xAB\x1b[31m\n --gender diverse --date-of-birth "
                 "1990-05-17 --driver-type weekend-driver --share-user-profile no --phone ''",
                 has("display name\tZo\xC3\xAB\\x1b[31m\\n\n", "gender\tdiverse\n",
                     "date of birth\t1990-05-17\n", "driver type\tweekend-driver\n",
                     "profile shared\tno\n", "phone\t\n")),
          prints("user address --city Bern --country-code CH", HasSubstr("address: city\tBern\n")),
          prints("user show", has("date of birth\t1990-05-17\n", "address: city\tBern\n")),
      },
      settingsOf(sandbox));
}

TEST(CommandLineTest, EveryErrorHasItsExitCodeAndOneLine) {
  SandboxProcess sandbox;
  const TemporaryFolder folder;
  writeFile(folder / "key", "not hexadecimal");
  check(
      {
          fails("", 64, "A command is missing"),
          fails("user", 64, "A command is missing (see orvane user --help)"),
          fails("usr", 64, "There is no command 'usr'; did you mean user?"),
          fails("user shw", 64, "There is no command 'shw'; did you mean show?"),
          fails("help user shw", 64, "There is no command 'shw'; did you mean show?"),
          fails("list trips", 64, "'list'; did you mean orvane trips list?"),
          fails("--fromat table user show", 64, "'--fromat'; did you mean --format?"),
          fails("trips list --limit 1 --limit 2", 64, "orvane: --limit is given more than once"),
          fails("user show --colour", 64, "There is no option '--colour' (see"),
          fails("user show --expnad role", 64, "did you mean --expand?"),
          fails("user show 1 2", 64, "'2' is one argument too many"),
          fails("user show --verbose=all", 64,
                "orvane: --verbose: 'all' is not bodies, or nothing ("),
          fails("user show --profile nobody", 78, "there is no profile \"nobody\""),
          fails("user show --sandbox=/nowhere", 78,
                "no sandbox runs on /nowhere (start one: orvane-sandbox --data /nowhere, or name"),
          fails("user show --expand role,everything", 64, "'everything' is not one of"),
          fails("user update", 64, "At least one option"),
          fails("user update --date-of-birth 2023-02-29", 64, "a day, as YYYY-MM-DD"),
          fails("user update --share-user-profile maybe", 64, "choices: yes, no"),
          fails("user update --phone", 64, "--phone needs a value"),
          fails("user show --timeout soon", 64, "not a number"),
          fails("user show --timeout 0", 64, "is not from 0.001"),
          fails("user show ''", 64, "an identifier"),
          fails("user show --base-url http://example.org", 78, "http is for this machine only"),
          fails("user show --base-url 'not a URL'", 78, "--base-url"),
          fails("user show --ca-file /nowhere.pem", 78, "/nowhere.pem"),
          fails("user show --signing-key-file /nowhere.key", 78, "/nowhere.key"),
          fails("user show --signing-key-file " + folder / "key", 78, "hexadecimal"),
          fails("user show --config /nowhere", 78, "/nowhere: there is no such file"),
          fails("user show --config " + folder.path().string(), 78, folder.path()),
          fails("user show --time-zone Europe/Atlantis", 64, "Europe/Atlantis"),
          fails("user show --base-url https://orvane.invalid", 10, "looked up"),
          fails("user show --base-url https://127.0.0.1:1", 11, "reached"),
          fails("user show --ca-file /etc/ssl/certs/ca-certificates.crt", 12),
          fails("user show --token wrong", 41, "does not accept the token (401)"),
          fails("user show 1004", 43, "does not allow"),
          fails("user show nobody --expand role", 44, "there is no such user [GET https://"),
          fails("user show nobody --expand role", 44, "/users/nobody?expand=…]"),
          fails("user show --base-url " + sandbox.baseURL() + "/kavra/api/sdk", 44,
                "] (orvane doctor looks into it)"),
          fails("user update --email nonsense", 40, "(400)"),
          fails("user update --last-name \xC3\x28", 20, "UTF-8"),
          fails("user show \xC3\x28", 20, "formed"),
      },
      settingsOf(sandbox));

  for (const char* timeout : {"soon", "0", "nan"}) {
    check({fails("user show", 78, "(from ORVANE_TIMEOUT), which is")},
          with(settingsOf(sandbox), {{"ORVANE_TIMEOUT", timeout}}));
  }

  const std::tuple<const char*, nlohmann::json, int> faults[] = {
      {"status", 500, 50},      {"status", 302, 40},     {"cutAfterBytes", 20, 14},
      {"body", "empty", 22},    {"body", "garbage", 21}, {"body", "deep", 21},
      {"body", "gzipBomb", 15},
  };
  for (const auto& [fault, value, exitCode] : faults) {
    SCOPED_TRACE(fault + (" " + value.dump()));
    sandbox.behave();
    sandbox.misbehave({{"path", "/users/"}, {fault, value}});
    check({fails("user show", exitCode)}, settingsOf(sandbox));
  }
  sandbox.behave();
  sandbox.misbehave({{"delayMs", 60000}});
  check({fails("user show --timeout 0.5", 13)}, settingsOf(sandbox));
}

TEST(CommandLineTest, SettingsHaveAnOrderAndNeverShowSecrets) {
  const SandboxProcess sandbox;
  const TemporaryFolder folder;
  const std::string secret = "s3cr3t-t0k3n";
  const Environment settings = settingsOf(sandbox);
  const std::string file = folder / "config";
  writeFile(file, "# comments and blank lines are skipped\n\nbase-url = " + sandbox.baseURL() +
                      "\nca-file = \"" + sandbox.caFile() + "\"\nuser = someone.else\ntoken = " +
                      sandbox.developmentToken() + "\ntimeout = 7\n");

  Environment environment = without(without(settings, "ORVANE_BASE_URL"), "ORVANE_CA_FILE");
  check(
      {prints("--config " + file + " config list",
              AllOf(has("base-url\t" + sandbox.baseURL() + "\t" + file + "\n",
                        "user\tanna.keller\tORVANE_USER\n", "timeout\t7\t" + file + "\n",
                        "clock-offset\t\tnot set\n", "token\t…\t" + file + "\n"),
                    Not(HasSubstr(sandbox.developmentToken())))),
       prints("config list --config " + file + " --timeout 3 --token " + secret,
              AllOf(has("timeout\t3\t--timeout\n", "token\t…\t--token\n"), Not(HasSubstr(secret)))),
       prints("config path --config " + file, file + "\n")},
      environment);

  // The file alone is enough, where it is looked for by itself, too.
  std::filesystem::create_directories(folder / "home/orvane");
  std::filesystem::create_symlink(file, folder / "home/orvane/config");
  check({prints("user show", has("id\t1001\n"))}, {{"XDG_CONFIG_HOME", folder / "home"}});

  // Of a token and a key, the one given closer to the command counts.
  const Environment both = with(settings, {{"ORVANE_TOKEN", secret}});
  check({{"user show", 41, IsEmpty(), Not(HasSubstr(secret))},
         prints("user show --signing-key-file " + sandbox.signingKeyFile(), HasSubstr("id\t")),
         prints("user show --user marc.keller", HasSubstr("id\t1002\n"))},
        both);
  // Without a key nobody else can be named.
  const std::string noEffect = "--user has no effect with a token (ORVANE_TOKEN)";
  check(
      {fails("user show --user marc.keller", 64, noEffect),
       {"doctor --user marc.keller", 64, HasSubstr("failed\tsettings\t" + noEffect), IsOneLine()}},
      without(both, "ORVANE_SIGNING_KEY_FILE"));

  writeFile(file, " user=\'ann # 1\'  # who\r\napi-key = # none yet\nlocale = de_DE # German\n");
  check({prints("config list --config " + file,
                has("user\tann # 1\t", "api-key\t\t", "locale\tde_DE\t"))},
        without(without(settings, "ORVANE_USER"), "ORVANE_API_KEY"));

  constexpr std::pair<const char*, const char*> malformed[] = {
      {"timeout = 5\nbase-uri = https://example.org\n", "line 2: there is no setting \"base-uri\""},
      {"[work\nuser = x\n", "line 1: a profile's name in brackets"},
      {"zz\n\nuser = Ann Keller\n", "line 3: a value with blanks"},
      {"user = x\n\nbase-url https://example.org\n", "line 3: a name, \"=\" and a value"},
      {"zz\n", "line 1: a name"},
      {"= x\n", "line 1: a name"},
      {"uzer = x\nzz\n", "/config: line 1: there is no setting \"uzer\"; line 2: a name"},
      {"user = Ann Keller\n", "line 1: a value with blanks"},
      {"user = \"Ann\n", "line 1: a quotation mark is not closed"},
      {"user = \"Ann\" Keller\n", "line 1: a value ends"},
      {"user = x\nuser = y\n", "line 2: \"user\" is there already"},
  };
  for (const auto& [text, said] : malformed) {
    writeFile(file, text);
    check({{"config list --config " + file, 78, HasSubstr("base-url\t" + sandbox.baseURL()),
            AllOf(IsOneLine(), HasSubstr(said))},
           fails("user show --config " + file, 78, said),
           prints("content keys --config " + file, HasSubstr("privacyPolicy"))},
          settings);
  }
}

TEST(CommandLineTest, ShowsTheExchangeWithoutSecrets) {
  const SandboxProcess sandbox;
  const Ending ending =
      orvane("user show --verbose --clock-offset -300 --expand role", settingsOf(sandbox));
  EXPECT_EQ(ending.exitCode, 0);
  EXPECT_THAT(ending.output, StartsWith("id\t1001\n"));
  EXPECT_THAT(ending.errors, testing::ContainsRegex(
                                 "GET https://127.0.0.1:[0-9]+/kavra/api/sdk/identity(.|\n)*< 401"
                                 "(.|\n)*identity(.|\n)*< 200(.|\n)*users/1001[^\n]*(.|\n)*< 200"));
  EXPECT_THAT(ending.errors, has("expand=…", "Authorization: …"));
  // A token's three parts begin with the same letters every time.
  for (const std::string& secret :
       {std::string("eyJ"), std::string("role\n"), sandbox.signingKey()}) {
    EXPECT_THAT(ending.errors, Not(HasSubstr(secret)));
  }
}

TEST(CommandLineTest, AnInterruptCancelsTheCall) {
  SandboxProcess sandbox;
  sandbox.misbehave({{"delayMs", 60000}, {"path", "/users/"}});
  for (const int signal : {SIGINT, SIGTERM}) {
    Process process(ORVANE_CLI_EXECUTABLE, {"user", "show", "--verbose"}, settingsOf(sandbox),
                    Process::Streams::captured);
    // The lookup is answered; the call itself hangs.
    ASSERT_TRUE(process.waitForError("/identity"));
    process.send(signal);
    const Ending ending = process.wait();
    EXPECT_EQ(ending.exitCode, 130);
    EXPECT_EQ(ending.signal, 0);
    EXPECT_THAT(ending.output, IsEmpty());
    EXPECT_THAT(ending.errors, HasSubstr("orvane: cancelled\n"));
  }
}

TEST(CommandLineTest, AnInterruptEndsWhatWaitsForAReader) {
  const SandboxProcess sandbox({"--weeks", "4"});
  const TemporaryFolder folder;
  // A pipe that is full, and that nobody reads.
  const std::string script = "cd '" + folder.path().string() + "' && mkfifo pipe && exec \"" +
                             ORVANE_CLI_EXECUTABLE +
                             "\" trips list --all --expand points --raw --verbose 3<>pipe >pipe";
  Process process("/bin/sh", {"-c", script}, with(settingsOf(sandbox), {{"PATH", "/usr/bin:/bin"}}),
                  Process::Streams::captured);
  ASSERT_TRUE(process.waitForError("/trips?"));
  process.send(SIGINT);
  const Ending ending = process.wait();
  EXPECT_EQ(ending.exitCode, 130);
  EXPECT_EQ(ending.signal, 0);
  EXPECT_THAT(ending.errors, HasSubstr("orvane: cancelled\n"));
}

TEST(CommandLineTest, HelpsWithoutABackend) {
  check(
      {prints("--version", StartsWith("orvane ")),
       prints("--help", has("ORVANE_BASE_URL", "  user ", "\n  64   ")),
       prints("user show --version", StartsWith("orvane ")),
       prints("user update --help",
              has("--driver-type CHOICE ", "weekend-driver,", "\nExamples:\n  orvane user")),
       prints("help user update", HasSubstr("--driver-type CHOICE ")),
       prints("help --man", has(".SH NAME\n", ".SS \"orvane user update", ".B \\-\\-base\\-url"))},
      {});
}

// What bash offers for the last word of a command line.
std::string completionsOf(const std::string& line, const Environment& environment) {
  const std::string script = std::string("orvane() { \"") + ORVANE_CLI_EXECUTABLE +
                             "\" \"$@\"; }; source <(orvane completion bash); COMP_LINE='" + line +
                             "'; COMP_POINT=${#COMP_LINE}; COMP_WORDS=(orvane); compopt() { :; }; "
                             "_orvane; echo \"${COMPREPLY[*]}\"";
  return run("/bin/bash", {"-c", script}, environment).output;
}

TEST(CommandLineTest, CompletesInBash) {
  SandboxProcess sandbox;
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder / "some/folder");
  writeFile(folder / "config", "[staging]\ntimeout = 5\n");
  const Environment environment = with(settingsOf(sandbox), {{"ORVANE_CONFIG", folder / "config"}});
  const std::pair<std::string, std::string> rows[] = {
      {"orvane us", "user\n"},
      {"orvane user ", "show update address\n"},
      {"orvane --timeout 5 user sh", "show\n"},
      {"orvane user show --exp", "--expand\n"},
      {"orvane user show --expand r", "role\n"},
      {"orvane user show --expand role,assoc", "role,associatedUsers role,associatedAccount\n"},
      {"orvane user show --expand=role,assoc", "role,associatedUsers role,associatedAccount\n"},
      {"orvane user update --driver-type com", "commuter\n"},
      {"orvane completion --format t", "table tabs\n"},
      {"orvane scores aggregate last-3", "last-30-days\n"},
      {"orvane --ca-file /etc/passw", "/etc/passwd"},
      {"orvane --documents-dir " + folder / "some/f", folder / "some/folder\n"},
      {"orvane help user sh", "show\n"},
      {"orvane config get time", "timeout time-zone\n"},
      {"orvane --profile st", "staging\n"},
      {"orvane vehicles show 300", "3001 3006\n"},
      {"orvane trips list --of 1", "1001 1002 1003\n"},
  };
  for (const auto& [line, offered] : rows) {
    EXPECT_THAT(completionsOf(line, environment), HasSubstr(offered)) << line;
  }
  EXPECT_EQ(completionsOf("orvane completion w", environment), "\n");
  EXPECT_EQ(completionsOf("orvane user show --expand ROLE,r", environment), "\n");
  // An id is nobody's external reference.
  EXPECT_EQ(completionsOf("orvane user show --user 1", environment), "\n");
  // What was asked a moment ago is not asked again; what fails is silent.
  sandbox.behave();
  EXPECT_EQ(completionsOf("orvane vehicles show 3", environment), "3001 3006\n");
  EXPECT_THAT(sandbox.arrivals(), IsEmpty());
  sandbox.misbehave({{"status", 500}});
  EXPECT_EQ(completionsOf("orvane trips show ", environment), "\n");
}

TEST(CommandLineTest, TalksToTheSandboxOnAFolder) {
  const SandboxProcess sandbox;
  const TemporaryFolder folder;
  std::filesystem::copy(sandbox.signingKeyFile(), folder / "signing.key");
  writeFile(folder / "ready.json", readyFileOf(sandbox, sandbox.processID()));
  const std::string option = "--sandbox=" + folder.path().string();
  const Environment elsewhere{{"ORVANE_BASE_URL", "https://orvane.invalid"},
                              {"ORVANE_TOKEN", "another"},
                              {"HOME", folder.path().string()}};
  check({prints("user show " + option, HasSubstr("id\t1001\n")),
         prints(option + " user show --user marc.keller", HasSubstr("id\t1002\n")),
         prints("config list " + option,
                has("token\t…\tthe sandbox on ", "api-key\tsandbox-api-key")),
         fails("user show --token wrong " + option, 41)},
        elsewhere);
  // One that was killed has left its file behind.
  writeFile(folder / "ready.json", readyFileOf(sandbox, std::numeric_limits<pid_t>::max()));
  check({fails("user show " + option, 78, "no sandbox runs on")}, elsewhere);
}

TEST(CommandLineTest, KeepsSettingsInProfiles) {
  const SandboxProcess sandbox;
  const TemporaryFolder folder;
  const std::string file = folder / "new/config";
  const Environment nothing{{"ORVANE_CONFIG", file}, {"HOME", folder.path().string()}};
  // A file that is named and not there is no obstacle to making it.
  check({prints("config set timeout 7", IsEmpty()),
         prints("config set base-url " + sandbox.baseURL() + " --profile staging", IsEmpty()),
         prints("config set ca-file " + sandbox.caFile() + " --profile staging", IsEmpty()),
         prints("config set token " + sandbox.developmentToken() + " --profile staging", IsEmpty()),
         prints("config set api-key 'a # b' --profile staging", IsEmpty()),
         fails("config set timeout abc", 64, "which is not a number"),
         fails("config set base-url 127.0.0.1:1", 64, "is no URL with a host"),
         fails("config get locale", 78, "locale is not set"),
         fails("config set base-uri x", 64, "did you mean base-url?"),
         prints("config get timeout", "7\n"),
         prints("config get api-key --profile staging", "a # b\n"),
         prints("user show --profile staging", HasSubstr("id\t1001\n")),
         fails("user show", 78, "--base-url is not set")},
        nothing);
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  // The command line's profile comes before the environment, the environment's after it.
  const Environment other = with(nothing, {{"ORVANE_BASE_URL", "https://other.invalid"}});
  check({prints("config get base-url --profile staging", sandbox.baseURL() + "\n"),
         prints("config get base-url", "https://other.invalid\n")},
        with(other, {{"ORVANE_PROFILE", "staging"}}));
  check({prints("config set profile staging", IsEmpty()), prints("config get profile", "staging\n"),
         prints("user show", HasSubstr("id\t1001\n")), prints("config unset token", IsEmpty()),
         fails("user show", 78, "there is no token")},
        nothing);

  writeFile(file,
            "\xEF\xBB\xBF# kept\ntimeout=7\n\n[staging]\nuser = x # why\n\n[other]\nuser = y\n");
  check({prints("config set timeout 8", IsEmpty()),
         prints("config set locale de_DE --profile staging", IsEmpty()),
         prints("config get timeout", "8\n")},
        nothing);
  EXPECT_EQ(
      contentsOf(file),
      "# kept\ntimeout = 8\n\n[staging]\nuser = x # why\nlocale = de_DE\n\n[other]\nuser = y\n");
}

TEST(CommandLineTest, PrintsWhatTheBackendSent) {
  SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  const Ending raw = orvane("trips list --limit 20 --expand scores --raw", anna);
  const auto sent = nlohmann::json::parse(raw.output);
  EXPECT_EQ(raw.output.find('\n'), std::string::npos);
  // The latest one may not be scored yet.
  EXPECT_THAT(raw.output, HasSubstr("\"tripScores\":{"));
  EXPECT_EQ(jsonOf("trips list --limit 20 --expand scores", anna), sent);
  // Numbers stand in it as they were written.
  const Ending all = orvane("trips list --all --format compact", anna);
  const Ending api = orvane("api GET users/1001/trips --query limit=100", anna);
  EXPECT_EQ(all.output, api.output + "\n");
  EXPECT_THAT(all.output, HasSubstr("\"avgKilometersPerHour\":"));
  EXPECT_EQ(jsonOf("trips logbook --all", anna), nlohmann::json::parse(all.output));

  const std::string id = sent[0]["tripId"];
  check({prints("api GET /identity", "{\"userId\":\"1001\"}"),
         prints("api GET identity --format table", "{\n  \"userId\": \"1001\"\n}\n"),
         prints("api POST trips/" + id + " --query purpose=BUSINESS", HasSubstr("\"BUSINESS\"")),
         {"api GET users/nobody", 44, HasSubstr("\"there is no such user\""),
          AllOf(IsOneLine(), HasSubstr("[GET https://"))},
         {"user show nobody --raw", 44, HasSubstr("\"not_found\""), IsOneLine()},
         fails("api GET https://example.org/identity", 64, "not below the API root"),
         fails("api GET identity --query page", 64, "a name, an equals sign"),
         fails("api GET identity --header nonsense", 64, "a name, a colon"),
         fails("api POST identity --data /nowhere", 64, "/nowhere can't be read"),
         fails("api PATCH identity", 64, "METHOD")},
        anna);
  static_cast<void>(orvane("api GET identity --query 'a=b c,d&e' --query f=", anna));
  EXPECT_EQ(sandbox.lastRequest(), "GET identity?a=b%20c,d%26e&f=");
  sandbox.misbehave({{"path", "/users/"}, {"body", "garbage"}});
  const Ending unreadable = orvane("user show --raw", anna);
  EXPECT_EQ(unreadable.exitCode, 21);
  EXPECT_THAT(unreadable.output, Not(IsEmpty()));
}

TEST(CommandLineTest, ShowsBodiesOnRequestOnly) {
  const SandboxProcess sandbox;
  const Ending ending =
      orvane("user update --display-name Zo --verbose=bodies", settingsOf(sandbox));
  EXPECT_EQ(ending.exitCode, 0);
  EXPECT_THAT(ending.errors, has("> Authorization: …", "\n> Zo\n", "< {\"userId\":\"1001\""));
  EXPECT_THAT(ending.errors, Not(HasSubstr("eyJ")));
}

TEST(CommandLineTest, FailsWhereNothingCanBeWritten) {
  const SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  for (const char* command : {"user show", "--help", "--version", "trips list --json", "doctor",
                              "completion bash", "config list", "api GET identity"}) {
    for (const char* target : {" > /dev/full", " >&-"}) {
      SCOPED_TRACE(std::string(command) + target);
      const Ending ending =
          run("/bin/sh",
              {"-c", std::string("\"") + ORVANE_CLI_EXECUTABLE + "\" " + command + target}, anna);
      EXPECT_EQ(ending.exitCode, 74);
      EXPECT_THAT(ending.errors, AllOf(IsOneLine(), HasSubstr("can't be written")));
    }
  }
}

}  // namespace
}  // namespace orvane::test
