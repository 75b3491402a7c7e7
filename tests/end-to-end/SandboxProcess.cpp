// SPDX-License-Identifier: Apache-2.0
#include "SandboxProcess.h"

#include <Orvane/Common/Await.h>

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace orvane::test {
namespace {

// Tells when a file is moved into a folder.
class Arrivals {
 public:
  explicit Arrivals(const std::string& folder) : descriptor_(::inotify_init1(IN_CLOEXEC)) {
    if (::inotify_add_watch(descriptor_, folder.c_str(), IN_MOVED_TO) < 0) {
      throw std::runtime_error("inotify does not watch " + folder);
    }
  }
  ~Arrivals() { ::close(descriptor_); }
  Arrivals(const Arrivals&) = delete;
  Arrivals& operator=(const Arrivals&) = delete;

  // Waits for one. False when the process ends first, or patience does.
  [[nodiscard]] bool wait(const Process& process) const {
    std::array<pollfd, 2> polled{{{descriptor_, POLLIN, 0}, {process.endDescriptor(), POLLIN, 0}}};
    const auto limit = std::chrono::milliseconds(patience).count();
    ::poll(polled.data(), polled.size(), static_cast<int>(limit));
    return polled[0].revents != 0;
  }

 private:
  int descriptor_;
};

Environment inheritedPath() {
  const char* path = std::getenv("PATH");
  return {{"PATH", path == nullptr ? "" : path}};
}

}  // namespace

SandboxProcess::SandboxProcess(const std::vector<std::string>& arguments) {
  // A folder of its own: nothing but the file is moved into it.
  const TemporaryFolder announced;
  const std::string readyFile = announced.path() + "/ready.json";
  const Arrivals arrivals(announced.path());
  std::vector<std::string> words{"--data", folder_.path() + "/data", "--ready-file", readyFile};
  words.insert(words.end(), arguments.begin(), arguments.end());
  if (std::ranges::find(words, "--weeks") == words.end())
    words.insert(words.end(), {"--weeks", "1"});
  process_ = std::make_unique<Process>(ORVANE_SANDBOX_EXECUTABLE, words, inheritedPath(),
                                       Process::Streams::quiet);
  if (!arrivals.wait(*process_)) throw std::runtime_error("the sandbox does not start");
  std::ifstream(readyFile) >> description_;

  auto transport = CurlRequestManager::make({.caFile = caFile()});
  if (!transport.value()) throw std::runtime_error(transport.error()->message());
  transport_ = *std::move(transport).value();
}

SandboxProcess::~SandboxProcess() {
  process_->send(SIGTERM);
  process_->wait();
}

std::string SandboxProcess::text(const char* member) const {
  return description_.at(member).get<std::string>();
}

Identity SandboxProcess::identity() const {
  const auto& first = description_.at("identities").at(0);
  return {text("apiKey"), first.at("externalReferenceId").get<std::string>()};
}

std::string SandboxProcess::userID() const {
  return description_.at("identities").at(0).at("userId").get<std::string>();
}

std::string SandboxProcess::developmentToken() const {
  return description_.at("identities").at(0).at("developmentToken").get<std::string>();
}

void SandboxProcess::misbehave(const nlohmann::json& how) {
  admin(Verb::post, "misbehave", how.dump());
}

void SandboxProcess::behave() {
  admin(Verb::delete_, "misbehave");
  admin(Verb::delete_, "requests");
}

namespace {

std::string requestOf(const nlohmann::json& entry) {
  constexpr std::string_view root = "/kavra/api/sdk/";
  auto path = entry.at("path").get<std::string>();
  if (path.starts_with(root)) path.erase(0, root.size());
  return entry.at("method").get<std::string>() + " " + path;
}

}  // namespace

std::vector<SandboxProcess::Arrival> SandboxProcess::arrivals() {
  std::vector<Arrival> all;
  const auto log = nlohmann::json::parse(admin(Verb::get, "requests"));
  for (const auto& entry : log) all.push_back({requestOf(entry), entry.at("status")});
  return all;
}

std::string SandboxProcess::lastRequest() {
  const auto log = nlohmann::json::parse(admin(Verb::get, "requests"));
  if (log.empty()) return {};
  const auto query = log.back().at("query").get<std::string>();
  return requestOf(log.back()) + (query.empty() ? "" : "?" + query);
}

std::string SandboxProcess::admin(Verb verb, const std::string& path, std::string body) {
  const auto url = URL::parse(baseURL() + "/admin/" + path);
  const Headers headers{{text("adminKeyHeader"), text("adminKey")},
                        {"Content-Type", "application/json"}};
  const Result<std::string> answer = wait<std::string>([&](Completion<std::string> then) {
    return transport_->send(verb, *url, std::move(body), headers, std::move(then));
  });
  if (!answer.value()) throw std::runtime_error(path + ": " + answer.error()->message());
  return *answer.value();
}

void PrintTo(const SandboxProcess::Arrival& arrival, std::ostream* out) {
  *out << arrival.request << " -> " << arrival.status;
}

}  // namespace orvane::test
