// SPDX-License-Identifier: Apache-2.0
//
// Answers requests from a recording, whatever token they carry.
#pragma once

#include "http/Message.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace orvane::sandbox {

/// A request is matched by method, path and query, where all tokens are alike, and so are all
/// e-mail addresses. Of equal ones each gets the next answer, and the last of them stays. Any
/// thread may use it.
class Replay {
 public:
  struct Answer {
    Reply reply;
    std::chrono::milliseconds delay{0};
  };

  /// Reads the file. Throws std::runtime_error for one that is no recording. With `timing`, answers
  /// take as long as they took.
  Replay(const std::filesystem::path& file, bool timing);

  /// Throws a 404 for a request that is not in the file.
  [[nodiscard]] Answer answer(const Request& request);

 private:
  struct Answers {
    std::vector<Answer> all;
    std::size_t next = 0;
  };

  std::mutex mutex_;
  std::map<std::string, Answers> answers_;
};

}  // namespace orvane::sandbox
