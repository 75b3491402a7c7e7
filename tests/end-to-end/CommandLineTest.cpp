// SPDX-License-Identifier: Apache-2.0
// The command-line client as a process: arguments and environment in, streams and exit code out.
#include "CommandLine.h"

#include <csignal>
#include <filesystem>
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
          fails("usr", 64, "There is no command 'usr'"),
          fails("user shw", 64, "There is no command 'shw'"),
          fails("user show --colour", 64, "--colour"),
          fails("user show --expand role,everything", 64, "'everything' is not one of"),
          fails("user update", 64, "At least one option"),
          fails("user update --date-of-birth 2023-02-29", 64, "a day, as YYYY-MM-DD"),
          fails("user update --share-user-profile maybe", 64, "choices: yes, no"),
          fails("user update --phone", 64, "--phone needs a value"),
          fails("user show --timeout soon", 64, "not a number"),
          fails("user show --timeout 0", 64, "is not from 0.001"),
          fails("user show ''", 64, "an identifier"),
          fails("user show --base-url http://example.org", 78, "http is for this machine only"),
          fails("user show --base-url 'not a URL'", 78, "baseURL"),
          fails("user show --ca-file /nowhere.pem", 78, "/nowhere.pem"),
          fails("user show --signing-key-file /nowhere.key", 78, "/nowhere.key"),
          fails("user show --signing-key-file " + folder / "key", 78, "hexadecimal"),
          fails("user show --config /nowhere", 78, "/nowhere"),
          fails("user show --config " + folder.path().string(), 78, folder.path()),
          fails("user show --time-zone Europe/Atlantis", 78, "Europe/Atlantis"),
          fails("user show --base-url https://orvane.invalid", 10, "looked up"),
          fails("user show --base-url https://127.0.0.1:1", 11, "reached"),
          fails("user show --ca-file /etc/ssl/certs/ca-certificates.crt", 12),
          fails("user show --token wrong", 41, "does not accept the token (401)"),
          fails("user show 1004", 43, "does not allow"),
          fails("user show nobody", 44, "does not know"),
          fails("user update --email nonsense", 40, "(400)"),
          fails("user update --last-name \xC3\x28", 20, "UTF-8"),
          fails("user show \xC3\x28", 20, "formed"),
      },
      settingsOf(sandbox));

  for (const char* timeout : {"soon", "0", "nan"}) {
    check({fails("user show", 78, "ORVANE_TIMEOUT: timeout is")},
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
         prints("user show --signing-key-file " + sandbox.signingKeyFile(), HasSubstr("id\t"))},
        both);

  writeFile(file, " user=\'ann # 1\'  # who\r\napi-key = # none yet\nlocale = de_DE # German\n");
  check({prints("config list --config " + file,
                has("user\tann # 1\t", "api-key\t\t", "locale\tde_DE\t"))},
        without(without(settings, "ORVANE_USER"), "ORVANE_API_KEY"));

  constexpr std::pair<const char*, const char*> malformed[] = {
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
  for (const auto& [text, said] : malformed) {
    writeFile(file, text);
    check({fails("config list --config " + file, 78, said)}, settings);
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

TEST(CommandLineTest, HelpsWithoutABackend) {
  check({prints("--version", StartsWith("orvane ")),
         prints("--help", has("ORVANE_BASE_URL", "  user ", "\n   64  ")),
         prints("user update --help",
                has("--driver-type weekend-driver|", "Examples:\n  orvane user"))},
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
  constexpr std::pair<const char*, const char*> rows[] = {
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
  for (const auto& [line, offered] : rows) {
    EXPECT_THAT(completionsOf(line), HasSubstr(offered)) << line;
  }
}

}  // namespace
}  // namespace orvane::test
