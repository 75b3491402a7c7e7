// SPDX-License-Identifier: Apache-2.0
// Timers whose time passes when a test says so.
#pragma once

#include <Orvane/Common/Timers.h>
#include <Orvane/Testing/Export.h>

#include <chrono>
#include <cstddef>
#include <memory>

namespace orvane {

/// Stands still unless it is moved. Any thread may use it.
class ORVANE_TESTING_EXPORT MovableTimers final : public Timers {
 public:
  MovableTimers();
  ~MovableTimers() override;

  RequestHandle after(std::chrono::milliseconds pause, UniqueFunction<void()> job) override;
  [[nodiscard]] Clock::time_point now() const override;

  /// Lets so much time pass: runs the jobs that come due on this thread, in the order of their
  /// times, each at its own, and those that they add. Answers how many they were.
  std::size_t advance(std::chrono::milliseconds time);

  /// How many jobs wait.
  [[nodiscard]] std::size_t waiting() const;
  /// After what time the next one is due; zero where none waits.
  [[nodiscard]] std::chrono::milliseconds untilNext() const;

 private:
  struct State;
  class Timer;
  const std::shared_ptr<State> state_;
};

}  // namespace orvane
