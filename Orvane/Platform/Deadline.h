// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// When a time limit runs out.
#pragma once

#include <algorithm>
#include <chrono>

namespace orvane {

/// The moment at which a limit that begins now runs out: now for a negative one. A limit beyond
/// what the clock can tell never does.
[[nodiscard]] inline std::chrono::steady_clock::time_point deadlineAfter(
    std::chrono::milliseconds limit) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point now = Clock::now();
  const auto rest = std::chrono::floor<std::chrono::milliseconds>(Clock::time_point::max() - now);
  if (limit >= rest) return Clock::time_point::max();
  return now + std::max(limit, std::chrono::milliseconds::zero());
}

}  // namespace orvane
