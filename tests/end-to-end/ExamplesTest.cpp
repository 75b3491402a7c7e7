// SPDX-License-Identifier: Apache-2.0
// The examples, each run as it stands against the local backend.
#include "CommandLine.h"
#include "SandboxProcess.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Testing.h>

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

// What an example that is started with these arguments says.
struct Row {
  const char* name;
  std::vector<std::string> arguments;
  testing::Matcher<std::string> output;
  const char* errors = "";

  friend void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }
};

const std::string trips = "([0-9]+: [0-9.e+]+ m\n)+";

std::string program(const std::string& name) {
  return std::string(ORVANE_EXAMPLES_FOLDER) + "/orvane-example-" + name;
}

bool isBuilt(const std::string& name) { return std::filesystem::exists(program(name)); }
constexpr const char* howToBuildIt = "it takes packages that are not here: ./dev setup loops";

class ExamplesTest : public testing::Test {
 protected:
  Environment environment() const {
    return with(settingsOf(sandbox, ""), {{"ORVANE_TOKEN", sandbox.developmentToken()}});
  }
  Ending example(const std::string& name, const std::vector<std::string>& arguments = {}) const {
    return run(program(name), arguments, environment());
  }
  void check(const Row& row) const {
    const Ending ending = example(row.name, row.arguments);
    EXPECT_EQ(ending.exitCode, 0) << row.name;
    EXPECT_THAT(ending.output, row.output) << row.name;
    EXPECT_EQ(ending.errors, row.errors) << row.name;
  }

  SandboxProcess sandbox;
};

TEST_F(ExamplesTest, doWhatTheySay) {
  for (const Row& row : std::initializer_list<Row>{
           {"fetch_user", {}, "Hello Anna K.\n"},
           {"with_handlers", {}, MatchesRegex(trips)},
           {"rename_user",
            {"Anna"},
            MatchesRegex("Anna K., who drives [0-9]+ vehicles, is Anna now\n"
                         "the latest trip took [0-9.]+ s\n"
                         "and has made [0-9]+ trips\n")},
           {"test_yourself", {}, ""},
       }) {
    check(row);
  }
}

class LoopExamplesTest : public ExamplesTest, public testing::WithParamInterface<Row> {
 protected:
  void SetUp() override {
    if (!isBuilt(GetParam().name)) GTEST_SKIP() << howToBuildIt;
  }
};

INSTANTIATE_TEST_SUITE_P(, LoopExamplesTest,
                         testing::Values(Row{"glib", {}, MatchesRegex(trips), "Ctrl-C gives up\n"},
                                         Row{"qt", {}, MatchesRegex("Hello Anna K.\n" + trips)}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(LoopExamplesTest, doWhatTheySay) { check(GetParam()); }

TEST_P(LoopExamplesTest, endWithoutAnAnswer) {
  sandbox.misbehave({{"drop", true}});
  const Ending ending = example(GetParam().name);
  EXPECT_EQ(ending.exitCode, 1);
  EXPECT_EQ(ending.output, "");
  EXPECT_THAT(ending.errors, HasSubstr("the connection ended"));
}

TEST_F(ExamplesTest, sayWhyWhenTheyAreRefused) {
  sandbox.misbehave({{"status", 403}, {"times", 1}, {"path", "users"}});
  const Ending ending = example("fetch_user");
  EXPECT_EQ(ending.exitCode, 1);
  EXPECT_THAT(ending.errors, MatchesRegex("GET users/1001: the backend refused the request with "
                                          "status 403: .+\n"));
}

TEST_F(ExamplesTest, giveUpWhenTheyAreTold) {
  if (!isBuilt("glib")) GTEST_SKIP() << howToBuildIt;
  sandbox.misbehave({{"delayMs", 600'000}});
  Process process(program("glib"), {}, environment(), Process::Streams::captured);
  ASSERT_TRUE(process.waitForError("gives up\n"));
  process.send(SIGINT);
  EXPECT_EQ(process.wait().exitCode, 1);
}

// A client of the example's server, which asks once at most.
class Client {
 public:
  explicit Client(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }
  ~Client() { ::close(socket_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  void ask(const std::string& target) const {
    const std::string request = "GET " + target + " HTTP/1.0\r\n\r\n";
    EXPECT_EQ(::write(socket_, request.data(), request.size()),
              static_cast<ssize_t>(request.size()));
  }

  // Everything until the server closes.
  [[nodiscard]] std::string answer() const {
    std::string text;
    char bytes[1024];
    for (ssize_t count = 0; (count = ::read(socket_, bytes, sizeof bytes)) > 0;) {
      text.append(bytes, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  int socket_;
};

class ServerTest : public ExamplesTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(server.waitForError("\n"));
    port = static_cast<std::uint16_t>(
        std::stoi(server.errors().substr(std::string_view("listening on ").size())));
  }
  [[nodiscard]] std::string answerTo(const std::string& target) const {
    const Client client(port);
    client.ask(target);
    return client.answer();
  }

  Process server{program("asio_server"), {"0"}, environment(), Process::Streams::captured};
  std::uint16_t port = 0;
};

TEST_F(ServerTest, answersWhileOthersWait) {
  sandbox.misbehave({{"delayMs", 600'000}, {"path", "logbook"}});
  const Client silent(port);
  const Client waiting(port);
  waiting.ask("/trips");
  for (int i = 0; i < 3; ++i) {
    EXPECT_THAT(answerTo("/users/me"),
                AllOf(HasSubstr(" 200 OK\r\n"), HasSubstr("\"publicDisplayName\":\"Anna K.\"")));
  }
  EXPECT_THAT(answerTo("/else"), HasSubstr(" 404 Not Found\r\n"));
  sandbox.behave();
  EXPECT_THAT(answerTo("/trips"), HasSubstr("\"tripId\":"));
  sandbox.misbehave({{"status", 500}});
  EXPECT_THAT(answerTo("/trips"), AllOf(HasSubstr(" 502 "), Not(HasSubstr("500"))));
}

TEST_F(ServerTest, endsWhenItIsTold) {
  const Client silent(port);
  EXPECT_THAT(answerTo("/users/me"), HasSubstr(" 200 OK\r\n"));
  server.send(SIGTERM);
  EXPECT_EQ(silent.answer(), "");
  EXPECT_EQ(server.wait().exitCode, 0);
}

}  // namespace
}  // namespace orvane::test
