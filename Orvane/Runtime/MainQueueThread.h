// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// A thread that drains the main queue, for processes without a loop of their own.
#pragma once

#include <Orvane/Runtime/BoundedThread.h>

#include <atomic>
#include <chrono>

namespace orvane {

/// Drains the main queue from its start until it is stopped; left to itself, as long as the
/// process lives.
class MainQueueThread {
 public:
  /// Starts the thread; to be called once. Returns when the queue is the thread's. False when the
  /// system has no thread to give.
  [[nodiscard]] bool start();

  /// Ends the thread after the job at hand and waits for it. False when it has not ended within
  /// `timeout`, or is the calling one. Jobs that are left wait for whoever drains the queue next.
  bool stop(std::chrono::milliseconds timeout);

 private:
  BoundedThread thread_;
  std::atomic<bool> isStopped_{false};
};

}  // namespace orvane
