// SPDX-License-Identifier: Apache-2.0
// Handles of operations under way.
#pragma once

#include <Orvane/Platform/Export.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

namespace orvane {

/// An operation under way, which can be cancelled. Dropping the handle does not cancel.
class ORVANE_EXPORT Request {
 public:
  Request() = default;
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;
  virtual ~Request();

  /// Asks the operation to stop; never blocks; may be called from any thread, a handler included,
  /// and more than once. True means that the handler has not been called and never will be; false
  /// that it has been, or is about to be.
  virtual bool cancel() = 0;

  /// True once the handler has returned or the operation has been cancelled. Any thread.
  [[nodiscard]] virtual bool isFinished() const noexcept = 0;
};

/// How handles are held: by whoever started the operation and by the operation itself.
using RequestHandle = std::shared_ptr<Request>;

/// Stands for a request where the answer was at hand without one. Can't be cancelled.
class ORVANE_EXPORT EmptyRequest final : public Request {
 public:
  bool cancel() override { return false; }
  [[nodiscard]] bool isFinished() const noexcept override { return true; }
};

/// Stands for a chain of requests, of which one at a time is running. Safe to use from any thread.
///
/// Its life is one atomic transition: pending, then either claimed (by whoever calls the handler)
/// or cancelled. Who wins it owns the outcome, so that a handler runs once at most, and never after
/// `cancel()` has answered true.
class ORVANE_EXPORT RequestBox final : public Request {
 public:
  /// Starts the chain's next step and keeps its request, so that cancelling the box cancels it.
  /// `start` returns the step's request. Where the chain has moved on by then, because the step
  /// finished, or even started the one after it, before `start` returned, the late request is
  /// dropped instead of replacing its successor. Where the box is cancelled by then, the step is.
  template <class Start>
  void step(Start&& start) {
    const std::uint64_t number = nextStep();
    keep(number, std::forward<Start>(start)());
  }

  /// True once the box has been cancelled; every continuation looks before it goes on.
  [[nodiscard]] bool cancelled() const noexcept {
    return state_.load(std::memory_order_acquire) == State::cancelled;
  }

  /// True until the box is claimed or cancelled: while there is something to go on with.
  [[nodiscard]] bool isPending() const noexcept {
    return state_.load(std::memory_order_acquire) == State::pending;
  }

  /// Takes the outcome: true for exactly one caller, unless the box has been cancelled. Whoever
  /// gets true calls the handler and then `finish()`; better use `complete`.
  [[nodiscard]] bool claim();

  /// Says that the handler has returned, and wakes who waits for it.
  void finish() noexcept;

  /// Claims, calls the handler with the result, and finishes. Does nothing when the box has been
  /// cancelled or claimed before.
  template <class Handler, class Result>
  void complete(Handler& handler, Result&& result) {
    if (!claim()) return;
    std::exchange(handler, nullptr)(std::forward<Result>(result));
    finish();
  }

  /// Ends the chain from outside with an outcome instead of without one: claims, cancels the step
  /// under way, calls the handler with the result, and finishes. Does nothing when the box has been
  /// cancelled or claimed before.
  template <class Handler, class Result>
  void interrupt(Handler& handler, Result&& result) {
    RequestHandle underWay;
    if (!claim(underWay)) return;
    if (underWay) underWay->cancel();
    std::exchange(handler, nullptr)(std::forward<Result>(result));
    finish();
  }

  bool cancel() override;
  [[nodiscard]] bool isFinished() const noexcept override;

 private:
  enum class State : std::uint8_t { pending, claimed, finished, cancelled };

  bool claim(RequestHandle& underWay);
  std::uint64_t nextStep();
  void keep(std::uint64_t number, RequestHandle request);
  RequestHandle letGo(bool isInterrupted = false);

  std::atomic<State> state_{State::pending};
  std::mutex mutex_;
  std::uint64_t step_ = 0;
  bool isInterrupted_ = false;
  RequestHandle value_;
};

/// Cancels its request when it goes out of scope.
class [[nodiscard]] ScopedRequest {
 public:
  ScopedRequest() = default;
  ScopedRequest(RequestHandle request)  // NOLINT(google-explicit-constructor)
      : request_(std::move(request)) {}
  ScopedRequest(ScopedRequest&&) noexcept = default;
  /// Cancels the request that it held.
  ScopedRequest& operator=(ScopedRequest&& other) noexcept {
    if (this != &other) {
      cancel();
      request_ = std::move(other.request_);
    }
    return *this;
  }
  ScopedRequest(const ScopedRequest&) = delete;
  ScopedRequest& operator=(const ScopedRequest&) = delete;
  ~ScopedRequest() { cancel(); }

  /// The handle, which stays owned.
  [[nodiscard]] const RequestHandle& get() const noexcept { return request_; }
  /// Gives the handle away; nothing is cancelled any more.
  [[nodiscard]] RequestHandle release() noexcept { return std::move(request_); }

 private:
  void cancel() {
    if (const RequestHandle request = std::move(request_)) request->cancel();
  }

  RequestHandle request_;
};

}  // namespace orvane
