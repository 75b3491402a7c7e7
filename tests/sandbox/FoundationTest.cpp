// SPDX-License-Identifier: Apache-2.0
//
// What every request meets: TLS, tokens and their times, refusals, misbehaviour, the admin
// requests.
#include "Fixture.h"

#include <gmock/gmock.h>

#include <ctime>

namespace orvane::sandbox::test {
namespace {

using testing::HasSubstr;

class Foundation : public SandboxTest {
 protected:
  /// A token as a client makes it whose clock is off by the seconds.
  std::string token(std::int64_t clockOffset, std::int64_t lifetime = 3600,
                    const std::string& subject = "anna.keller") {
    const std::int64_t now = ServerClock{0}.now() / millisPerSecond + clockOffset;
    return sandbox().backend().signingKey().sign({{"sub", subject}},
                                                 {{"iat", now}, {"exp", now + lifetime}});
  }

  int statusWith(const std::string& token) {
    useToken(token);
    return get("identity").status;
  }
};

TEST_F(Foundation, TokensAreCheckedAgainstTheServersClock) {
  const std::string good = token(0);
  for (const std::string& taken :
       {good, token(-50), token(50), std::string{"sandbox-token-1002"}}) {
    EXPECT_EQ(statusWith(taken), 200) << taken;
  }
  std::string forged = good;
  forged[good.find('.') + 3] ^= 1;
  const std::string unsignedToken = "eyJhbGciOiJub25lIn0." + good.substr(good.find('.') + 1);
  for (const std::string& bad :
       {token(-300), token(300), token(-100, 30), token(0, 3600, "nobody"), forged, unsignedToken,
        good.substr(0, good.rfind('.')), good + "A", std::string{"a.b.c"}, std::string{"..."},
        std::string{"sandbox-token-"}, std::string{}}) {
    EXPECT_EQ(statusWith(bad), 401) << bad;
  }
}

TEST_F(Foundation, ASkewedClockTellsItsTimeAndWantsTokensOfIt) {
  admin("clock", {{"skew", 300}});
  useToken(token(0));
  const Answer refusal = get("identity");
  EXPECT_EQ(refusal.status, 401);
  EXPECT_EQ(refusal.parsed()["error"], "unauthorized");
  std::tm time{};
  ASSERT_TRUE(::strptime(refusal.header("Date").c_str(), "%a, %d %b %Y %H:%M:%S GMT", &time));
  const auto now = ServerClock{0}.now() / millisPerSecond;
  EXPECT_NEAR(static_cast<double>(::timegm(&time) - now), 300, 2);
  EXPECT_EQ(statusWith(token(300)), 200);
}

TEST_F(Foundation, RequestsAreRefusedWithTheStatusThatSaysWhy) {
  refuses(404, {"GET nothing", "GET users", "GET users/", "GET users/1001/", "GET users/777",
                "GET users/..", "GET users/1001/vehicles/3001?plate=what?/"});
  refuses(400, {"GET users/%", "GET users/%ff", "GET users/1001?unknown=1", "GET users/1001?expand",
                "GET users/1001?expand=everything", "GET identity?a=b"});
  refuses(403, {"GET users/1004"});
  refuses(414, {"GET " + std::string(9000, 'x')});
  EXPECT_EQ(get("users/1001?expand=role&&expand=role").status, 200);
  const Answer wrongMethod = send("PUT users/1001");
  EXPECT_EQ(wrongMethod.status, 405);
  EXPECT_EQ(wrongMethod.header("Allow"), "GET, POST");
  EXPECT_EQ(post("users/1001", "{}", "application/json").status, 415);
  EXPECT_EQ(post("users/1001", std::string(2'000'000, 'x'), "text/plain").status, 413);
  useToken("");
  refuses(401, {"GET nothing"});  // strangers are not told which resources there are
}

TEST_F(Foundation, AnUntrustedOrFlawedCertificateFailsTheHandshake) {
  httplib::SSLClient stranger{"127.0.0.1", sandbox().port()};
  stranger.enable_server_certificate_verification(true);
  EXPECT_EQ(stranger.Get("/").error(), httplib::Error::SSLServerVerification);

  for (const CertificateFlaw flaw : {CertificateFlaw::expired, CertificateFlaw::wrongHost}) {
    SandboxOptions options;
    options.flaw = flaw;
    start(options);
    EXPECT_THAT([this] { get("identity"); }, testing::Throws<std::runtime_error>());
  }
}

TEST_F(Foundation, FaultsSpoilExactlyTheRequestsTheyAreMeantFor) {
  admin("misbehave", {{"status", 503}, {"times", 2}, {"path", "identity$"}});
  EXPECT_EQ(get("users/1001").status, 200);
  EXPECT_EQ(get("identity").status, 503);
  EXPECT_EQ(get("identity").status, 503);
  EXPECT_EQ(get("identity").status, 200);

  admin("misbehave", {{"body", "empty"}, {"times", 1}});
  EXPECT_EQ(get("identity").body, "");
  admin("misbehave", {{"body", "wrongType"}, {"times", 1}});
  EXPECT_EQ(get("identity").parsed(), 42);
  admin("misbehave", {{"status", 401}, {"date", false}, {"times", 1}});
  EXPECT_EQ(get("identity").header("Date"), "");

  std::size_t received = 0;
  admin("misbehave", {{"body", "huge"}, {"times", 1}});
  auto patient = client();
  patient.enable_server_certificate_verification(false);
  patient.Get("/kavra/api/sdk/identity", [&](const char*, std::size_t size) {
    received += size;
    return true;
  });
  EXPECT_GE(received, 100'000'000U);

  for (const json& fault :
       {json{{"cutAfterBytes", 4}, {"times", 1}}, json{{"drop", true}, {"times", 1}}}) {
    admin("misbehave", fault);
    EXPECT_THAT([this] { get("identity"); }, testing::Throws<std::runtime_error>()) << fault;
  }
  EXPECT_EQ(admin("misbehave", {{"body", "nonsense"}}).status, 400);
  EXPECT_EQ(admin("misbehave", {{"path", "("}}).status, 400);
  EXPECT_EQ(admin("misbehave", {{"drop", true}, {"times", 0}}).status, 400);
  EXPECT_EQ(get("identity").status, 200);
}

TEST_F(Foundation, AdminRequestsReadBackWhatIsInForce) {
  admin("misbehave", {{"status", 503}, {"times", 2}, {"path", "identity$"}});
  EXPECT_EQ(get("identity").status, 503);
  EXPECT_EQ(adminRead("misbehave"),
            json::parse(R"([{"status":503,"times":1,"path":"identity$"}])"));
  admin("clock", {{"skew", 90}});
  const json clock = adminRead("clock");
  EXPECT_EQ(clock["skew"], 90);
  EXPECT_EQ(clock["today"], "2025-06-18T12:00:00.000Z");
  auto stranger = client();
  stranger.enable_server_certificate_verification(false);
  EXPECT_EQ(stranger.Get("/admin/health")->status, 200);

  get("trips/4711");
  postForm("users/1001", {{"firstName", "Änne", "", ""}});
  const json log = adminRead("requests?bodies=true");
  const json& refused = log[log.size() - 2];
  EXPECT_EQ(refused["reason"], refused["answer"].is_string()
                                   ? json::parse(refused["answer"].get<std::string>())["message"]
                                   : json());
  EXPECT_THAT(refused["time"].get<std::string>(), testing::MatchesRegex("20.*T.*Z"));
  EXPECT_GT(refused["durationMs"].get<double>(), 0);
  EXPECT_THAT(log.back()["body"].get<std::string>(), HasSubstr("Änne"));
  EXPECT_FALSE(adminRead("requests").back().contains("body"));
}

TEST_F(Foundation, SnapshotsBringBackWhatTheySaved) {
  const std::string before = get("users/1001").body;
  EXPECT_EQ(admin("snapshots", {{"name", "before"}}).status, 200);
  postForm("users/1001", {{"firstName", "Änne", "", ""}});
  EXPECT_NE(get("users/1001").body, before);
  EXPECT_EQ(admin("snapshots", {{"name", "after"}}).status, 200);
  EXPECT_EQ(admin("restore", {{"name", "before"}}).status, 200);
  EXPECT_EQ(get("users/1001").body, before);
  EXPECT_EQ(adminRead("snapshots"), json({"after", "before"}));
  EXPECT_EQ(admin("restore", {{"name", "never"}}).status, 404);
  for (const char* name : {"", ".", "../before", "a/b", "a b", "ä"}) {
    EXPECT_EQ(admin("snapshots", {{"name", name}}).status, 400) << name;
  }
}

TEST_F(Foundation, PagesOfAllowedOriginsReadAnswers) {
  SandboxOptions options;
  options.backend.allowedOrigins = {"https://app.example"};
  start(options);
  const httplib::Headers page{{"Origin", "https://app.example"}};
  EXPECT_EQ(get("identity", page).header("Access-Control-Allow-Origin"), "https://app.example");
  EXPECT_EQ(get("nowhere", page).header("Access-Control-Allow-Origin"), "https://app.example");
  EXPECT_EQ(
      get("identity", {{"Origin", "https://other.example"}}).header("Access-Control-Allow-Origin"),
      "");
  useToken("");
  const Answer may = send("OPTIONS identity", "", "",
                          {{"Origin", "https://app.example"},
                           {"Access-Control-Request-Method", "GET"},
                           {"Access-Control-Request-Headers", "authorization"}});
  EXPECT_EQ(may.status, 204);
  EXPECT_EQ(may.header("Access-Control-Allow-Methods"), "GET");
  EXPECT_EQ(may.header("Access-Control-Allow-Headers"), "authorization");
}

TEST_F(Foundation, ASlowAnswerTakesAsLongAsItsBytes) {
  const httplib::Headers asItIs{{"Accept-Encoding", "identity"}};
  const std::string whole = get("users/1001/trips", asItIs).body;
  // In many pieces, and in one.
  for (const std::size_t times : {4U, 25U}) {
    const auto start = std::chrono::steady_clock::now();
    admin("misbehave", {{"bytesPerSecond", whole.size() * times}, {"times", 1}, {"path", "trips"}});
    EXPECT_EQ(get("users/1001/trips", asItIs).body, whole);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds{900 / times});
  }
  EXPECT_EQ(admin("misbehave", {{"bytesPerSecond", 0}}).status, 400);
}

TEST(Reset, LaysTheDataAroundTheTimeOfTheClockThatItSetsBack) {
  const TemporaryFolder folder;
  BackendOptions options;
  options.folder = folder.path();
  options.weeks = 1;
  Backend backend{options};
  const Milliseconds start = backend.laidAround();
  backend.clock().setSkew(millisPerDay);
  backend.reset();
  EXPECT_GE(backend.laidAround(), start);
  EXPECT_LT(backend.laidAround(), start + millisPerDay);
}

TEST_F(Foundation, AdminRequestsNeedTheKeyAndHideTokens) {
  get("users/1001?expand=role");
  auto stranger = client();
  stranger.enable_server_certificate_verification(false);
  EXPECT_EQ(stranger.Get("/admin/requests")->status, 401);
  const auto log =
      stranger.Get("/admin/requests", {{"X-Sandbox-Admin-Key", sandbox().backend().adminKey()}});
  EXPECT_THAT(log->body, Not(HasSubstr("sandbox-token")));
  const json entry = json::parse(log->body).back();
  EXPECT_EQ(entry["path"], "/kavra/api/sdk/users/1001");
  EXPECT_EQ(entry["query"], "expand=role");
  EXPECT_EQ(entry["status"], 200);
}

TEST_F(Foundation, ChangesOutliveARestartAndAResetUndoesThem) {
  const std::vector<std::string> paths = {
      "users/1001",
      "users/1001/trips?expand=points&expand=events&expand=scores",
      "leaderboards?userId=1001&localDate=2025-06-18",
      "users/1001/devices",
      "users/1001/settings",
      "users/1001/invitations?type=vehicle",
      "namedDrivers"};
  const auto all = [&] {
    json answers;
    for (const std::string& path : paths) answers[path] = get(path).body;
    return answers;
  };
  const json before = all();
  const std::string trip = read("users/1001/trips?limit=1")[0]["tripId"];
  ASSERT_EQ(postForm("users/1001", {{"lastName", "Käller", "", ""}}).status, 200);
  for (const std::string& change :
       {"POST trips/" + trip + "?purpose=BUSINESS",
        std::string{"POST leaderboards?userId=1001&action=optout"},
        std::string{"POST users/1001/devices/new?action=activateLimitOne"},
        std::string{"POST users/1001/settings?targetId=1001&targetType=USER&eventAlertBraking=1"},
        std::string{"DELETE users/1001/vehicles/"},
        std::string{"PUT namedDrivers/1201?namedDriverEmail=otto@example.com&namedDriverPhone="}}) {
    ASSERT_LT(send(change).status, 300) << change;
  }
  const json changed = all();
  for (const std::string& path : paths) EXPECT_TRUE(changed[path] != before[path]) << path;
  start();
  EXPECT_TRUE(all() == changed) << "the data has been kept";
  admin("reset", json::object());
  EXPECT_TRUE(all() == before) << "the same time gives the same data";
}

}  // namespace
}  // namespace orvane::sandbox::test
