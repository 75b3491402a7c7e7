// SPDX-License-Identifier: Apache-2.0
// Requests per second that the local backend answers to one client after the other over one
// connection (TLS, a small answer from its data), with an empty record and nobody watching, with
// 10,000 requests on record, and with a browser's page watching them besides; and what one request
// more on record costs in itself.
#include "Sandbox.h"

#include "RequestLog.h"

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

using namespace orvane::sandbox;

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "orvane-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder");
    path_ = pattern;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

class Client {
 public:
  explicit Client(const Sandbox& sandbox) : authority_(sandbox.certificateAuthority().string()) {
    curl_easy_setopt(easy_.get(), CURLOPT_CAINFO, authority_.c_str());
    curl_easy_setopt(easy_.get(), CURLOPT_PROXY, "");
    curl_easy_setopt(easy_.get(), CURLOPT_COOKIEFILE, "");
    curl_easy_setopt(easy_.get(), CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy_.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy_.get(), CURLOPT_WRITEFUNCTION, &forget);
  }

  void authorize(const std::string& token) {
    headers_.reset(curl_slist_append(nullptr, ("Authorization: Bearer " + token).c_str()));
    curl_easy_setopt(easy_.get(), CURLOPT_HTTPHEADER, headers_.get());
  }

  // As long as the flag is not set, however long the answer goes on.
  void watch(const std::string& url, const std::atomic<bool>& isOver) {
    curl_easy_setopt(easy_.get(), CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(easy_.get(), CURLOPT_XFERINFODATA, &isOver);
    curl_easy_setopt(easy_.get(), CURLOPT_XFERINFOFUNCTION, &askWhetherOver);
    get(url);
  }

  bool get(const std::string& url) {
    curl_easy_setopt(easy_.get(), CURLOPT_URL, url.c_str());
    long status = 0;
    const bool isAnswered = curl_easy_perform(easy_.get()) == CURLE_OK;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
    return isAnswered && status == 200;
  }

 private:
  static std::size_t forget(char*, std::size_t, std::size_t count, void*) { return count; }
  static int askWhetherOver(void* isOver, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<const std::atomic<bool>*>(isOver)->load() ? 1 : 0;
  }

  const std::string authority_;
  std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> easy_{curl_easy_init(), &curl_easy_cleanup};
  std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers_{nullptr,
                                                                       &curl_slist_free_all};
};

// The page in a browser, as far as the sandbox sees it.
class Page {
 public:
  explicit Page(const Sandbox& sandbox) : client_(sandbox) {
    const std::string link = sandbox.newInspectorLink();
    if (!client_.get(link)) throw std::runtime_error("the page does not open");
    thread_ = std::thread([this, url = link.substr(0, link.find("/?")) + "/inspector/api/events"] {
      client_.watch(url, isOver_);
    });
  }
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;
  ~Page() {
    isOver_ = true;
    thread_.join();
  }

 private:
  Client client_;
  std::atomic<bool> isOver_ = false;
  std::thread thread_;
};

void answer(benchmark::State& state, int onRecord, bool isWatched) {
  const TemporaryFolder folder;
  SandboxOptions options;
  options.backend.folder = folder.path();
  const Sandbox sandbox(options);
  const std::string url = sandbox.baseUrl() + "/kavra/api/sdk/users/1001";
  Client client(sandbox);
  client.authorize(Sandbox::sampleToken());
  for (int i = 0; i <= onRecord; ++i) {
    if (!client.get(url)) return state.SkipWithError("refused");
  }
  std::unique_ptr<Page> page;
  if (isWatched) page = std::make_unique<Page>(sandbox);
  for (auto _ : state) {
    if (!client.get(url)) state.SkipWithError("refused");
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(answer, noRecord, 0, false)->UseRealTime();
BENCHMARK_CAPTURE(answer, fullRecord, 10'000, false)->UseRealTime();
BENCHMARK_CAPTURE(answer, watched, 10'000, true)->UseRealTime();

void keepOnRecord(benchmark::State& state) {
  RequestLog log;
  const Request request{.method = "GET",
                        .path = "/kavra/api/sdk/users/1001",
                        .query = "",
                        .headers = {{"Host", "127.0.0.1:8443"},
                                    {"Authorization", "Bearer " + Sandbox::sampleToken()},
                                    {"Accept", "*/*"}},
                        .body = ""};
  const Reply reply = jsonReply(std::string(800, ' '));
  for (auto _ : state) log.add(request, reply, {.user = "1001", .fault = ""}, 0, {});
}
BENCHMARK(keepOnRecord);

}  // namespace
