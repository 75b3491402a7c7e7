// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// A thread that drains the main queue, for processes without a loop of their own.
#pragma once

#include <Orvane/Runtime/BoundedThread.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

namespace orvane {

/// Drains the main queue from its start until it is stopped; left to itself, as long as the
/// process lives.
class MainQueueThread {
 public:
  /// Starts the thread; to be called once. Returns when the queue is the thread's. False when the
  /// system has no thread to give.
  [[nodiscard]] bool start();

  /// Ends the thread when it has run what waits, and what that adds, and waits for it. False when
  /// it has not ended within `timeout`, or is the calling one. Whatever comes later is run by a
  /// thread that lasts no longer than that, until `disown`.
  bool stop(std::chrono::milliseconds timeout);

  /// Leaves the main queue to others; to be called before another drains it.
  static void disown();

 private:
  struct State {
    std::atomic<bool> isStopped{false};
    // How many jobs have come since somebody drains the queue for good, and in which process: a
    // forked one has not got that thread.
    std::atomic<std::uint64_t> late{0};
    const pid_t process = ::getpid();

    /// Notes a job. True when nobody drains the queue: the caller is to.
    [[nodiscard]] bool isFirst() noexcept;
    /// Drains the queue until no more jobs have come meanwhile.
    void drain();
  };

  static void drainLate(const std::shared_ptr<State>& state);

  BoundedThread thread_;
  std::shared_ptr<State> state_ = std::make_shared<State>();
  std::atomic<bool> isToStop_{false};
};

}  // namespace orvane
