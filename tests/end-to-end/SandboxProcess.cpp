// SPDX-License-Identifier: Apache-2.0
#include "SandboxProcess.h"

#include <Orvane/Common/Operation.h>

#include <sys/inotify.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace orvane::test {
namespace {

Environment inheritedPath() {
  const char* path = std::getenv("PATH");
  return {{"PATH", path == nullptr ? "" : path}};
}

}  // namespace

SandboxProcess::SandboxProcess(const std::vector<std::string>& arguments) {
  // A folder of its own: nothing but the file is moved into it.
  const TemporaryFolder announced;
  const std::string readyFile = announced / "ready.json";
  const FileWatch arrivals(announced.path(), IN_MOVED_TO);
  std::vector<std::string> words{"--data", folder_ / "data", "--ready-file", readyFile};
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
