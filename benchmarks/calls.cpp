// SPDX-License-Identifier: Apache-2.0
// Calls per second to one server over TLS, HTTP/1.1 and HTTP/2: whole calls through
// UserService::fetch, with resolution, main queue and decoding, beside a bare libcurl multi loop
// with the same connection settings that does nothing with the answers. Counted besides, for a
// call: the microseconds of processor time that its threads take, without the server's, and what
// they allocate of the library's own (libcurl and OpenSSL allocate in their own way).
#include "tests/runtime/support/HTTP2.h"
#include "tests/runtime/support/TestServer.h"
#include <Orvane/Orvane.h>
#include <Orvane/Runtime.h>

#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

// What a thread has allocated. Counted by each for itself: a number that they shared would have
// them wait for one another.
struct alignas(64) Counter {
  std::atomic<std::size_t> count = 0;
};

Counter counters[256];
std::atomic<std::size_t> threadCount = 0;
thread_local Counter* counter = nullptr;
thread_local bool isServer = false;

void countAllocation() {
  if (isServer) return;
  if (counter == nullptr) counter = &counters[threadCount++ % std::size(counters)];
  counter->count.store(counter->count.load(std::memory_order_relaxed) + 1,
                       std::memory_order_relaxed);
}

std::size_t allocations() {
  std::size_t sum = 0;
  for (const Counter& each : counters) sum += each.count;
  return sum;
}

}  // namespace

// Never inlined: GCC would see memory of malloc's given to delete, and warn.
[[gnu::noinline]] void* operator new(std::size_t size) {
  countAllocation();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using namespace orvane;

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
      : server_(
            [version](ServerConnection& connection, std::size_t) {
              isServer = true;
              version == 2 ? serve2(connection) : serve1(connection);
            },
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

int callsPerRound(int atOnce) { return std::max(2000, atOnce); }

// The processor time that a thread has taken, in microseconds.
double timeOf(clockid_t thread) {
  timespec time{};
  clock_gettime(thread, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

clockid_t clockOfThisThread() {
  clockid_t clock{};
  pthread_getcpuclockid(pthread_self(), &clock);
  return clock;
}

// What the calls of a benchmark cost besides the time that they take.
class Costs {
 public:
  explicit Costs(std::vector<clockid_t> threads) : threads_(std::move(threads)) {}

  void report(benchmark::State& state) const {
    const auto calls = state.iterations() * callsPerRound(callsAtOnce(state));
    const auto perCall = [calls](double total) { return total / static_cast<double>(calls); };
    state.SetItemsProcessed(calls);
    state.counters["cpu_us"] = perCall(time() - time_);
    state.counters["allocations"] = perCall(static_cast<double>(allocations() - allocations_));
  }

 private:
  [[nodiscard]] double time() const {
    double sum = 0;
    for (const clockid_t thread : threads_) sum += timeOf(thread);
    return sum;
  }

  const std::vector<clockid_t> threads_;
  const double time_ = time();
  const std::size_t allocations_ = allocations();
};

// The version of HTTP, and how many calls are under way at once.
void atOnce(benchmark::internal::Benchmark* measured) {
  measured->ArgNames({"HTTP", "at once"})->ArgsProduct({{1, 2}, {1, 32, 1000, 10000}});
  measured->Unit(benchmark::kMillisecond)->UseRealTime();
}

// Keeps calls under way until a round is done. Handlers run on the transport's thread, one at a
// time.
class Round {
 public:
  Round(const UserService& users, int atOnce)
      : users_(users), atOnce_(atOnce), calls_(callsPerRound(atOnce)) {}

  bool run() {
    for (int i = 0; i < atOnce_; ++i) startOne();
    MainQueue::main().run();
    return failures_ == 0;
  }

 private:
  void startOne() {
    users_.fetch(std::nullopt, {}, [this](Result<User> user) {
      if (!user) ++failures_;
      if (++finished_ + atOnce_ <= calls_) return startOne();
      if (finished_ == calls_) MainQueue::main().stop();
    });
  }

  const UserService& users_;
  const int atOnce_;
  const int calls_;
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
  clockid_t transport{};
  const auto request =
      users.fetch({}, {}, [&](const Result<User>&) { transport = clockOfThisThread(); });
  MainQueue::main().runUntil(request);
  const Costs costs({clockOfThisThread(), transport});
  for (auto _ : state) {
    if (!Round(users, callsAtOnce(state)).run()) state.SkipWithError("a call failed");
  }
  costs.report(state);
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
    const int calls = callsPerRound(static_cast<int>(transfers_.size()));
    int started = 0;
    int finished = 0;
    for (Transfer& transfer : transfers_) {
      start(transfer);
      ++started;
    }
    while (finished < calls) {
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
        if (started < calls) {
          start(*transfer);
          ++started;
        }
      }
      if (finished < calls) curl_multi_poll(multi_, nullptr, 0, 1000, nullptr);
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
  const Costs costs({clockOfThisThread()});
  for (auto _ : state) {
    if (!loop.run()) state.SkipWithError("a transfer failed");
  }
  costs.report(state);
}
BENCHMARK(bareLoop)->Apply(&atOnce);

}  // namespace
