// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// A thread that is waited for with a limit, and otherwise left to itself.
#pragma once

#include <Orvane/Platform/UniqueFunction.h>

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>

namespace orvane {

/// A thread whose owner may go at any time, on that very thread too. Any thread may use it.
class BoundedThread {
 public:
  BoundedThread();
  BoundedThread(const BoundedThread&) = delete;
  BoundedThread& operator=(const BoundedThread&) = delete;
  /// Leaves a running thread to itself.
  ~BoundedThread();

  /// Starts the thread; to be called once. What `body` holds is let go of before the thread counts
  /// as ended. False when the system has no thread to give.
  [[nodiscard]] bool start(UniqueFunction<void()> body);

  /// True on the thread itself.
  [[nodiscard]] bool isCurrent() const noexcept;

  /// True in a process that was forked after the thread had been started: it has not got the
  /// thread.
  [[nodiscard]] bool isOfAnotherProcess() const noexcept;

  /// Waits until the thread has ended; one that was never started, or is another process's, has.
  /// False when it has not within `timeout`, or is the calling one.
  bool join(std::chrono::milliseconds timeout);

 private:
  struct State;

  const std::shared_ptr<State> state_;
  std::atomic<pid_t> process_{0};
  std::mutex mutex_;
  std::thread thread_;
};

}  // namespace orvane
