// SPDX-License-Identifier: Apache-2.0
//
// What arrived lately, for tests that look at the wire from the far end.
#pragma once

#include "Time.h"
#include "http/Message.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>

namespace orvane::sandbox {

class RequestLog {
 public:
  using Duration = std::chrono::duration<double, std::milli>;

  /// @param time when it arrived, by the machine's clock.
  void add(const Request& request, const Reply& reply, Milliseconds time, Duration duration);
  void clear();
  /// The oldest first. The values of credentials are left out, and unless asked for the bodies.
  [[nodiscard]] std::string json(bool withBodies) const;

 private:
  struct Entry {
    std::string method;
    std::string path;
    std::string query;
    HeaderList headers;
    std::size_t bodySize;
    std::string body;  // its beginning
    int status;
    std::size_t answerSize;
    std::string answer;  // its beginning, before it is packed
    std::string reason;
    Milliseconds time;
    Duration duration;
  };
  static constexpr std::size_t capacity = 512;
  static constexpr std::size_t longestBody = 16'384;

  mutable std::mutex mutex_;
  std::deque<Entry> entries_;
};

}  // namespace orvane::sandbox
