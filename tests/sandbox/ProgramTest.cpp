// SPDX-License-Identifier: Apache-2.0
//
// The program as a script meets it: ready file, signals, exit codes.
#include "Fixture.h"

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <fstream>

namespace orvane::sandbox::test {
namespace {

using testing::HasSubstr;

/// The program under a shell that is replaced by it; its output can be read.
class Program {
 public:
  explicit Program(const std::string& arguments)
      : pipe_(::popen(("exec " ORVANE_SANDBOX_EXECUTABLE " " + arguments + " 2>&1").c_str(), "r")) {
  }
  ~Program() {
    if (pipe_ != nullptr) ::pclose(pipe_);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  std::string readLine() {
    std::array<char, 1024> line{};
    return std::fgets(line.data(), line.size(), pipe_) != nullptr ? line.data() : "";
  }

  int exitCode() {
    while (!readLine().empty()) {
    }
    const int status = ::pclose(pipe_);
    pipe_ = nullptr;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  std::FILE* pipe_;
};

TEST(Program, TellsHowToReachItAndStopsWhenAsked) {
  const TemporaryFolder folder;
  const std::string data = folder / "data";
  const std::string ready = folder / "ready.json";
  Program program{"--data " + data + " --weeks 1 --now 2025-06-18 --ready-file " + ready};
  ASSERT_THAT(program.readLine(), HasSubstr("listening"));
  const json description = json::parse(std::ifstream{ready});

  httplib::SSLClient client{"localhost", description["port"].get<int>()};
  client.set_ca_cert_path(description["certificateAuthority"].get<std::string>());
  client.enable_server_certificate_verification(true);
  const json first = description["identities"][0];
  const auto answer =
      client.Get("/kavra/api/sdk/identity",
                 {{"Authorization", "Bearer " + first["developmentToken"].get<std::string>()}});
  // Or else the program would be waited for.
  if (!answer) ::kill(description["pid"].get<pid_t>(), SIGTERM);
  ASSERT_TRUE(answer) << httplib::to_string(answer.error());
  EXPECT_EQ(json::parse(answer->body)["userId"], first["userId"]);

  // A port is one server's: else requests would go to either.
  const std::string port = std::to_string(description["port"].get<int>());
  Program second{"--data " + data + "-2 --weeks 1 --port " + port};
  EXPECT_THAT(second.readLine(), HasSubstr("port " + port + " can't be bound"));
  EXPECT_EQ(second.exitCode(), 1);

  // So is a folder.
  EXPECT_EQ(json::parse(std::ifstream{data + "/ready.json"}), description);
  Program third{"--data " + data};
  EXPECT_THAT(third.readLine(), HasSubstr("another orvane-sandbox runs on the data"));
  EXPECT_EQ(third.exitCode(), 1);

  // A connection that is still open keeps nothing waiting.
  ::kill(description["pid"].get<pid_t>(), SIGTERM);
  EXPECT_EQ(program.exitCode(), 0);
  EXPECT_FALSE(std::filesystem::exists(ready) || std::filesystem::exists(data + "/ready.json"));

  Program other{"--data " + data + " --now 2025-06-19"};
  EXPECT_THAT(other.readLine(), HasSubstr("--fresh"));
  EXPECT_EQ(other.exitCode(), 1);
}

TEST(Program, RunsACommandWithItsSettingsAndEndsAsItDoes) {
  Program asks{
      "--weeks 1 --exec -- sh -c 'test \"$ORVANE_FIRMWARE_HOST\" = \"$ORVANE_BASE_URL\" || exit; "
      "curl --silent --show-error --cacert \"$ORVANE_CA_FILE\" "
      "-H \"Authorization: Bearer $ORVANE_TOKEN\" \"$ORVANE_BASE_URL/kavra/api/sdk/identity\"; "
      "echo; dirname \"$ORVANE_CA_FILE\"; exit 7'"};
  EXPECT_EQ(json::parse(asks.readLine())["userId"], "1001");
  std::string folder = asks.readLine();
  folder.pop_back();
  EXPECT_EQ(asks.exitCode(), 7);
  EXPECT_FALSE(std::filesystem::exists(folder)) << folder;

  const struct {
    const char* command;
    int code;
  } rows[] = {{"sh -c 'kill -KILL $$'", 128 + SIGKILL},
              {"/nonexistent/program", 127},
              {"/", 126},
              {"sh -c 'kill -TERM $PPID; exec sleep 60'", 128 + SIGTERM}};
  for (const auto& [command, code] : rows) {
    EXPECT_EQ(Program{std::string{"--weeks 1 --exec -- "} + command}.exitCode(), code) << command;
  }
}

TEST(Program, AnswersFromTheRecordingOfAnotherRun) {
  const TemporaryFolder folder;
  const std::string file = folder / "recording.json";
  const std::string ask =
      " --weeks 1 --exec -- sh -c 'curl --silent --cacert \"$ORVANE_CA_FILE\" -H \"Authorization: "
      "Bearer $ORVANE_TOKEN\" \"$ORVANE_BASE_URL/kavra/api/sdk/trips/500001\"; echo'";
  const std::string token = "sandbox-token-1001";
  std::string trip;
  for (const bool withSecrets : {true, false}) {
    Program records{std::string{"--now 2025-06-18 "} + (withSecrets ? "--record-secrets " : "") +
                    "--record " + file + ask};
    trip = records.readLine();
    EXPECT_THAT(trip, HasSubstr("500001"));
    EXPECT_EQ(records.exitCode(), 0);
    const std::string recorded = json::parse(std::ifstream{file}).dump();
    EXPECT_EQ(recorded.find(token) != std::string::npos, withSecrets) << recorded;
  }
  Program replays{"--now 2024-02-03 --replay " + file + ask};
  EXPECT_EQ(replays.readLine(), trip);
  EXPECT_EQ(replays.exitCode(), 0);
}

TEST(Program, ServesOtherMachinesByTheirNames) {
  const TemporaryFolder folder;
  const std::string data = folder / "data";
  Program program{"--data " + data + " --weeks 1 --host 0.0.0.0 --name backend.example"};
  ASSERT_THAT(program.readLine(), HasSubstr("listening"));
  const json description = json::parse(std::ifstream{data + "/ready.json"});
  const std::string url = description["baseURL"];
  EXPECT_THAT(url, testing::StartsWith("https://backend.example:"));
  const std::string port = std::to_string(description["port"].get<int>());
  const std::string ask = "curl --silent --show-error --cacert " + data +
                          "/ca.pem --resolve backend.example:" + port + ":127.0.0.1 " + url +
                          "/admin/health";
  EXPECT_EQ(std::system(ask.c_str()), 0);
  ::kill(description["pid"].get<pid_t>(), SIGTERM);
  EXPECT_EQ(program.exitCode(), 0);
}

TEST(Program, EndsWhileItLaysTheDataWhenAskedTo) {
  const TemporaryFolder folder;
  const std::string data = folder / "data";
  // The lock is there before the data is.
  const std::string command = "sh -c '" ORVANE_SANDBOX_EXECUTABLE " --weeks 104 --data " + data +
                              " & while [ ! -e " + data +
                              "/sandbox.sqlite ]; do sleep 0.01; done; kill -INT $!; wait $!'";
  const int status = std::system(command.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 128 + SIGINT);
}

TEST(Program, RefusesFlagsThatMakeNoSense) {
  const TemporaryFolder folder;
  for (const char* flags :
       {"--port 70000", "--now yesterday", "--misbehave '{\"status\":1}'", "--misbehave nonsense",
        "--certificate rusty", "--fast", "now", "--exec", "--name a,b", "--slow 0",
        "--replay-timing", "--record-secrets", "--replay /nonexistent",
        "--record /nonexistent/file"}) {
    EXPECT_EQ(Program{"--data " + folder.path().string() + " " + flags}.exitCode(), 1) << flags;
  }
}

}  // namespace
}  // namespace orvane::sandbox::test
