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

 private:
  std::shared_ptr<regex_t> compiled_;
};

struct Fault {
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
  explicit Misbehaviours(std::vector<Fault> always) : always_(std::move(always)) { reset(); }

  void add(Fault fault);
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
};

}  // namespace orvane::sandbox
