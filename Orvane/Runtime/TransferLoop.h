// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The thread that does all transfers of a request manager.
#pragma once

#include <Orvane/Platform/Result.h>
#include <Orvane/Runtime/BoundedThread.h>
#include <Orvane/Runtime/CurlRequestManager.h>
#include <Orvane/Runtime/Transfer.h>

#include <curl/curl.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
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

 private:
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

  // What follows runs on the loop's thread.
  void run();
  [[nodiscard]] Inbox takeInbox();
  void begin(const std::shared_ptr<Transfer>& transfer);
  void abandon(Transfer& transfer);
  void finishEnded();
  void finish(Transfer& transfer, CURLcode code);
  void end(Transfer& transfer, Result<std::string> outcome);
  void wait();
  void close(const Transfers& late);
  [[nodiscard]] std::unique_ptr<CurlEasy> takeEasy();

  const TransportOptions options_;
  CURLM* multi_;

  std::mutex mutex_;
  Inbox inbox_;
  bool hasStarted_ = false;
  std::atomic<bool> isWaiting_{false};
  std::atomic<int> wakers_{0};

  Transfers running_;
  std::vector<std::unique_ptr<CurlEasy>> idle_;
  BoundedThread thread_;
};

}  // namespace orvane
