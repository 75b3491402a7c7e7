// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The thread that does all transfers of a request manager.
#pragma once

#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/BoundedThread.h>
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/HostLines.h>
#include <Orvane/Runtime/OpenSockets.h>
#include <Orvane/Runtime/Transfer.h>

#include <curl/curl.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace orvane {

/// Hands transfers to libcurl and their outcomes to their handlers. It lives as long as its thread
/// and every request that refers to it, whatever becomes of the manager.
class TransferLoop final : public std::enable_shared_from_this<TransferLoop> {
 public:
  /// A loop, or the `ConfigurationError` that tells which option can't work. Starts no thread.
  [[nodiscard]] static Result<std::shared_ptr<TransferLoop>> make(TransportOptions options);

  explicit TransferLoop(TransportOptions options);
  TransferLoop(const TransferLoop&) = delete;
  TransferLoop& operator=(const TransferLoop&) = delete;
  ~TransferLoop();

  [[nodiscard]] const TransportOptions& options() const noexcept { return options_; }

  /// Takes a transfer over, starting the thread where it is not running. Once it has been shut
  /// down, and where there is no thread, the transfer is answered at once. Any thread.
  void start(const std::shared_ptr<Transfer>& transfer);
  /// Stops a cancelled transfer. Any thread.
  void drop(const std::shared_ptr<Transfer>& transfer);
  /// See `CurlRequestManager::shutdown`.
  bool shutdown(std::chrono::milliseconds timeout);
  /// Waits until every transfer has ended, and its handler returned. False when one had not within
  /// `timeout`, and on the loop's own thread. Any thread.
  [[nodiscard]] bool waitUntilIdle(std::chrono::milliseconds timeout);
  /// Counts the transfers that have not ended. Any thread.
  void hasBegun() noexcept { ++unfinished_; }
  void hasFinished() noexcept;

  // What follows, up to the end, is for the loop's thread.
  /// The sockets of the connections.
  [[nodiscard]] const OpenSockets& sockets() const noexcept { return sockets_; }
  /// The answers under way may take so many bytes more.
  [[nodiscard]] bool mayHold(std::size_t count) const noexcept;
  /// An answer has taken so many bytes more.
  void hasTaken(std::size_t count) noexcept { held_ += count; }

 private:
  using Clock = std::chrono::steady_clock;
  using Transfers = std::vector<std::shared_ptr<Transfer>>;

  /// What has been handed over and not been taken yet.
  struct Inbox {
    Transfers started;
    Transfers dropped;
    bool isStopping = false;

    [[nodiscard]] bool isEmpty() const noexcept {
      return started.empty() && dropped.empty() && !isStopping;
    }
  };

  /// Why no transfer can be taken over; absent when one can. The thread is running then.
  [[nodiscard]] std::optional<Error> problemWithStarting();

  /// Ends the wait of the thread, where it waits; to be called when something is in the inbox.
  void wake(std::unique_lock<std::mutex> lock);

  void run();
  [[nodiscard]] Inbox takeInbox();
  void line(const std::shared_ptr<Transfer>& transfer);
  void beginWaiting();
  void begin(const std::shared_ptr<Transfer>& transfer);
  void abandon(Transfer& transfer);
  void finishEnded();
  [[nodiscard]] bool sendsAgain(Transfer& transfer, CURLcode code);
  void finishLate();
  void checkTime(Transfer& transfer, Clock::time_point now);
  void schedule(Transfer& transfer);
  void unschedule(Transfer& transfer);
  void end(Transfer& transfer, Result<std::string> outcome);
  void answer(const std::shared_ptr<Transfer>& transfer, Result<std::string> outcome);
  [[nodiscard]] std::shared_ptr<Transfer> takeOut(Transfer& transfer);
  void wait();
  [[nodiscard]] int pause();
  void close(const Transfers& late);
  [[nodiscard]] std::unique_ptr<CurlEasy> takeEasy();
  void renewUsed();

  const TransportOptions options_;
  CURLM* multi_;
  // Whose handle it is.
  pid_t process_ = ::getpid();

  std::mutex mutex_;
  Inbox inbox_;
  bool hasStarted_ = false;
  std::atomic<std::size_t> unfinished_{0};
  std::condition_variable isIdle_;
  std::atomic<bool> isWaiting_{false};
  std::atomic<int> wakers_{0};

  // Those that have been handed over and have not begun.
  std::atomic<std::size_t> waiting_{0};

  OpenSockets sockets_;
  HostLines lines_;
  Transfers running_;
  // What libcurl has brought to its end, and what came of it.
  std::vector<std::pair<std::shared_ptr<Transfer>, Result<std::string>>> ended_;
  // When to look at the clock, and for whom.
  std::set<std::pair<Clock::time_point, Transfer*>> times_;
  // How long to wait for libcurl's announcements while transfers run.
  std::chrono::milliseconds nextPause_{0};
  // Bytes of memory that the answers under way take.
  std::size_t held_ = 0;
  // Handles that are as good as new, and those that have yet to become so.
  std::vector<std::unique_ptr<CurlEasy>> idle_;
  std::vector<std::unique_ptr<CurlEasy>> used_;
  BoundedThread thread_;
};

}  // namespace orvane
