// SPDX-License-Identifier: Apache-2.0
// The command that finds out why nothing works, against a good backend and every kind of bad one;
// and what --help tells a newcomer to try.
#include "CommandLine.h"

#include <filesystem>
#include <sstream>
#include <utility>

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// A backend that is bad in one way, and what is said of it.
struct Patient {
  const char* name;
  std::string options;
  int exitCode;
  std::string finding;  // "failed\tconnection\t", or a part of it
  std::string hint;
};

void examine(const std::vector<Patient>& patients, const Environment& environment) {
  for (const Patient& patient : patients) {
    SCOPED_TRACE(patient.name);
    const Ending ending = orvane("doctor " + patient.options, environment);
    EXPECT_EQ(ending.exitCode, patient.exitCode) << ending.output;
    EXPECT_THAT(ending.output, has(patient.finding, patient.hint));
    if (patient.exitCode != 0) {
      EXPECT_THAT(ending.errors, AllOf(IsOneLine(), HasSubstr("failed")));
    }
  }
}

TEST(DoctorTest, FindsNothingWrongWithAGoodBackend) {
  const SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  const Ending ending = orvane("doctor", anna);
  EXPECT_EQ(ending.exitCode, 0) << ending.errors;
  for (const char* check :
       {"setting base-url", "base URL", "name lookup", "connection", "encryption",
        "certificate chain", "certificate name", "certificate dates", "answer", "clock", "token",
        "identity", "one read"}) {
    EXPECT_THAT(ending.output, HasSubstr(std::string("ok\t") + check + "\t"));
  }
  EXPECT_THAT(ending.output, HasSubstr("(from ORVANE_BASE_URL)"));

  // On a phone's terminal; a word is never taken apart.
  Environment narrow = anna;
  narrow["COLUMNS"] = "40";
  std::istringstream page(orvane("doctor --format table", narrow).output);
  int lines = 0;
  for (std::string line; std::getline(page, line); ++lines) {
    const std::size_t word = line.find_first_not_of(' ');
    EXPECT_TRUE(line.size() <= 40 || line.find(' ', word) == std::string::npos) << line;
  }
  EXPECT_GT(lines, 15);

  const nlohmann::json report = jsonOf("doctor --token " + sandbox.developmentToken(), anna);
  EXPECT_EQ(report["ok"], true);
  EXPECT_EQ(report["checks"].back()["finding"], "user 1001 is Anna K.");
  EXPECT_THAT(report.dump(), Not(HasSubstr(sandbox.developmentToken())));
}

TEST(DoctorTest, SaysWhatIsWrongWithABadOne) {
  SandboxProcess sandbox;
  const Environment anna = settingsOf(sandbox);
  const std::string url = sandbox.baseURL();
  examine(
      {
          {"wrong port", "--base-url https://127.0.0.1:1", 11,
           "failed\tconnection\t127.0.0.1, port 1", "is this its port?"},
          {"wrong name", "--base-url https://orvane.invalid", 10,
           "failed\tname lookup\torvane.invalid", "Is the name right?"},
          {"no authorities", "--ca-file /nope.pem", 78,
           "failed\tsetting ca-file\t--ca-file can't be read: /nope.pem", "in PEM"},
          {"no certificates", "--ca-file /etc/passwd", 78, "holds no certificate: /etc/passwd",
           "skipped\tcertificate chain\tthe file of authorities"},
          {"no sandbox", "--sandbox=/nowhere", 78, "failed\tsandbox\tno sandbox runs on /nowhere",
           "skipped\tconnection\t"},
          {"wrong authority", "--ca-file /etc/ssl/certs/ca-certificates.crt", 12,
           "failed\tcertificate chain\tissued by ", "--ca-file"},
          {"doubled path", "--base-url " + url + "/kavra/api/sdk/", 78, "failed\tbase URL\t",
           "it is added: " + url + "."},
          {"wrong path", "--base-url " + url + "/elsewhere", 44, "failed\tanswer\t",
           "is its path right?"},
          {"no URL", "--base-url telematics", 78, "telematics is no URL", "https://"},
          {"not encrypted", "--base-url http://telematics.example", 78, "is not encrypted",
           "https"},
          {"no TLS", "--base-url http://" + url.substr(8), 14, "failed\tanswer\t",
           "want https://?"},
          {"wrong token", "--token wrong", 41, "failed\ttoken\tthe backend does not accept",
           "has it not expired?"},
          {"no number", "--timeout soon", 64, "failed\tsettings\t--timeout is 'soon'",
           "Correct that"},
          {"no file", "--config /nowhere", 78, "failed\tsettings\t/nowhere", "Correct that"},
      },
      anna);
  for (const auto& [fault, patient] : std::initializer_list<std::pair<nlohmann::json, Patient>>{
           {{{"body", "html"}}, {"a page", "", 21, "failed\tanswer\ta page (200", "sign-in page"}},
           {{{"status", 500}},
            {"500", "", 50, "failed\tanswer\tthe backend failed (500)", "later"}},
           {{{"status", 401}}, {"401", "", 41, "failed\ttoken\t", "has it not expired?"}},
           {{{"path", "/users/"}, {"body", "wrongType"}},
            {"what can't be read", "", 21, "failed\tone read\t", "--verbose=bodies"}},
       }) {
    sandbox.behave();
    sandbox.misbehave(fault);
    examine({patient}, anna);
  }
}

TEST(DoctorTest, TellsCertificatesAndClocksApart) {
  struct Row {
    std::vector<std::string> arguments;
    Patient patient;
  };
  for (const Row& row : {
           Row{{"--expired-certificate"},
               {"expired", "", 12, "failed\tcertificate dates\tfrom ", "to renew it"}},
           Row{{"--wrong-host"},
               {"another's", "", 12, "failed\tcertificate name\tmade out to ", "these names"}},
           Row{{"--skew", "900"},
               {"ahead", "", 0, "warning\tclock\tthe backend's is 1", "this machine's clock"}},
       }) {
    const SandboxProcess sandbox(row.arguments);
    examine({row.patient}, settingsOf(sandbox));
  }
}

// --- What newcomers type -------------------------------------------------------------------------

// Every example of every command's help.
std::vector<std::string> examples() {
  std::vector<std::string> commands;
  std::istringstream manual(orvane("help --man").output);
  for (std::string line; std::getline(manual, line);) {
    if (line != ".nf" || !std::getline(manual, line)) continue;
    for (const auto& [escaped, character] :
         {std::pair("\\(aq", "'"), std::pair("\\-", "-"), std::pair("\\e", "\\")}) {
      for (std::size_t at = 0; (at = line.find(escaped, at)) != std::string::npos; ++at) {
        line.replace(at, std::string(escaped).size(), character);
      }
    }
    commands.push_back(line);
  }
  return commands;
}

// Those of the page about the command line, with the words that explain them.
void addDocumented(std::vector<std::string>& commands) {
  std::istringstream page(contentsOf(ORVANE_SOURCE_DIR "/docs/cli.md"));
  bool isShell = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("```")) isShell = line == "```sh";
    // What is sourced needs a shell of its kind.
    const bool isSourced = line.find("| source") != std::string::npos;
    if (isShell && line.starts_with("orvane ") && !isSourced) commands.push_back(line);
  }
}

// A shell of a newcomer's, in an empty folder, with a sandbox that nobody has used.
class Newcomer {
 public:
  [[nodiscard]] const TemporaryFolder& folder() const noexcept { return folder_; }
  [[nodiscard]] SandboxProcess& sandbox() noexcept { return sandbox_; }

  [[nodiscard]] std::unique_ptr<Process> start(const std::string& command) const {
    Environment environment =
        with(settingsOf(sandbox_),
             {{"PATH", std::filesystem::path(ORVANE_CLI_EXECUTABLE).parent_path().string() +
                           ":/usr/bin:/bin"},
              {"ORVANE_FIRMWARE_HOST", sandbox_.baseURL()},
              {"HOME", folder_.path().string()}});
    // Some things others may do.
    if (command.find("activate ACT-1007") != std::string::npos)
      environment["ORVANE_USER"] = "nora.frei";
    if (command.find("remove-from-account") != std::string::npos)
      environment["ORVANE_USER"] = "daniel.meier";
    return std::make_unique<Process>(
        "/bin/sh",
        std::vector<std::string>{"-c", "cd '" + folder_.path().string() + "' && " + command},
        environment, Process::Streams::captured);
  }

 private:
  SandboxProcess sandbox_{{"--weeks", "9"}};
  TemporaryFolder folder_;
};

// Examples that are one command and no more.
std::vector<std::string> simpleExamples() {
  std::vector<std::string> commands = examples();
  std::erase_if(commands, [](const std::string& command) {
    return command.find_first_of("|>") != std::string::npos;
  });
  return commands;
}

TEST(DoctorTest, EveryExampleShowsSomething) {
  Newcomer newcomer;
  const SandboxProcess& sandbox = newcomer.sandbox();
  const TemporaryFolder& folder = newcomer.folder();
  std::filesystem::create_directory(folder / "orvane-sandbox-data");
  writeFile(folder / "orvane-sandbox-data/ready.json", readyFileOf(sandbox, sandbox.processID()));
  std::vector<std::string> commands = examples();
  EXPECT_GT(commands.size(), 50U);
  const std::size_t helped = commands.size();
  addDocumented(commands);
  EXPECT_GT(commands.size(), helped + 5);
  for (const std::string& command : commands) {
    SCOPED_TRACE(command);
    const Ending ending = newcomer.start(command)->wait();
    EXPECT_EQ(ending.exitCode, 0) << ending.errors;
    const std::size_t redirection = command.find(" > ");
    const std::string shown = redirection == std::string::npos
                                  ? ending.output
                                  : contentsOf(folder / command.substr(redirection + 3));
    // A setting that is written needs no word.
    const bool isQuiet = command.starts_with("orvane config set");
    EXPECT_EQ(shown.empty(), isQuiet);
    const bool isHeaderAlone =
        shown.find('\t') < shown.find('\n') && shown.find('\n') + 1 == shown.size();
    EXPECT_FALSE(isHeaderAlone) << shown;
  }
}

TEST(DoctorTest, EveryExampleSaysWhenItCantWrite) {
  const Newcomer newcomer;
  for (const std::string& command : simpleExamples()) {
    if (command.starts_with("orvane config set")) continue;
    SCOPED_TRACE(command);
    const Ending ending = newcomer.start(command + " > /dev/full")->wait();
    EXPECT_EQ(ending.exitCode, 74);
    EXPECT_THAT(ending.errors, HasSubstr("orvane: the output can't be written: "));
  }
}

TEST(DoctorTest, EveryExampleThatAsksTheBackendCanBeInterrupted) {
  Newcomer newcomer;
  // Who it is is answered, and nothing after that.
  newcomer.sandbox().misbehave({{"delayMs", 60000}, {"path", "sdk/[^ic]|sdk/invitations"}});
  std::size_t count = 0;
  for (const std::string& command : simpleExamples()) {
    SCOPED_TRACE(command);
    const auto process = newcomer.start("exec " + command + " --verbose");
    if (!process->waitForError("/identity")) continue;
    process->send(SIGINT);
    const Ending ending = process->wait();
    // What only asks who it is may be quicker.
    if (ending.exitCode == 0 && command.ends_with("GET identity")) continue;
    ++count;
    EXPECT_EQ(ending.exitCode, 130);
    // The doctor speaks as it goes.
    EXPECT_EQ(ending.output.empty(), command != "orvane doctor");
    EXPECT_THAT(ending.errors, HasSubstr("orvane: cancelled\n"));
  }
  EXPECT_GT(count, 40U);
  for (const char* drawing : {"trip.svg", "month.svg"}) {
    EXPECT_FALSE(std::filesystem::exists(newcomer.folder() / drawing)) << drawing;
  }
}

}  // namespace
}  // namespace orvane::test
