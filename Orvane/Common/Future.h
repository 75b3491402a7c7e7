// SPDX-License-Identifier: Apache-2.0
// The outcome of an operation that has been started.
#pragma once

#include <Orvane/Common/AnswerOnce.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Result.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// The outcome, for who waits for it, of an operation that was cancelled.
struct ORVANE_EXPORT Cancelled {
  [[nodiscard]] std::string message() const { return "the operation was cancelled"; }
  friend constexpr bool operator==(const Cancelled&, const Cancelled&) = default;
};

/// The outcome of an operation that took longer than it was allowed to, and was cancelled.
struct ORVANE_EXPORT TimedOut {
  [[nodiscard]] std::string message() const { return "the operation took too long"; }
  /// Another attempt may be faster.
  [[nodiscard]] bool isTransient() const noexcept { return true; }
  friend constexpr bool operator==(const TimedOut&, const TimedOut&) = default;
};

namespace detail {

/// `TimedOut`, telling the limit.
[[nodiscard]] ORVANE_EXPORT Error timedOut(std::chrono::milliseconds limit);

}  // namespace detail

/// The outcome of an operation that has been started; made by `Operation::future`. Letting go of it
/// does not cancel.
template <class T>
class [[nodiscard]] Future {
 public:
  /// `start` starts the operation with the handler that it is given and answers its handle.
  template <class Start>
  explicit Future(Start&& start) : state_(std::make_shared<State>()) {
    request_ = start(Completion<T>(detail::answerOnce<T>(state_)));
  }

  /// Waits for the outcome and takes it; to be called once. On the thread that drains the main
  /// queue it drains it meanwhile; on any other it only waits. `Cancelled` when the operation was,
  /// by whomever, or has let go of its handler without calling it.
  [[nodiscard]] Result<T> get() {
    MainQueue::main().wait(request_);
    if (isCancelled()) return Cancelled{};
    return take();
  }

  /// The same for no longer than `limit`: the operation is cancelled then, and the outcome is
  /// `TimedOut`.
  [[nodiscard]] Result<T> get(std::chrono::milliseconds limit) {
    const auto start = std::chrono::steady_clock::now();
    if (!MainQueue::main().wait(request_, limit) && request_->cancel())
      return detail::timedOut(limit);
    if (isCancelled()) return Cancelled{};
    const auto spent = std::chrono::steady_clock::now() - start;
    const auto left = limit - std::chrono::floor<std::chrono::milliseconds>(spent);
    // Who settles it here is not called any more.
    if (!MainQueue::main().wait(settled(), left) && state_->settled.cancel())
      return detail::timedOut(limit);
    return take();
  }

  /// The operation's handle.
  [[nodiscard]] const RequestHandle& request() const noexcept { return request_; }

 private:
  struct State {
    // Claimed by the handler's call, or cancelled as the handler goes without one.
    RequestBox settled;
    std::optional<Result<T>> outcome;

    void answer(Result<T> result) {
      if (!settled.claim()) return;
      outcome = std::move(result);
      settled.finish();
    }
    void unanswered() { settled.cancel(); }
  };

  // A request may count as finished while its answer is still on its way to the handler. One that
  // has been cancelled says so again.
  [[nodiscard]] bool isCancelled() const {
    return !state_->settled.isFinished() && request_ && request_->cancel();
  }

  [[nodiscard]] std::shared_ptr<Request> settled() const { return {state_, &state_->settled}; }

  [[nodiscard]] Result<T> take() {
    MainQueue::main().wait(settled());
    precondition(!std::exchange(isTaken_, true), "the outcome of a future can be taken only once");
    return state_->outcome ? *std::move(state_->outcome) : Result<T>(Cancelled{});
  }

  std::shared_ptr<State> state_;
  RequestHandle request_;
  bool isTaken_ = false;
};

}  // namespace orvane
