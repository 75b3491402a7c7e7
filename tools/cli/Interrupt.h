// SPDX-License-Identifier: Apache-2.0
// Ctrl-C: cancels the request under way instead of killing the process.
#pragma once

#include <Orvane/Common/Request.h>

#include <pthread.h>

#include <csignal>
#include <mutex>
#include <thread>

namespace orvane::cli {

/// Takes SIGINT and SIGTERM on a thread of its own as long as it lives. To be made before any
/// other thread is: later ones inherit that the signals are blocked. The first signal cancels; the
/// second one ends the process.
class Interrupt {
 public:
  Interrupt();
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  /// From now on a signal cancels `request`; one that has come before cancels it at once.
  void watch(RequestHandle request);
  /// Nothing is watched any more.
  void release() { watch(nullptr); }

  /// As long as it lives, a signal ends the process with `ExitCode::cancelled`: for what can't be
  /// cancelled. One that has come before is a `Failure` with that code.
  class EndsAtOnce {
   public:
    explicit EndsAtOnce(Interrupt& interrupt);
    ~EndsAtOnce();
    EndsAtOnce(const EndsAtOnce&) = delete;
    EndsAtOnce& operator=(const EndsAtOnce&) = delete;

   private:
    Interrupt& interrupt_;
  };

  /// True once a signal has come. Any thread.
  [[nodiscard]] bool hasCome() const;

 private:
  void listen();
  void cancel();

  sigset_t signals_{};
  sigset_t before_{};
  mutable std::mutex mutex_;
  RequestHandle request_;
  bool hasCome_ = false;
  bool endsAtOnce_ = false;
  std::thread thread_;
};

}  // namespace orvane::cli
