// SPDX-License-Identifier: Apache-2.0
//
// Recording what is asked and answered, and answering from it.
#include "Fixture.h"
#include "recording/StandIns.h"

#include <gmock/gmock.h>

#include <fstream>
#include <tuple>

namespace orvane::sandbox::test {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(StandIns, TakeThePlaceOfAddressesAndTokens) {
  const std::string token = "eyJhbGciOiJIUzI1NiJ9.eyJzdWIiOiJhIn0.c2ln-_";
  StandIns standIns;
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {"{\"email\":\"Anna.Keller@example.com\"}", "{\"email\":\"user1@example.invalid\"}"},
      {"anna.keller%40example.com", "user1%40example.invalid"},
      {"(anna.keller\\u0040EXAMPLE.com.)", "(user1\\u0040example.invalid.)"},
      {"jörg+x@bücher.example, anna.keller@example.com",
       "user2@example.invalid, user1@example.invalid"},
      {"{\"a\":\"To:\\nanna.keller@example.com\\n\"}",
       "{\"a\":\"To:\\nuser1@example.invalid\\n\"}"},
      {"\"j\\u00f6@b.example \\\\u@b.example \\n@b.example\"",
       "\"user3@example.invalid \\\\user4@example.invalid \\n@b.example\""},
      {"@home, a@b and 50%40", "@home, a@b and 50%40"},
      {"a@b.c@d.e", "user5@example.invalid@d.e"},
      {"\"" + token + "\"", "\"token-1\""},
      {"Bearer sandbox-token-1001, " + token, "Bearer token-2, token-1"},
      {"eyJ.a, eyJhbGciOiJIUzI1NiJ9", "eyJ.a, eyJhbGciOiJIUzI1NiJ9"},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(standIns.in(text), expected);
  }
  EXPECT_EQ(
      standIns.inQuery("x=1&email=anna.keller%40example.com&&deviceToken=secret&deviceToken="),
      "x=1&email=user1%40example.invalid&&deviceToken=token-3&deviceToken=");
}

class RecordingTest : public SandboxTest {
 protected:
  std::string stop() {
    sandbox().backend().recording().stop();
    return sandbox().backend().recording().file();
  }

  void replay(const std::string& recording, bool timing = false) {
    std::ofstream{folder() / "recording.json"} << recording;
    SandboxOptions options;
    options.backend.replay = std::make_shared<Replay>(folder() / "recording.json", timing);
    start(options);
  }
};

TEST_F(RecordingTest, AReplayGivesTheSameAnswers) {
  const std::string device = "POST users/1001/devices/new?deviceToken=";
  const std::string named = "PUT namedDrivers/1201?namedDriverEmail=";
  const std::string package = "GET /downloads/DFU_4417_Release___2_2_2.zip";
  const auto answers = [&](const std::string& email) {
    std::vector<Answer> all{get("users/1001?expand=role"),
                            postForm("users/1001", {{"city", "Bern", "", ""}}),
                            get("users/1001?expand=role"),
                            get("users/777"),
                            send(named + email + "&namedDriverPhone="),
                            send(device + email + "-token&appId=1"),
                            ask(package, {{"Range", "bytes=0-99"}}),
                            get("users/1001/trips?limit=3&expand=points")};
    return all;
  };
  sandbox().backend().recording().start(false);
  const std::vector<Answer> recorded = answers("otto%40example.com");
  admin("misbehave", {{"drop", true}, {"times", 1}});
  EXPECT_THAT([&] { get("identity"); }, testing::Throws<std::runtime_error>());
  const std::string file = stop();
  get("jwtgenerator");
  EXPECT_EQ(json::parse(file)["requests"].size(), recorded.size() + 1);
  for (const char* secret : {"sandbox-token", "otto", "anna.keller@", "-token&"}) {
    EXPECT_THAT(file, Not(HasSubstr(secret)));
  }

  replay(file);
  useToken("anything");
  const std::vector<Answer> replayed = answers("another%40example.org");
  for (std::size_t i = 0; i < recorded.size(); ++i) {
    EXPECT_EQ(replayed[i].status, recorded[i].status) << i;
    EXPECT_EQ(replayed[i].header("Content-Type"), recorded[i].header("Content-Type")) << i;
    EXPECT_EQ(replayed[i].header("Content-Range"), recorded[i].header("Content-Range")) << i;
  }
  EXPECT_EQ(replayed[6].body, recorded[6].body) << "not UTF-8";
  EXPECT_EQ(replayed[7].body, recorded[7].body);
  EXPECT_EQ(replayed[0].parsed()["city"], "Basel");
  EXPECT_EQ(replayed[2].parsed()["city"], "Bern") << "equal requests get answers in their order";
  EXPECT_EQ(get("users/1001?expand=role").body, replayed[2].body) << "the last stays";
  EXPECT_THAT([&] { get("identity"); }, testing::Throws<std::runtime_error>())
      << "dropped then, too";
  const Answer unknown = get("users/1001?expand=customFields");
  EXPECT_EQ(unknown.status, 404);
  EXPECT_THAT(unknown.body, HasSubstr("the recording has no such request: GET"));
}

TEST_F(RecordingTest, SecretsStayWhereTheyAreWanted) {
  sandbox().backend().recording().start(true);
  get("users/1001");
  const std::string file = stop();
  EXPECT_THAT(file, HasSubstr("Bearer sandbox-token-1001"));
  EXPECT_THAT(file, HasSubstr("anna.keller@example.com"));
}

TEST_F(RecordingTest, AnswersTakeTheirTimeWhenTheyAreMeantTo) {
  const auto timeOf = [&](const std::string& path) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(get(path).status, 200);
    return std::chrono::steady_clock::now() - start;
  };
  sandbox().backend().recording().start(false);
  get("identity");
  json file = json::parse(stop());
  file["requests"][0]["duration"] = 300;
  replay(file.dump(), true);
  EXPECT_GE(timeOf("identity"), std::chrono::milliseconds{300});
}

TEST(Replay, RefusesWhatIsNoRecording) {
  const TemporaryFolder folder;
  const std::string file = folder / "recording.json";
  const std::string exchange =
      R"({"method":"GET","path":"/","query":"","status":200,"responseBody":"",)";
  const std::string texts[] = {
      "",
      "[]",
      "{}",
      R"({"version":2,"requests":[]})",
      R"({"version":1,"requests":[{}]})",
      R"({"version":1,"requests":[)" + exchange + R"("responseHeaders":[["A","b\r\nC: d"]]}]})",
      R"({"version":1,"requests":[{"method":"GET","path":"/","query":"","status":99,)" +
          std::string{R"("responseBody":"","responseHeaders":[]}]})"}};
  for (const std::string& text : texts) {
    std::ofstream{file} << text;
    EXPECT_THROW((Replay{file, false}), std::runtime_error) << text;
  }
  EXPECT_THROW((Replay{folder / "missing", false}), std::runtime_error);
  std::ofstream{file} << R"({"version":1,"requests":[)" + exchange + R"("responseHeaders":[]}]})";
  EXPECT_NO_THROW((Replay{file, false}));
}

}  // namespace
}  // namespace orvane::sandbox::test
