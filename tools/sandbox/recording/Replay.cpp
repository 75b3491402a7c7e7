// SPDX-License-Identifier: Apache-2.0
#include "recording/Replay.h"

#include "recording/Recording.h"
#include "recording/StandIns.h"
#include "security/Tokens.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace orvane::sandbox {

namespace {

constexpr std::chrono::milliseconds longestDelay{600'000};

std::string keyOf(const std::string& method, std::string_view path, std::string_view query) {
  StandIns standIns = StandIns::uniform();
  return method + " " + standIns.in(path) + "?" + standIns.inQuery(query);
}

std::string bodyIn(const nlohmann::json& exchange, const std::string& name) {
  const auto packed = exchange.find(name + "Base64url");
  if (packed == exchange.end()) return exchange.at(name).get<std::string>();
  auto bytes = decodeBase64url(packed->get<std::string>());
  if (!bytes) throw std::runtime_error(name + " is not in base 64");
  return *std::move(bytes);
}

Replay::Answer answerIn(const nlohmann::json& exchange, bool timing) {
  Replay::Answer answer;
  Reply& reply = answer.reply;
  reply.status = exchange.at("status").get<int>();
  reply.drop = reply.status == 0;
  if (!reply.drop && (reply.status < 200 || reply.status > 599)) {
    throw std::runtime_error("a status is out of range");
  }
  reply.body = bodyIn(exchange, "responseBody");
  for (const auto& header : exchange.at("responseHeaders")) {
    auto name = header.at(0).get<std::string>();
    auto value = header.at(1).get<std::string>();
    if ((name + value).find_first_of("\r\n") != std::string::npos) {
      throw std::runtime_error("a header holds a line break");
    }
    if (equalIgnoringCase(name, "Content-Encoding")) reply.compressible = false;
    if (equalIgnoringCase(name, "Content-Type")) {
      reply.contentType = std::move(value);
    } else {
      reply.headers.emplace_back(std::move(name), std::move(value));
    }
  }
  if (exchange.contains("cutAfterBytes")) {
    reply.cutAfterBytes = exchange["cutAfterBytes"].get<std::size_t>();
    reply.compressible = false;
  }
  if (timing) {
    const std::chrono::duration<double, std::milli> took{exchange.at("duration").get<double>()};
    answer.delay = std::clamp(std::chrono::duration_cast<std::chrono::milliseconds>(took),
                              std::chrono::milliseconds{0}, longestDelay);
  }
  return answer;
}

}  // namespace

Replay::Replay(const std::filesystem::path& file, bool timing) {
  std::ifstream stream{file};
  const std::string text{std::istreambuf_iterator<char>{stream}, {}};
  if (!stream) throw std::runtime_error(file.string() + " can't be read");
  const auto json = nlohmann::json::parse(text, nullptr, false);
  const auto fail = [&](const std::string& why) {
    throw std::runtime_error(file.string() + " is not a recording: " + why);
  };
  if (!json.is_object()) fail("it is not a JSON object");
  try {
    if (json.at("version") != Recording::version) fail("its version is unknown");
    for (const auto& exchange : json.at("requests")) {
      const std::string key =
          keyOf(exchange.at("method").get<std::string>(), bodyIn(exchange, "path"),
                exchange.at("query").get<std::string>());
      answers_[key].all.push_back(answerIn(exchange, timing));
    }
  } catch (const nlohmann::json::exception& exception) {
    fail(exception.what());
  }
}

Replay::Answer Replay::answer(const Request& request) {
  const std::string key = keyOf(request.method, request.path, request.query);
  const std::lock_guard lock{mutex_};
  const auto found = answers_.find(key);
  if (found == answers_.end()) {
    const std::string target = request.path + (request.query.empty() ? "" : "?" + request.query);
    throw notFound("the recording has no such request: " + request.method + " " +
                   (isUtf8(target) ? target : "of bytes that are not UTF-8"));
  }
  Answers& answers = found->second;
  const Answer& answer = answers.all[answers.next];
  if (answers.next + 1 < answers.all.size()) ++answers.next;
  return answer;
}

}  // namespace orvane::sandbox
