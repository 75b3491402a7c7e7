// SPDX-License-Identifier: Apache-2.0
//
// Faults on demand: what the sandbox does wrong, how often, and to which requests.
#pragma once

#include "http/Message.h"

#include <nlohmann/json_fwd.hpp>
#include <regex.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::sandbox {

/// A POSIX extended regular expression, searched for anywhere in a text.
class Pattern {
 public:
  /// Throws a 400 for an expression that is not well formed.
  explicit Pattern(const std::string& expression);
  [[nodiscard]] bool matches(const std::string& text) const;
  [[nodiscard]] const std::string& expression() const { return expression_; }

 private:
  std::string expression_;
  std::shared_ptr<regex_t> compiled_;
};

/// What a member of a fault's JSON object takes, for a page that asks for it.
struct FaultParameter {
  const char* name;
  const char* type;  // integer, text, choice or boolean
  const char* unit = "";
  const char* initial = "null";  // JSON: what a page offers at first
  std::optional<std::int64_t> least = std::nullopt;
  std::optional<std::int64_t> most = std::nullopt;
};

struct Fault {
  std::int64_t id = 0;     // increases; 0: not in force yet
  bool permanent = false;  // of the command line: comes back with every reset
  std::optional<int> status;
  std::chrono::milliseconds delay{0};
  std::optional<std::size_t> cutAfterBytes;
  std::size_t bytesPerSecond = 0;  // of the answer; 0: at once
  std::string body;                // one of faultBodies(); empty: the true one
  bool drop = false;               // end the connection without an answer
  bool date = true;                // false: leave the Date header out
  std::int64_t times = -1;         // requests still to be spoilt; -1 for all
  std::string method;              // empty: any
  std::optional<Pattern> path;     // searched for in the request's path

  /// Throws a 400 for an unknown member or value.
  static Fault fromJson(const nlohmann::json& json);
  /// The object that it was made of, with the requests that are still to be spoilt.
  [[nodiscard]] nlohmann::json toJson() const;
  /// What it does and to which requests, for people.
  [[nodiscard]] std::string text() const;
  /// The kinds of misbehaviour, as the inspector's page has them: a list of objects "name",
  /// "title", "description" and "parameters".
  [[nodiscard]] static nlohmann::json kinds();
  /// The parameters that narrow any of them to some requests.
  [[nodiscard]] static nlohmann::json scope();

  /// Whether the resource is asked at all before the answer is spoilt.
  [[nodiscard]] bool keepsAnswer() const {
    return !status && (body.empty() || body == "truncated");
  }
  [[nodiscard]] Reply spoil(Reply reply) const;

 private:
  std::string source_;
};

class Misbehaviours {
 public:
  explicit Misbehaviours(std::vector<Fault> always);

  /// Returns its id.
  std::int64_t add(Fault fault);
  /// Ends one. Throws a 404 where there is none, and a 409 for one of the command line.
  void remove(std::int64_t id);
  /// Ends all but what is left of those of the command line.
  void removeAll();
  /// Back to what the command line asked for.
  void reset();

  /// Those in force, in the order in which they are looked at.
  [[nodiscard]] std::vector<Fault> all();

  /// The fault for this request, which is then used up by one.
  [[nodiscard]] std::optional<Fault> next(std::string_view method, const std::string& path);

  /// Waits; returns early when the sandbox stops.
  void delay(std::chrono::milliseconds duration);
  void endDelays();

 private:
  std::vector<Fault> always_;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool stopping_ = false;
  std::atomic<bool> any_{false};
  std::vector<Fault> faults_;
  std::int64_t lastId_ = 0;
};

}  // namespace orvane::sandbox
