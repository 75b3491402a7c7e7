// SPDX-License-Identifier: Apache-2.0
// How a coroutine awaits an operation.
#pragma once

#include <Orvane/Common/AnswerOnce.h>
#include <Orvane/Common/Future.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Result.h>

#include <atomic>
#include <concepts>
#include <coroutine>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace orvane {

namespace detail {

/// How a coroutine that is about to wait and whoever has its outcome agree on who goes on: the
/// latter, unless the outcome is there before the coroutine waits. One outcome counts.
class AwaitGate {
 public:
  /// True for the one who may give the outcome, or do away with it.
  [[nodiscard]] bool claim() noexcept { return !(set(claimed) & claimed); }
  [[nodiscard]] bool isClaimed() const noexcept {
    return (progress_.load(std::memory_order_acquire) & claimed) != 0;
  }
  /// The outcome is there: resumes the coroutine if it waits.
  void open(std::coroutine_handle<> coroutine) {
    if (set(opened) & waiting) coroutine.resume();
  }
  /// False where the coroutine has to go on by itself. From true on it may be gone.
  [[nodiscard]] bool wait() noexcept { return !(set(waiting) & opened); }

 private:
  static constexpr std::uint8_t claimed = 1;
  static constexpr std::uint8_t opened = 2;
  static constexpr std::uint8_t waiting = 4;

  std::uint8_t set(std::uint8_t bit) noexcept {
    return progress_.fetch_or(bit, std::memory_order_acq_rel);
  }

  std::atomic<std::uint8_t> progress_{0};
};

}  // namespace detail

/// What `co_await` makes of an operation; see `Operation`.
template <class T>
class [[nodiscard]] Awaiting {
 public:
  /// Starts the operation that `source` describes, and answers its handle.
  using Starter = RequestHandle (*)(const std::shared_ptr<const void>& source,
                                    Completion<T> handler);

  /// For `Operation::operator co_await`, which makes it.
  Awaiting(Starter start, std::shared_ptr<const void> source)
      : start_(start), source_(std::move(source)) {}
  Awaiting(const Awaiting&) = delete;
  Awaiting& operator=(const Awaiting&) = delete;
  ~Awaiting() {
    if (state_ && state_->gate.claim() && state_->request) state_->request->cancel();
  }

  /// Never true: the operation is started by waiting for it.
  [[nodiscard]] bool await_ready(
      const SourceLocation& place = SourceLocation::current()) const noexcept {
    precondition(source_ != nullptr, "an operation that was moved from can't be used", place);
    return false;
  }

  /// A promise that has a `scope()`, as that of `Task` has, hands it the operation under way: who
  /// cancels the scope lets the coroutine go on with `Cancelled`, now and from then on.
  template <class Promise>
  bool await_suspend(std::coroutine_handle<Promise> coroutine) {
    state_ = std::make_shared<State>(coroutine);
    // Held here, too: the coroutine, and this object in it, may be gone once the handler has run.
    const std::shared_ptr<State> state = state_;
    const auto start = [&] {
      state->request = start_(source_, detail::answerOnce<T>(state));
      return state;
    };
    if constexpr (requires {
                    { coroutine.promise().scope() } -> std::same_as<RequestBox*>;
                  }) {
      if (RequestBox* scope = coroutine.promise().scope()) {
        if (scope->cancelled()) return state->goOnWithout();
        scope->step(start);
        return state->gate.wait();
      }
    }
    start();
    return state->gate.wait();
  }

  /// The outcome.
  [[nodiscard]] Result<T> await_resume() { return *std::move(state_->result); }

 private:
  struct State final : Request, std::enable_shared_from_this<State> {
    explicit State(std::coroutine_handle<> by) : coroutine(by) {}

    detail::AwaitGate gate;
    const std::coroutine_handle<> coroutine;
    std::optional<Result<T>> result;
    RequestHandle request;

    void answer(Result<T> outcome) {
      if (!gate.claim()) return;
      result = std::move(outcome);
      gate.open(coroutine);
    }

    // False: the coroutine does not wait.
    bool goOnWithout() {
      answer(Cancelled{});
      return false;
    }

    // Not here: who cancels, or lets go of the handler, may hold a lock.
    void unanswered() {
      if (gate.isClaimed()) return;
      MainQueue::main().async([self = this->shared_from_this()] { self->answer(Cancelled{}); });
    }

    bool cancel() override {
      if (request) request->cancel();
      unanswered();
      return true;
    }
    [[nodiscard]] bool isFinished() const noexcept override { return gate.isClaimed(); }
  };

  const Starter start_;
  const std::shared_ptr<const void> source_;
  std::shared_ptr<State> state_;
};

}  // namespace orvane
