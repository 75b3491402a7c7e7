// SPDX-License-Identifier: Apache-2.0
// Operations as values to wait for: in a coroutine, as a future, or on the spot.
#pragma once

#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Result.h>

#include <atomic>
#include <concepts>
#include <coroutine>
#include <cstdint>
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

/// Something that starts an operation with the handler it is given and returns the operation's
/// handle: `[&](auto then) { return users.fetch(id, {}, std::move(then)); }`.
template <class Start, class T>
concept StartsOperation = requires(Start& start, Completion<T> then) {
  { start(std::move(then)) } -> std::convertible_to<RequestHandle>;
};

/// The outcome of an operation that has been started.
template <class T>
class Future {
 public:
  template <StartsOperation<T> Start>
  explicit Future(Start&& start) : state_(std::make_shared<State>()) {
    request_ = start(Completion<T>(Handler(state_)));
  }

  /// Waits for the outcome and takes it; to be called once. On the thread that drains the main
  /// queue it drains it meanwhile; on any other it only waits. `Cancelled` when the operation was,
  /// by whomever, or has let go of its handler without calling it.
  [[nodiscard]] Result<T> get() {
    MainQueue::main().wait(request_);
    // A request may count as finished while its answer is still on its way to the handler. One that
    // has been cancelled says so again.
    if (!state_->settled.isFinished() && request_ && request_->cancel()) return Cancelled{};
    MainQueue::main().wait(std::shared_ptr<Request>(state_, &state_->settled));
    if (!state_->outcome) return Cancelled{};
    return *std::move(state_->outcome);
  }

  /// The operation's handle.
  [[nodiscard]] const RequestHandle& request() const noexcept { return request_; }

 private:
  struct State {
    // Claimed by the handler's call, or cancelled as the handler goes without one.
    RequestBox settled;
    std::optional<Result<T>> outcome;
  };

  class Handler {
   public:
    explicit Handler(std::shared_ptr<State> state) : state_(std::move(state)) {}
    Handler(Handler&&) noexcept = default;
    Handler& operator=(Handler&&) = delete;
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;
    ~Handler() {
      if (state_) state_->settled.cancel();
    }

    void operator()(Result<T> result) {
      if (!state_->settled.claim()) return;
      state_->outcome = std::move(result);
      state_->settled.finish();
    }

   private:
    std::shared_ptr<State> state_;
  };

  std::shared_ptr<State> state_;
  RequestHandle request_;
};

/// Starts an operation and answers its future:
/// `auto user = future<User>([&](auto then) { return users.fetch(id, {}, std::move(then)); });`
template <class T, StartsOperation<T> Start>
[[nodiscard]] Future<T> future(Start&& start) {
  return Future<T>(std::forward<Start>(start));
}

/// Starts an operation and waits for its outcome, as `Future::get` does.
template <class T, StartsOperation<T> Start>
[[nodiscard]] Result<T> wait(Start&& start) {
  return Future<T>(std::forward<Start>(start)).get();
}

/// What `awaiting` answers. Started when it is awaited; the coroutine goes on on the thread on
/// which the handler is called, or at once where the answer is at hand. A coroutine that is
/// destroyed while it waits cancels the operation; destroy it on the thread of the handlers, or
/// where none can come.
template <class T, class Start>
class Awaiting {
 public:
  explicit Awaiting(Start start) : start_(std::move(start)) {}
  Awaiting(const Awaiting&) = delete;
  Awaiting& operator=(const Awaiting&) = delete;
  ~Awaiting() {
    if (!state_) return;
    auto expected = Progress::waiting;
    if (state_->progress.compare_exchange_strong(expected, Progress::abandoned) && request_) {
      request_->cancel();
    }
  }

  [[nodiscard]] bool await_ready() const noexcept { return false; }

  bool await_suspend(std::coroutine_handle<> coroutine) {
    state_ = std::make_shared<State>();
    state_->coroutine = coroutine;
    // Held here, too: the coroutine, and this object in it, may be gone once the handler has run.
    const std::shared_ptr<State> state = state_;
    RequestHandle request = start_([state](Result<T> result) {
      state->result = std::move(result);
      // An answer inside the call finds the coroutine not waiting yet, and leaves it to go on
      // itself.
      if (state->progress.exchange(Progress::answered) == Progress::waiting) {
        state->coroutine.resume();
      }
    });
    if (state->progress.load() == Progress::answered) return false;
    request_ = std::move(request);
    auto expected = Progress::starting;
    return state->progress.compare_exchange_strong(expected, Progress::waiting);
  }

  [[nodiscard]] Result<T> await_resume() { return *std::move(state_->result); }

 private:
  enum class Progress : std::uint8_t { starting, waiting, answered, abandoned };
  struct State {
    std::atomic<Progress> progress{Progress::starting};
    std::coroutine_handle<> coroutine;
    std::optional<Result<T>> result;
  };

  Start start_;
  std::shared_ptr<State> state_;
  RequestHandle request_;
};

/// An operation to be awaited in a coroutine:
/// `auto user = co_await awaiting<User>([&](auto then) { return users.fetch(id, {},
/// std::move(then)); });`
template <class T, StartsOperation<T> Start>
[[nodiscard]] Awaiting<T, Start> awaiting(Start start) {
  return Awaiting<T, Start>(std::move(start));
}

}  // namespace orvane
