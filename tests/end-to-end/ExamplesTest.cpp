// SPDX-License-Identifier: Apache-2.0
// The examples, each run as it stands against the local backend.
#include "CommandLine.h"
#include "SandboxProcess.h"
#include <Orvane/Testing.h>

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

class ExamplesTest : public testing::Test {
 protected:
  Environment environment() const {
    return with(settingsOf(sandbox, ""), {{"ORVANE_TOKEN", sandbox.developmentToken()}});
  }
  Ending example(const std::string& name, const std::vector<std::string>& arguments = {}) const {
    return run(std::string(ORVANE_EXAMPLES_FOLDER) + "/orvane-example-" + name, arguments,
               environment());
  }

  SandboxProcess sandbox;
};

TEST_F(ExamplesTest, doWhatTheySay) {
  struct Row {
    const char* name;
    std::vector<std::string> arguments;
    testing::Matcher<std::string> output;
  };
  for (const Row& row : {
           Row{"fetch_user", {}, "Hello Anna K.\n"},
           Row{"with_handlers", {}, MatchesRegex("([0-9]+: [0-9.e+]+ m\n)+")},
           Row{"rename_user",
               {"Anna"},
               MatchesRegex("Anna K., who drives [0-9]+ vehicles, is Anna now\n"
                            "the latest trip took [0-9.]+ s\n"
                            "and has made [0-9]+ trips\n")},
           Row{"test_yourself", {}, ""},
       }) {
    const Ending ending = example(row.name, row.arguments);
    EXPECT_EQ(ending.exitCode, 0) << row.name;
    EXPECT_THAT(ending.output, row.output) << row.name;
    EXPECT_EQ(ending.errors, "") << row.name;
  }
}

TEST_F(ExamplesTest, sayWhyWhenTheyAreRefused) {
  sandbox.misbehave({{"status", 403}, {"times", 1}, {"path", "users"}});
  const Ending ending = example("fetch_user");
  EXPECT_EQ(ending.exitCode, 1);
  EXPECT_THAT(ending.errors, MatchesRegex("GET users/1001: the backend refused the request with "
                                          "status 403: .+\n"));
}

// What a connection to the example's server reads.
std::string lineFrom(std::uint16_t port) {
  const int connection = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  std::string text;
  if (::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    char bytes[256];
    for (ssize_t count = 0; (count = ::read(connection, bytes, sizeof bytes)) > 0;) {
      text.append(bytes, static_cast<std::size_t>(count));
    }
  }
  ::close(connection);
  return text;
}

TEST_F(ExamplesTest, greetWhoConnects) {
  Process server(std::string(ORVANE_EXAMPLES_FOLDER) + "/orvane-example-asio_server", {"0", "3"},
                 environment(), Process::Streams::captured);
  ASSERT_TRUE(server.waitForError("\n"));
  const auto port = static_cast<std::uint16_t>(
      std::stoi(server.errors().substr(std::string_view("listening on ").size())));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(lineFrom(port), "Hello Anna\n");
  EXPECT_EQ(server.wait().exitCode, 0);
}

}  // namespace
}  // namespace orvane::test
