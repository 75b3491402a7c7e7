// SPDX-License-Identifier: Apache-2.0
//
// Requests and their answers, whole, as a file that the sandbox can answer from later.
#pragma once

#include "Time.h"
#include "http/Message.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>

namespace orvane::sandbox {

/// Any thread may use it.
class Recording {
 public:
  using Duration = std::chrono::duration<double, std::milli>;

  struct State {
    bool isOn = false;
    std::size_t count = 0;
    bool isFull = false;  // it ended by itself
  };

  /// Begins anew. With secrets, tokens and e-mail addresses are in the file as they were sent.
  void start(bool withSecrets);
  void stop();
  [[nodiscard]] State state() const;

  /// Whether anything has changed: false while it is off.
  bool add(const Request& request, const Reply& reply, Duration duration);

  /// The file: a JSON object. A body that is not UTF-8 stands in base 64.
  [[nodiscard]] std::string file() const;

  static constexpr int version = 1;

 private:
  struct Exchange {
    Request request;
    int status;  // 0: the connection was dropped
    HeaderList headers;
    std::string body;
    std::optional<std::size_t> cutAfterBytes;
    double milliseconds;
  };
  static constexpr std::size_t mostBytes = 256U << 20U;

  mutable std::mutex mutex_;
  State state_;
  bool withSecrets_ = false;
  Milliseconds since_ = 0;
  std::size_t bytes_ = 0;
  std::deque<Exchange> exchanges_;
};

}  // namespace orvane::sandbox
