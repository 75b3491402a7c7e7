// SPDX-License-Identifier: Apache-2.0
//
// What arrived lately, for tests that look at the wire from the far end.
#pragma once

#include "http/Message.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>

namespace orvane::sandbox {

class RequestLog {
 public:
  void add(const Request& request, int status);
  void clear();
  /// The oldest first. The values of credentials are left out.
  [[nodiscard]] std::string json() const;

 private:
  struct Entry {
    std::string method;
    std::string path;
    std::string query;
    HeaderList headers;
    std::size_t bodySize;
    int status;
  };
  static constexpr std::size_t capacity = 512;

  mutable std::mutex mutex_;
  std::deque<Entry> entries_;
};

}  // namespace orvane::sandbox
