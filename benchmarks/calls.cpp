// SPDX-License-Identifier: Apache-2.0
// Calls per second to one server over TLS, HTTP/1.1 and HTTP/2: whole calls through
// UserService::fetch, with resolution, main queue and decoding, beside a bare libcurl multi loop
// with the same connection settings that does nothing with the answers.
#include "tests/runtime/support/HTTP2.h"
#include "tests/runtime/support/TestServer.h"
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace orvane;

constexpr int callsPerRound = 2000;
constexpr std::string_view token = "token";

constexpr std::string_view userAnswer =
    R"({"userId":"42","externalReferenceId":"policy-2024-42","userProfileId":"profile-42",)"
    R"("activated":true,"avatar":"https://images.example/avatars/42.jpg","firstName":"Ann",)"
    R"("lastName":"Müller","gender":"female","publicDisplayName":"ann","city":"Zürich",)"
    R"("subdivision":"Zürich","subdivisionCode":"ZH","postalcode":"8001","country":"Switzerland",)"
    R"("countryCode":"CH","formattedAddress":"Bahnhofstrasse 1, 8001 Zürich, Switzerland",)"
    R"("dateOfBirth":"1987-03-15","email":"ann@mail.example","phone":"+41 44 000 00 00",)"
    R"("acceptedTerms":true,"acceptedTermsDate":1700000000000,"driverType":"COMMUTER",)"
    R"("dataCollectionType":"MOBILE","scoringType":"IMS","enrollmentModelType":"MOBILE_FLEXIBLE",)"
    R"("accountRole":"OWNER"})";

// One for each version of HTTP.
class Backend {
 public:
  explicit Backend(std::int64_t version)
      : server_([version](ServerConnection& connection,
                          std::size_t) { version == 2 ? serve2(connection) : serve1(connection); },
                authority_.issue({}), version == 2 ? "h2" : "") {}

  [[nodiscard]] std::string url() const { return server_.url(""); }
  [[nodiscard]] std::string authorityPEM() const { return authority_.pem(); }

 private:
  static void serve1(ServerConnection& connection) {
    while (connection.receive()) connection.answer(200, userAnswer);
  }

  static void serve2(ServerConnection& connection) {
    HTTP2Connection http(connection);
    while (const auto stream = http.receive()) http.answer(*stream, userAnswer);
  }

  Authority authority_;
  TestServer server_;
};

// Both sides talk to the same server. A user's answer tells an identifier, too, when that is looked
// up.
const Backend& backendOf(const benchmark::State& state) {
  static const Backend* const backends[] = {new Backend(1), new Backend(2)};
  return *backends[state.range(0) - 1];
}

int callsAtOnce(const benchmark::State& state) { return static_cast<int>(state.range(1)); }

void reportCalls(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * callsPerRound);
}

// The version of HTTP, and how many calls are under way at once.
void atOnce(benchmark::internal::Benchmark* measured) {
  measured->ArgNames({"HTTP", "at once"})->ArgsProduct({{1, 2}, {1, 32, 1000}});
  measured->Unit(benchmark::kMillisecond)->UseRealTime();
}

// Keeps calls under way until a round is done. Handlers run on the transport's thread, one at a
// time.
class Round {
 public:
  Round(const UserService& users, int atOnce) : users_(users), atOnce_(atOnce) {}

  bool run() {
    for (int i = 0; i < atOnce_; ++i) startOne();
    MainQueue::main().run();
    return failures_ == 0;
  }

 private:
  void startOne() {
    users_.fetch(std::nullopt, {}, [this](Result<User> user) {
      if (!user) ++failures_;
      if (++finished_ + atOnce_ <= callsPerRound) return startOne();
      if (finished_ == callsPerRound) MainQueue::main().stop();
    });
  }

  const UserService& users_;
  const int atOnce_;
  std::atomic<int> failures_ = 0;
  std::atomic<int> finished_ = 0;
};

void fetchUsers(benchmark::State& state) {
  const Backend& backend = backendOf(state);
  const auto runtime = Runtime::install({.baseURL = backend.url(),
                                         .tokens = std::string(token),
                                         .transport = {.caPEM = backend.authorityPEM()}});
  if (!runtime) return state.SkipWithError("not installed");
  const UserService users(Identity{"key", "ann"});
  for (auto _ : state) {
    if (!Round(users, callsAtOnce(state)).run()) state.SkipWithError("a call failed");
  }
  reportCalls(state);
  runtime.value()->shutdown();
}
BENCHMARK(fetchUsers)->Apply(&atOnce);

std::size_t keep(char* bytes, std::size_t, std::size_t count, void* text) {
  static_cast<std::string*>(text)->append(bytes, count);
  return count;
}

// What one would write by hand: handles that are used again, connections that are kept, and for
// each request its own URL and header.
class BareLoop {
 public:
  BareLoop(const Backend& backend, int atOnce)
      : multi_(curl_multi_init()),
        root_(backend.url()),
        transfers_(static_cast<std::size_t>(atOnce)) {
    curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, 8L);
    std::string authority = backend.authorityPEM();
    curl_blob trusted{authority.data(), authority.size(), CURL_BLOB_COPY};
    const TransportOptions limits;
    for (Transfer& transfer : transfers_) {
      transfer.easy = curl_easy_init();
      curl_easy_setopt(transfer.easy, CURLOPT_CAINFO_BLOB, &trusted);
      curl_easy_setopt(transfer.easy, CURLOPT_CAPATH, nullptr);
      curl_easy_setopt(transfer.easy, CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
      curl_easy_setopt(transfer.easy, CURLOPT_PROTOCOLS_STR, "https,http");
      curl_easy_setopt(transfer.easy, CURLOPT_PROXY, "");
      curl_easy_setopt(transfer.easy, CURLOPT_CONNECTTIMEOUT_MS,
                       long{limits.connectTimeout.count()});
      curl_easy_setopt(transfer.easy, CURLOPT_TIMEOUT_MS, long{limits.totalTimeout.count()});
      curl_easy_setopt(transfer.easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
      curl_easy_setopt(transfer.easy, CURLOPT_LOW_SPEED_TIME, long{limits.idleTimeout.count()});
      curl_easy_setopt(transfer.easy, CURLOPT_ACCEPT_ENCODING, "");
      curl_easy_setopt(transfer.easy, CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_2TLS});
      curl_easy_setopt(transfer.easy, CURLOPT_PIPEWAIT, 1L);
      curl_easy_setopt(transfer.easy, CURLOPT_NOSIGNAL, 1L);
      curl_easy_setopt(transfer.easy, CURLOPT_WRITEFUNCTION, keep);
      curl_easy_setopt(transfer.easy, CURLOPT_WRITEDATA, &transfer.answer);
      curl_easy_setopt(transfer.easy, CURLOPT_PRIVATE, &transfer);
    }
  }
  BareLoop(const BareLoop&) = delete;
  BareLoop& operator=(const BareLoop&) = delete;
  ~BareLoop() {
    for (const Transfer& transfer : transfers_) {
      curl_easy_cleanup(transfer.easy);
      curl_slist_free_all(transfer.headers);
    }
    curl_multi_cleanup(multi_);
  }

  bool run() {
    int started = 0;
    int finished = 0;
    for (Transfer& transfer : transfers_) {
      start(transfer);
      ++started;
    }
    while (finished < callsPerRound) {
      int running = 0;
      curl_multi_perform(multi_, &running);
      int left = 0;
      while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
        Transfer* transfer = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        if (message->data.result != CURLE_OK || transfer->answer != userAnswer) return false;
        ++finished;
        transfer->answer.clear();
        curl_multi_remove_handle(multi_, transfer->easy);
        if (started < callsPerRound) {
          start(*transfer);
          ++started;
        }
      }
      if (finished < callsPerRound) curl_multi_poll(multi_, nullptr, 0, 1000, nullptr);
    }
    return true;
  }

 private:
  struct Transfer {
    CURL* easy = nullptr;
    curl_slist* headers = nullptr;
    std::string answer;
  };

  void start(Transfer& transfer) {
    const std::string url = root_ + "/kavra/api/sdk/users/" + userID_;
    const std::string authorization = "Authorization: Bearer " + std::string(token);
    curl_slist_free_all(transfer.headers);
    transfer.headers = curl_slist_append(nullptr, authorization.c_str());
    curl_easy_setopt(transfer.easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(transfer.easy, CURLOPT_HTTPHEADER, transfer.headers);
    curl_multi_add_handle(multi_, transfer.easy);
  }

  CURLM* const multi_;
  const std::string root_;
  const std::string userID_ = "42";
  std::vector<Transfer> transfers_;
};

void bareLoop(benchmark::State& state) {
  BareLoop loop(backendOf(state), callsAtOnce(state));
  for (auto _ : state) {
    if (!loop.run()) state.SkipWithError("a transfer failed");
  }
  reportCalls(state);
}
BENCHMARK(bareLoop)->Apply(&atOnce);

}  // namespace
