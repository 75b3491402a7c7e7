// SPDX-License-Identifier: Apache-2.0
// Calls and downloads over HTTP/2, through a server that many sites run: nghttpx, before the local
// backend.
#include "Process.h"
#include "SandboxProcess.h"
#include <Orvane/Common/All.h>
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Orvane.h>
#include <Orvane/Runtime/CurlDownloader.h>
#include <Orvane/Runtime/Runtime.h>

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvane::test {
namespace {

using testing::Each;
using testing::SizeIs;

/// What a line of the access log tells.
struct Access {
  std::string port;  ///< the client's: a connection
  std::string protocol;
  std::string target;
};

/// nghttpx before a backend, with the backend's certificate.
class Proxy {
 public:
  explicit Proxy(const SandboxProcess& backend) {
    // It is given a socket that listens already, and nobody waits until it is ready.
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (::bind(listener, generic, size) != 0 || ::listen(listener, 128) != 0 ||
        ::getsockname(listener, generic, &size) != 0) {
      throw std::runtime_error("no loopback interface");
    }
    port_ = std::to_string(ntohs(address.sin_port));
    const std::string data = backend.folder() / "data/";
    const std::string backendPort = backend.baseURL().substr(backend.baseURL().rfind(':') + 1);
    process_ = std::make_unique<Process>(
        ORVANE_NGHTTPX,
        std::vector<std::string>{"--conf=/dev/null", "--single-process", "--workers=1",
                                 "--log-level=ERROR", "--frontend=127.0.0.1," + port_,
                                 "--backend=127.0.0.1," + backendPort + ";;tls;sni=localhost",
                                 "--no-ocsp", "--cacert=" + backend.caFile(),
                                 "--accesslog-file=" + log(), "--accesslog-write-early",
                                 "--accesslog-format=$remote_port $alpn $path", data + "server.key",
                                 data + "server.pem"},
        Environment{{"NGHTTPX_ACCEPT_1", "tcp," + std::to_string(listener)}},
        Process::Streams::quiet);
    ::close(listener);
  }

  [[nodiscard]] std::string url() const { return "https://127.0.0.1:" + port_; }

  /// What has been answered so far.
  [[nodiscard]] std::vector<Access> accesses() const {
    std::vector<Access> all;
    std::ifstream file(log());
    for (Access access; file >> access.port >> access.protocol >> access.target;) {
      all.push_back(access);
    }
    return all;
  }

 private:
  [[nodiscard]] std::string log() const { return folder_ / "access"; }

  const TemporaryFolder folder_;
  std::string port_;
  std::unique_ptr<Process> process_;
};

// How many requests each connection has carried.
std::map<std::string, std::size_t> byConnection(const std::vector<Access>& accesses) {
  std::map<std::string, std::size_t> counts;
  for (const Access& access : accesses) ++counts[access.port];
  return counts;
}

std::string content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class HTTP2Test : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::ifstream(ORVANE_NGHTTPX)) GTEST_SKIP() << "nghttpx lacks: ./dev setup http2";
    sandbox_ = std::make_unique<SandboxProcess>();
    proxy_ = std::make_unique<Proxy>(*sandbox_);
  }

  [[nodiscard]] TransportOptions transport() const { return {.caFile = sandbox_->caFile()}; }

  std::unique_ptr<SandboxProcess> sandbox_;
  std::unique_ptr<Proxy> proxy_;
};

TEST_F(HTTP2Test, CarriesManyCallsOverOneConnection) {
  const Result<Runtime> runtime =
      Runtime::install({.baseURL = proxy_->url(),
                        .tokens = sandbox_->developmentToken(),
                        .transport = transport(),
                        .deviceIdentifierFile = sandbox_->folder() / "device"});
  ASSERT_TRUE(runtime) << runtime.error()->message();
  const Identity anna{sandbox_->apiKey(), "anna.keller"};
  const UserService users(anna);
  const TripService trips(anna);

  const auto user = users.fetch().wait();
  ASSERT_TRUE(user) << user.errorOr(NetworkError::unknown).description();
  const auto list = trips.fetch(std::nullopt, {TripService::Filter::cursor(20, 0)}).wait();
  ASSERT_TRUE(list && !list->empty()) << list.errorOr(NetworkError::unknown).description();

  // Reads and writes, all at once.
  constexpr std::size_t count = 100;
  std::vector<Operation<Trip>> operations;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string id = list->at(i % list->size()).id.value_or("");
    operations.push_back(i % 4 == 0 ? trips.update(id, std::nullopt, Trip::Purpose::business)
                                    : trips.fetch(id, {TripService::Expansion::geometry}));
  }
  const auto answers = all(std::move(operations)).wait();
  ASSERT_TRUE(answers) << answers.errorOr(NetworkError::unknown).description();
  ASSERT_THAT(*answers, SizeIs(count));
  for (std::size_t i = 0; i < count; ++i) {
    ASSERT_TRUE(answers->at(i)) << answers->at(i).error()->description();
    EXPECT_EQ(answers->at(i)->id, list->at(i % list->size()).id) << i;
  }

  // A refusal keeps its words.
  const auto refusal = trips.fetch("no-such-trip", {}).wait();
  ASSERT_TRUE(refusal.error());
  EXPECT_EQ(refusal.error()->as<NetworkError>()->statusCode(), 404);

  const std::vector<Access> accesses = proxy_->accesses();
  EXPECT_THAT(accesses, Each(testing::Field(&Access::protocol, "h2")));
  EXPECT_EQ(accesses.size(), 1 + 1 + 1 + count + 1);  // "identity" came first
  EXPECT_THAT(byConnection(accesses), SizeIs(1));
  runtime->shutdown();
}

TEST_F(HTTP2Test, DownloadsFiles) {
  const auto downloader = CurlDownloader::make(transport()).value().value();
  const std::string target = "/downloads/DFU_4417_Release___2_2_2.zip";
  const auto download = [&](const std::string& root, const std::string& path) {
    const auto done = wait<Unit>([&](Completion<Unit> then) {
      return downloader->download(*URL::parse(root + target), path, nullptr, std::move(then));
    });
    EXPECT_TRUE(done) << done.errorOr(NetworkError::unknown).description();
  };
  const std::string direct = sandbox_->folder() / "direct";
  download(sandbox_->baseURL(), direct);
  for (const char* name : {"first", "second"}) {
    const std::string path = sandbox_->folder() / name;
    download(proxy_->url(), path);
    EXPECT_TRUE(content(path) == content(direct)) << name;
  }
  const std::vector<Access> accesses = proxy_->accesses();
  EXPECT_THAT(accesses, SizeIs(2));
  EXPECT_THAT(accesses, Each(testing::Field(&Access::protocol, "h2")));
  EXPECT_THAT(byConnection(accesses), SizeIs(1));
}

}  // namespace
}  // namespace orvane::test
