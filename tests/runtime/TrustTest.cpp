// SPDX-License-Identifier: Apache-2.0
// Who is trusted, beyond the authorities, and what this side shows of itself.
#include "tests/runtime/support/Calls.h"
#include "tests/runtime/support/TestServer.h"
#include "tests/support/TemporaryFolder.h"
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>

#include <string>
#include <utility>

namespace orvane {
namespace {

using Kind = TransportError::Kind;
using testing::HasSubstr;

const std::string ok = "ok";

TEST(TrustTest, PinsHoldWhoeverVouchesForTheServer) {
  const Authority authority;
  const Credentials credentials = authority.issue({});
  const std::string other = authority.issue({}).pin();
  const TestServer server(answering(ok), credentials);
  const auto outcome = [&](std::vector<std::string> pins) {
    return get(*managerWith({.caPEM = authority.pem(), .pinnedPublicKeys = std::move(pins)}),
               server.url());
  };
  EXPECT_EQ(outcome({credentials.pin()}), ok);
  EXPECT_EQ(outcome({other, credentials.pin()}), ok);
  EXPECT_EQ(kindOf(outcome({other})), Kind::tls);
  EXPECT_EQ(server.requests().size(), 2U);
}

TEST(TrustTest, RevokedCertificatesAreNotTrusted) {
  const Authority authority;
  const Credentials credentials = authority.issue({});
  const TestServer server(answering(ok), credentials);
  const TemporaryFolder folder;
  const auto outcome = [&](const std::string& list) {
    writeFile(folder / "list.pem", list);
    return get(*managerWith({.caPEM = authority.pem(), .revocationListFile = folder / "list.pem"}),
               server.url());
  };
  EXPECT_EQ(outcome(authority.revocationList()), ok);
  EXPECT_EQ(kindOf(outcome(authority.revocationList(&credentials))), Kind::tls);
  EXPECT_EQ(kindOf(outcome(Authority().revocationList())), Kind::tls) << "nobody's list";
}

TEST(TrustTest, ShowsACertificateWhereOneIsAskedFor) {
  const Authority authority;
  const Authority clients;
  const TestServer server(answering(ok), authority.issue({}), clients.credentials());
  const Credentials own = clients.issue({});
  const TemporaryFolder folder;
  writeFile(folder / "certificate.pem", own.pem());
  writeFile(folder / "key.pem", own.keyPEM("open"));
  writeFile(folder / "both.pem", own.pem() + own.keyPEM());
  const auto outcome = [&](TransportOptions options) {
    options.caPEM = authority.pem();
    return get(*managerWith(std::move(options)), server.url());
  };
  const TransportOptions rows[] = {
      {.clientCertificatePEM = own.pem(), .clientKeyPEM = own.keyPEM()},
      {.clientCertificatePEM = own.pem() + own.keyPEM()},
      {.clientCertificateFile = folder / "both.pem"},
      {.clientCertificateFile = folder / "certificate.pem",
       .clientKeyFile = folder / "key.pem",
       .clientKeyPassword = "open"},
      {.clientCertificateFile = folder / "certificate.pem",
       .clientKeyPEM = own.keyPEM("open"),
       .clientKeyPassword = "open"},
  };
  for (const TransportOptions& options : rows) EXPECT_EQ(outcome(options), ok);

  const Credentials stranger = authority.issue({});
  EXPECT_FALSE(outcome({}));
  EXPECT_FALSE(
      outcome({.clientCertificatePEM = stranger.pem(), .clientKeyPEM = stranger.keyPEM()}));
  EXPECT_EQ(server.requests().size(), std::size(rows));
}

TEST(TrustTest, RefusesOptionsThatCannotWork) {
  const Authority authority;
  const Credentials own = authority.issue({});
  const std::string other = authority.issue({}).keyPEM();
  const std::pair<TransportOptions, const char*> rows[] = {
      {{.connectTimeout = std::chrono::milliseconds(-1)}, "a time-out is negative"},
      {{.userAgent = "a\r\nX-Other: b"}, "userAgent is not UTF-8, or holds control characters"},
      {{.caFile = "/no/such/file"}, "caFile can't be read: /no/such/file"},
      {{.caFile = "/dev/null"}, "caFile holds no certificate: /dev/null"},
      {{.caPEM = "no certificate"}, "caPEM holds no certificate"},
      {{.caFile = "/dev/null", .caPEM = "x"}, "caFile and caPEM exclude one another"},
      {{.pinnedPublicKeys = {own.pin(), "sha256//" + own.pin()}},
       "pinnedPublicKeys: one is no SHA-256 in base64"},
      {{.revocationListFile = "/dev/null"},
       "revocationListFile holds no list, or can't be read: /dev/null"},
      {{.clientCertificateFile = "/no/such/file"},
       "clientCertificateFile can't be read: /no/such/file"},
      {{.clientCertificatePEM = "x"}, "clientCertificatePEM holds no certificate"},
      {{.clientCertificateFile = "/dev/null", .clientCertificatePEM = "x"},
       "clientCertificateFile and clientCertificatePEM exclude one another"},
      {{.clientKeyPEM = own.keyPEM()}, "a client key needs a client certificate"},
      {{.clientCertificatePEM = own.pem()},
       "the client key can't be read, or clientKeyPassword is wrong"},
      {{.clientCertificatePEM = own.pem(),
        .clientKeyPEM = own.keyPEM("open"),
        .clientKeyPassword = "shut"},
       "the client key can't be read, or clientKeyPassword is wrong"},
      {{.clientCertificatePEM = own.pem(), .clientKeyPEM = other},
       "the client key is not that of the certificate"},
  };
  for (const auto& [options, message] : rows) {
    const auto made = CurlRequestManager::make(options);
    ASSERT_TRUE(made.error()) << message;
    EXPECT_EQ(made.error()->message(), message);
  }
}

// The environment must not make keys leave the process unasked; it is read when libcurl is
// initialised, hence in a process of its own.
TEST(TrustDeathTest, WritesKeysOnlyWhereThatIsAllowed) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const auto run = [] {
    const TemporaryFolder folder;
    const std::string file = folder / "keys";
    ::setenv("SSLKEYLOGFILE", file.c_str(), 1);
    const Authority authority;
    const TestServer server(answering(ok), authority.issue({}));
    for (const bool isAllowed : {false, true}) {
      const auto manager = managerWith({.caPEM = authority.pem(), .allowsKeyLog = isAllowed});
      if (get(*manager, server.url()) != ok) std::_Exit(2);
      if (contentsOf(file).empty() == isAllowed) std::_Exit(3);
    }
    std::_Exit(0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace orvane
