// SPDX-License-Identifier: Apache-2.0
//
// What arrived lately, for whoever looks at the wire from the far end: tests and the inspector.
#pragma once

#include "Time.h"
#include "http/Message.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace orvane::sandbox {

/// What becomes known of a request on its way.
struct Trace {
  std::string user;   // the user id of the token's subject; empty: nobody's or a wrong one
  std::string fault;  // which misbehaviour hit it, in words; empty: none
  bool changedData = false;
};

struct LoggedRequest {
  std::int64_t id = 0;  // increases
  Milliseconds time = 0;
  double duration = 0;  // milliseconds
  std::string method;
  std::string path;
  std::string query;
  HeaderList requestHeaders;
  std::size_t requestSize = 0;
  int status = 0;  // 0: the connection was dropped
  HeaderList responseHeaders;
  std::size_t responseSize = 0;
  std::string reason;  // of a refusal
  std::string user;
  std::string fault;
};

/// The beginnings of both bodies, that of the answer before it is packed.
struct LoggedBodies {
  std::string request;
  std::string response;
};

/// Any thread may use it.
class RequestLog {
 public:
  using Duration = std::chrono::duration<double, std::milli>;

  struct Limits {
    std::size_t requests = 10'000;
    std::size_t bytes = 64U << 20U;  // of all together; the bodies of the oldest go first
  };

  struct Kept {
    std::shared_ptr<const LoggedRequest> request;
    std::shared_ptr<const LoggedBodies> bodies;  // null once they had to go
  };

  struct Newest {
    std::vector<std::shared_ptr<const LoggedRequest>> requests;  // the oldest first
    std::int64_t dropped = 0;  // older ones that had to go since the log was last cleared
  };

  /// Told of each request in the order of their ids, on the thread that answers it; must not wait.
  using Observer = std::function<void(const std::shared_ptr<const LoggedRequest>&)>;

  static constexpr std::size_t longestBody = 65'536;

  RequestLog() = default;
  explicit RequestLog(Limits limits) : limits_(limits) {}

  /// To be set before the first request.
  void observe(Observer observer) { observer_ = std::move(observer); }

  /// @param time when it arrived, by the machine's clock.
  void add(const Request& request, const Reply& reply, const Trace& trace, Milliseconds time,
           Duration duration);
  void clear();

  [[nodiscard]] Newest newest(std::size_t count) const;
  [[nodiscard]] std::optional<Kept> find(std::int64_t id) const;
  /// The last 512, the oldest first. The values of credentials are left out, and unless asked for
  /// the bodies.
  [[nodiscard]] std::string json(bool withBodies) const;

 private:
  void shrink();

  Limits limits_;
  Observer observer_;
  mutable std::mutex mutex_;
  std::deque<Kept> entries_;  // their ids have no gaps
  std::size_t requestBytes_ = 0;
  std::size_t bodyBytes_ = 0;
  std::size_t withoutBodies_ = 0;  // so many of the oldest
  std::int64_t lastId_ = 0;
  std::int64_t dropped_ = 0;
};

/// So much of a text's beginning, to the end of a UTF-8 sequence.
[[nodiscard]] std::string_view beginningOf(std::string_view text, std::size_t size);

}  // namespace orvane::sandbox
