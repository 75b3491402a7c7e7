// SPDX-License-Identifier: Apache-2.0
//
// What every request meets: TLS, tokens and their times, refusals, misbehaviour, the admin
// requests.
#include "Fixture.h"

#include <gmock/gmock.h>

#include <chrono>

namespace orvane::sandbox::test {
namespace {

using testing::Contains;
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

std::int64_t secondsOf(const std::string& httpDate) {
  std::tm time{};
  EXPECT_NE(::strptime(httpDate.c_str(), "%a, %d %b %Y %H:%M:%S GMT", &time), nullptr) << httpDate;
  return ::timegm(&time);
}

TEST_F(Foundation, TokensAreCheckedAgainstTheServersClock) {
  EXPECT_EQ(statusWith(token(0)), 200);
  EXPECT_EQ(statusWith(token(-50)), 200);
  EXPECT_EQ(statusWith(token(50)), 200);
  EXPECT_EQ(statusWith(token(-300)), 401);
  EXPECT_EQ(statusWith(token(300)), 401);
  EXPECT_EQ(statusWith(token(-100, 30)), 401);
  EXPECT_EQ(statusWith(token(0, 3600, "nobody")), 401);
  EXPECT_EQ(statusWith("sandbox-token-1002"), 200);
  EXPECT_EQ(statusWith("sandbox-token-"), 401);
  EXPECT_EQ(statusWith(""), 401);
}

TEST_F(Foundation, ForgedTokensAreRefused) {
  const std::string good = token(0);
  std::string forged = good;
  forged[good.find('.') + 3] ^= 1;
  const std::string unsignedToken = "eyJhbGciOiJub25lIn0." + good.substr(good.find('.') + 1);
  for (const std::string& bad : {forged, unsignedToken, good.substr(0, good.rfind('.')), good + "A",
                                 std::string{"a.b.c"}, std::string{"..."}}) {
    EXPECT_EQ(statusWith(bad), 401) << bad;
  }
}

TEST_F(Foundation, A401TellsTheTimeThatMakesTheNextTokenPass) {
  ASSERT_EQ(admin("clock", {{"skew", 300}}).status, 200);
  useToken(token(0));
  const Answer refusal = get("identity");
  ASSERT_EQ(refusal.status, 401);
  EXPECT_EQ(refusal.parsed()["error"], "unauthorized");
  const auto offset = secondsOf(refusal.header("Date")) - ServerClock{0}.now() / millisPerSecond;
  EXPECT_NEAR(static_cast<double>(offset), 300, 2);
  EXPECT_EQ(statusWith(token(offset)), 200);
}

TEST_F(Foundation, RequestsAreRefusedWithTheStatusThatSaysWhy) {
  struct Row {
    const char* path;
    int status;
  };
  constexpr Row rows[] = {
      {"nothing", 404},
      {"users", 404},
      {"users/", 404},
      {"users/1001/", 404},
      {"users/777", 404},
      {"users/1004", 403},
      {"users/..", 404},
      {"users/%", 400},
      {"users/%ff", 400},
      {"users/1001?unknown=1", 400},
      {"users/1001?expand", 400},
      {"users/1001?expand=everything", 400},
      {"users/1001?expand=role&&expand=role", 200},
      {"identity?a=b", 400},
      {"users/1001/vehicles/3001?plate=what?/", 404},
  };
  for (const Row& row : rows) {
    const Answer answer = get(row.path);
    EXPECT_EQ(answer.status, row.status) << row.path;
    if (row.status != 200) {
      EXPECT_TRUE(answer.parsed()["message"].is_string()) << row.path;
    }
  }
  const Answer wrongMethod = put("users/1001");
  EXPECT_EQ(wrongMethod.status, 405);
  EXPECT_EQ(wrongMethod.header("Allow"), "GET, POST");
  EXPECT_EQ(post("users/1001", "{}", "application/json").status, 415);
  EXPECT_EQ(get(std::string(9000, 'x')).status, 414);
  EXPECT_EQ(post("users/1001", std::string(2'000'000, 'x'), "text/plain").status, 413);
  useToken("");
  EXPECT_EQ(get("nothing").status, 401) << "strangers are not told which resources there are";
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
  EXPECT_EQ(get("identity").status, 200);
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
  const json trips = read("users/1001/trips?expand=points&expand=events&expand=scores");
  ASSERT_EQ(postForm("users/1001", {{"publicDisplayName", "Änn", "", ""}}).status, 200);
  start();
  EXPECT_EQ(read("users/1001")["publicDisplayName"], "Änn");
  admin("reset", json::object());
  EXPECT_EQ(read("users/1001")["publicDisplayName"], "Anna K.");
  EXPECT_TRUE(read("users/1001/trips?expand=points&expand=events&expand=scores") == trips)
      << "the same time gives the same data";
}

}  // namespace
}  // namespace orvane::sandbox::test
