// SPDX-License-Identifier: Apache-2.0
// The command-line client as a process: arguments and environment in, streams and exit code out.
#include "CommandLine.h"

#include <unistd.h>

#include <csignal>

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

TEST(CommandLineTest, WorksOnTheUser) {
  const SandboxProcess sandbox;
  const std::string id = sandbox.userID();
  check(
      {
          {{"user", "show"},
           0,
           AllOf(HasSubstr("id\t" + id + "\n"), HasSubstr("address: city\t"),
                 HasSubstr("gender\tfemale\n"), Not(HasSubstr("\x1b")))},
          {{"user", "show", id, "--expand", "role,associated-account", "--expand",
            "ASSOCIATED_USERS"},
           0,
           AllOf(HasSubstr("account: identifier\t"), HasSubstr("role: names\trole-owner"),
                 HasSubstr("id\tdisplay name\t"))},
          {{"--json", "user", "show", "--expand", "role"},
           0,
           AllOf(StartsWith("{\n  \"userId\": \"" + id + "\",\n"),
                 HasSubstr("\n  \"userRole\": {\n    \"roleNames\": [\n      \"ROLE_OWNER\""))},
          {{"user", "show", "--format", "compact"},
           0,
           AllOf(StartsWith("{\"userId\":\"" + id + "\","), Not(HasSubstr("\n ")))},
          {{"user", "show", "--format=table", "--token", sandbox.developmentToken()},
           0,
           AllOf(HasSubstr("id                  " + id + "\n"), HasSubstr("\naddress\n"),
                 Not(HasSubstr("\x1b")))},
          {{"user", "update", "--display-name", "Zo\xC3\xAB\x1b[31m\n", "--gender", "diverse",
            "--date-of-birth", "1990-05-17", "--driver-type", "weekend-driver",
            "--share-user-profile", "no", "--phone", ""},
           0,
           AllOf(HasSubstr("display name\tZo\xC3\xAB\\x1b[31m\\n\n"),
                 HasSubstr("gender\tdiverse\n"), HasSubstr("date of birth\t1990-05-17\n"),
                 HasSubstr("driver type\tweekend-driver\n"), HasSubstr("profile shared\tno\n"),
                 HasSubstr("phone\t\n"))},
          {{"user", "address", "--city", "Bern", "--country-code", "CH"},
           0,
           HasSubstr("address: city\tBern\n")},
          {{"user", "show"},
           0,
           AllOf(HasSubstr("date of birth\t1990-05-17\n"), HasSubstr("address: city\tBern\n"))},
      },
      settingsOf(sandbox));
}

TEST(CommandLineTest, EveryErrorHasItsExitCodeAndOneLine) {
  SandboxProcess sandbox;
  const TemporaryFolder folder;
  const std::string noKey = folder.write("key", "not hexadecimal");
  const auto failing = [](Words arguments, int code, const std::string& said) {
    return CommandRow{std::move(arguments), code, IsEmpty(), AllOf(IsOneLine(), HasSubstr(said))};
  };
  const Words show{"user", "show"};
  const auto showing = [&](Words more) {
    more.insert(more.begin(), show.begin(), show.end());
    return more;
  };
  check(
      {
          failing({}, 64, "A command is missing"),
          failing({"user"}, 64, "A command is missing (see orvane user --help)"),
          failing({"usr"}, 64, "There is no command 'usr'"),
          failing({"user", "shw"}, 64, "There is no command 'shw'"),
          failing(showing({"--colour"}), 64, "--colour"),
          failing(showing({"--expand", "role,everything"}), 64, "'everything' is not one of"),
          failing({"user", "update"}, 64, "At least one option"),
          failing({"user", "update", "--date-of-birth", "2023-02-29"}, 64, "a day, as YYYY-MM-DD"),
          failing({"user", "update", "--share-user-profile", "maybe"}, 64, "choices: yes, no"),
          failing({"user", "update", "--phone"}, 64, "--phone needs a value"),
          failing(showing({"--timeout", "soon"}), 64, "not a number"),
          failing(showing({"--timeout", "0"}), 64, "the timeout has to be"),
          failing(showing({"--base-url", "http://example.org"}), 78,
                  "http is for this machine only"),
          failing(showing({"--base-url", "not a URL"}), 78, "baseURL"),
          failing(showing({"--ca-file", "/nowhere.pem"}), 78, "/nowhere.pem"),
          failing(showing({"--signing-key-file", "/nowhere.key"}), 78, "/nowhere.key"),
          failing(showing({"--signing-key-file", noKey}), 78, "hexadecimal"),
          failing(showing({"--config", "/nowhere"}), 78, "/nowhere"),
          failing(showing({"--config", folder.path()}), 78, folder.path()),
          failing(showing({"--time-zone", "Europe/Atlantis"}), 78, "Europe/Atlantis"),
          failing(showing({"--base-url", "https://orvane.invalid"}), 10, "looked up"),
          failing(showing({"--base-url", "https://127.0.0.1:1"}), 11, "reached"),
          failing(showing({"--ca-file", "/etc/ssl/certs/ca-certificates.crt"}), 12, ""),
          failing(showing({"--token", "wrong"}), 41, "does not accept the token (401)"),
          failing(showing({"1004"}), 43, "does not allow"),
          failing(showing({"nobody"}), 44, "does not know"),
          failing({"user", "update", "--email", "nonsense"}, 40, "(400)"),
          failing({"user", "update", "--last-name", "\xC3\x28"}, 20, "UTF-8"),
          failing(showing({"\xC3\x28"}), 20, "formed"),
      },
      settingsOf(sandbox));

  struct Fault {
    nlohmann::json misbehaviour;
    int exitCode;
  };
  const Fault faults[] = {
      {{{"status", 500}}, 50},      {{{"status", 302}}, 40},     {{{"cutAfterBytes", 20}}, 14},
      {{{"body", "empty"}}, 22},    {{{"body", "garbage"}}, 21}, {{{"body", "deep"}}, 21},
      {{{"body", "gzipBomb"}}, 15},
  };
  for (Fault fault : faults) {
    SCOPED_TRACE(fault.misbehaviour.dump());
    sandbox.behave();
    fault.misbehaviour["path"] = "/users/";
    sandbox.misbehave(fault.misbehaviour);
    check({failing(show, fault.exitCode, "")}, settingsOf(sandbox));
  }
  sandbox.behave();
  sandbox.misbehave({{"delayMs", 60000}});
  check({failing(showing({"--timeout", "0.5"}), 13, "")}, settingsOf(sandbox));
}

TEST(CommandLineTest, SettingsHaveAnOrderAndNeverShowSecrets) {
  const SandboxProcess sandbox;
  const TemporaryFolder folder;
  const std::string secret = "s3cr3t-t0k3n";
  const Environment settings = settingsOf(sandbox);
  const std::string file = folder.write(
      "config", "# comments and blank lines are skipped\n\nbase-url = " + sandbox.baseURL() +
                    "\nca-file = \"" + sandbox.caFile() + "\"\nuser = someone.else\ntoken = " +
                    sandbox.developmentToken() + "\ntimeout = 7\n");

  Environment environment = without(without(settings, "ORVANE_BASE_URL"), "ORVANE_CA_FILE");
  check({{{"--config", file, "config", "show"},
          0,
          AllOf(HasSubstr("base-url\t" + sandbox.baseURL() + "\t" + file + "\n"),
                HasSubstr("user\tanna.keller\tORVANE_USER\n"),
                HasSubstr("timeout\t7\t" + file + "\n"), HasSubstr("clock-offset\t\tnot set\n"),
                HasSubstr("token\t…\t" + file + "\n"), Not(HasSubstr(sandbox.developmentToken())))},
         {{"config", "show", "--config", file, "--timeout", "3", "--token", secret},
          0,
          AllOf(HasSubstr("timeout\t3\t--timeout\n"), HasSubstr("token\t…\t--token\n"),
                Not(HasSubstr(secret)))},
         {{"config", "path", "--config", file}, 0, file + "\n"}},
        environment);

  // The file alone is enough, where it is looked for by itself, too.
  const std::string home = folder.path() + "/home";
  ASSERT_EQ(::mkdir(home.c_str(), 0700), 0);
  ASSERT_EQ(::mkdir((home + "/orvane").c_str(), 0700), 0);
  ASSERT_EQ(::symlink(file.c_str(), (home + "/orvane/config").c_str()), 0);
  check({{{"user", "show"}, 0, HasSubstr("id\t" + sandbox.userID() + "\n")}},
        {{"XDG_CONFIG_HOME", home}});

  // Of a token and a key, the one given closer to the command counts.
  const Environment both = with(settings, {{"ORVANE_TOKEN", secret}});
  check({{{"user", "show"}, 41, IsEmpty(), Not(HasSubstr(secret))},
         {{"user", "show", "--signing-key-file", sandbox.signingKeyFile()}, 0, HasSubstr("id\t")}},
        both);

  const std::string written = folder.write(
      "written", " user=\'ann # 1\'  # who\r\napi-key = # none yet\nlocale = de_DE # German\n");
  const auto setting = [](const char* name, const std::string& value) {
    return HasSubstr(name + ("\t" + value) + "\t");
  };
  check({{{"config", "show", "--config", written},
          0,
          AllOf(setting("user", "ann # 1"), setting("api-key", ""), setting("locale", "de_DE"))}},
        without(without(settings, "ORVANE_USER"), "ORVANE_API_KEY"));

  struct Malformed {
    const char* text;
    const char* message;
  };
  constexpr Malformed malformed[] = {
      {"base-uri = https://example.org\n", "base-uri"},
      {"[work]\nuser = x\n", "line 1: sections"},
      {"user = x\n\nbase-url https://example.org\n", "line 3: a name, \"=\" and a value"},
      {"zz\n", "line 1: a name"},
      {"= x\n", "line 1: a name"},
      {"user = Ann Keller\n", "line 1: a value with blanks"},
      {"user = \"Ann\n", "line 1: a quotation mark is not closed"},
      {"user = \"Ann\" Keller\n", "line 1: a value ends"},
      {"user = x\nuser = y\n", "line 2: \"user\" is there already"},
  };
  for (const Malformed& row : malformed) {
    const std::string path = folder.write("malformed", row.text);
    check({{{"config", "show", "--config", path}, 78, IsEmpty(), HasSubstr(row.message)}},
          settings);
  }
}

TEST(CommandLineTest, ShowsTheExchangeWithoutSecrets) {
  const SandboxProcess sandbox;
  const Ending ending =
      orvane({"user", "show", "--verbose", "--clock-offset", "-300", "--expand", "role"},
             settingsOf(sandbox));
  EXPECT_EQ(ending.exitCode, 0);
  EXPECT_THAT(ending.output, StartsWith("id\t" + sandbox.userID() + "\n"));
  EXPECT_THAT(ending.errors, testing::ContainsRegex(
                                 "GET https://127.0.0.1:[0-9]+/kavra/api/sdk/identity(.|\n)*< 401"
                                 "(.|\n)*identity(.|\n)*< 200(.|\n)*users/1001[^\n]*(.|\n)*< 200"));
  EXPECT_THAT(ending.errors, HasSubstr("expand=…"));
  EXPECT_THAT(ending.errors, HasSubstr("Authorization: …"));
  // A token's three parts begin with the same letters every time.
  EXPECT_THAT(ending.errors, Not(HasSubstr("eyJ")));
  EXPECT_THAT(ending.errors, Not(HasSubstr("role\n")));
  EXPECT_THAT(ending.errors, Not(HasSubstr(sandbox.signingKey())));
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

TEST(CommandLineTest, HelpsWithoutABackend) {
  check(
      {{{"--version"}, 0, StartsWith("orvane ")},
       {{"--help"},
        0,
        AllOf(HasSubstr("ORVANE_BASE_URL"), HasSubstr("  user "), HasSubstr("\n   64  "))},
       {{"user", "update", "--help"},
        0,
        AllOf(HasSubstr("--driver-type weekend-driver|"), HasSubstr("Examples:\n  orvane user"))}},
      {});
  const Ending full =
      run("/bin/sh", {"-c", std::string("\"") + ORVANE_CLI_EXECUTABLE + "\" --help > /dev/full"});
  EXPECT_EQ(full.exitCode, 74);
  EXPECT_THAT(full.errors, IsOneLine());
}

// What bash offers for the last word of a command line.
std::string completionsOf(const std::string& line) {
  const std::string script = std::string("source <(\"") + ORVANE_CLI_EXECUTABLE +
                             "\" completion bash); COMP_WORDS=(" + line +
                             "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _orvane; "
                             "echo \"${COMPREPLY[*]}\"";
  return run("/bin/bash", {"-c", script}).output;
}

TEST(CommandLineTest, CompletesInBash) {
  struct Case {
    const char* line;
    const char* offered;
  };
  const Case cases[] = {
      {"orvane us", "user\n"},
      {"orvane user ''", "show update address"},
      {"orvane --timeout 5 user sh", "show\n"},
      {"orvane user show --exp", "--expand\n"},
      {"orvane user show --expand r", "role\n"},
      {"orvane user show --expand role,assoc", "role,associatedUsers role,associatedAccount\n"},
      {"orvane user update --driver-type com", "commuter\n"},
      {"orvane completion --format t", "table tabs\n"},
      {"orvane scores aggregate last-3", "last-30-days\n"},
      {"orvane --ca-file /etc/passw", "/etc/passwd"},
  };
  for (const Case& each : cases) {
    EXPECT_THAT(completionsOf(each.line), HasSubstr(each.offered)) << each.line;
  }
}

}  // namespace
}  // namespace orvane::test
