// SPDX-License-Identifier: Apache-2.0
// Calls per second to one server over TLS: whole calls through UserService::fetch, with resolution,
// main queue and decoding, beside a bare libcurl multi loop with the same connection settings that
// does nothing with the answers.
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

struct Backend {
  Authority authority;
  TestServer server{[](ServerConnection& connection, const ReceivedRequest& request) {
                      const bool isLookup = request.target().ends_with("/identity");
                      connection.answer(200, isLookup ? R"({"userId":"42"})" : userAnswer);
                    },
                    authority.issue({})};
  std::string authorityPEM = authority.pem();
};

// Both sides talk to the same server.
Backend& backend() {
  static Backend& backend = *new Backend;
  return backend;
}

void reportCalls(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * callsPerRound);
}

// So many calls are under way at once.
void atOnce(benchmark::internal::Benchmark* measured) {
  measured->Arg(1)->Arg(32)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();
}

// Keeps calls under way until a round is done. Handlers run on the transport's thread, one at a
// time.
class Round {
 public:
  Round(const UserService& users, int callsAtOnce) : users_(users), callsAtOnce_(callsAtOnce) {}

  bool run() {
    for (int i = 0; i < callsAtOnce_; ++i) startOne();
    MainQueue::main().run();
    return failures_ == 0;
  }

 private:
  void startOne() {
    users_.fetch(std::nullopt, {}, [this](Result<User> user) {
      if (!user) ++failures_;
      if (++finished_ + callsAtOnce_ <= callsPerRound) return startOne();
      if (finished_ == callsPerRound) MainQueue::main().stop();
    });
  }

  const UserService& users_;
  const int callsAtOnce_;
  std::atomic<int> failures_ = 0;
  std::atomic<int> finished_ = 0;
};

void fetchUsers(benchmark::State& state) {
  const auto runtime = Runtime::install({.baseURL = backend().server.url(""),
                                         .tokens = std::string(token),
                                         .transport = {.caPEM = backend().authorityPEM}});
  if (!runtime) return state.SkipWithError("not installed");
  const UserService users(Identity{"key", "ann"});
  for (auto _ : state) {
    if (!Round(users, static_cast<int>(state.range(0))).run()) state.SkipWithError("a call failed");
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
  explicit BareLoop(std::size_t callsAtOnce) : multi_(curl_multi_init()), transfers_(callsAtOnce) {
    curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, 8L);
    curl_blob trusted{backend().authorityPEM.data(), backend().authorityPEM.size(),
                      CURL_BLOB_NOCOPY};
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
  const std::string root_ = backend().server.url("");
  const std::string userID_ = "42";
  std::vector<Transfer> transfers_;
};

void bareLoop(benchmark::State& state) {
  BareLoop loop(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    if (!loop.run()) state.SkipWithError("a transfer failed");
  }
  reportCalls(state);
}
BENCHMARK(bareLoop)->Apply(&atOnce);

}  // namespace
