// SPDX-License-Identifier: Apache-2.0
// A coroutine that answers a value: enough to write `main` and an application's own operations
// without a library of coroutines.
#pragma once

#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <concepts>
#include <coroutine>
#include <exception>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace orvane {

namespace detail {

/// A coroutine that runs by itself and destroys itself in the end.
struct Detached {
  struct promise_type {
    Detached get_return_object() noexcept { return {}; }
    std::suspend_never initial_suspend() noexcept { return {}; }
    std::suspend_never final_suspend() noexcept { return {}; }
    void return_void() noexcept {}
    [[noreturn]] void unhandled_exception() noexcept { std::terminate(); }
  };
};

/// What the coroutine of a task has made.
template <class T>
class TaskOutcome {
 public:
  void return_value(T value) { value_.emplace(std::move(value)); }
  T take() { return *std::move(value_); }

 private:
  std::optional<T> value_;
};
template <>
class TaskOutcome<void> {
 public:
  void return_void() noexcept {}
  void take() noexcept {}
};

}  // namespace detail

/// A coroutine that begins when it is awaited, started, or handed to `MainQueue::runUntil`, once:
///
///     Task<int> run(UserService users) {
///       const auto user = co_await users.fetch();
///       co_return user ? 0 : 1;
///     }
///     int main() { … return MainQueue::main().runUntil(run(users)); }
///
/// It runs on the thread that begins it up to its first waiting, and from then on where what it
/// waits for goes on: see `Operation`. Arguments that it keeps by reference must outlive it.
template <class T = void>
class [[nodiscard]] Task {
 public:
  class promise_type;

  /// Leaves a task behind that can't be run.
  Task(Task&& other) noexcept : coroutine_(std::exchange(other.coroutine_, nullptr)) {}
  /// The two change places.
  Task& operator=(Task&& other) noexcept {
    std::swap(coroutine_, other.coroutine_);
    return *this;
  }
  Task(const Task&) = delete;
  Task& operator=(const Task&) = delete;
  ~Task() {
    if (coroutine_) coroutine_.destroy();
  }

  /// Runs it, and goes on with its value; an exception that it lets out comes out here.
  auto operator co_await() && { return Awaiter{coroutine_}; }
  /// A task can be awaited once: `co_await std::move(task)`.
  auto operator co_await() & = delete;

  /// Runs it by itself; `then` is called with its value (with nothing, for a `Task<void>`) where it
  /// ends. Cancelling the request lets every operation that it awaits, now and from then on, end
  /// with `Cancelled`: the task goes on to its end, and `then` is not called. An exception that it
  /// lets out ends the process.
  template <class Then>
  RequestHandle start(Then then, const SourceLocation& place = SourceLocation::current()) && {
    return begin(
        [then = std::move(then)](Task task) mutable {
          if constexpr (std::is_void_v<T>) {
            task.take();
            then();
          } else {
            then(task.take());
          }
        },
        place);
  }
  RequestHandle start(const SourceLocation& place = SourceLocation::current()) && {
    return begin([](Task task) { task.take(); }, place);
  }

 private:
  friend class MainQueue;
  using Coroutine = std::coroutine_handle<promise_type>;
  // Called with the task when it has ended.
  using Ended = UniqueFunction<void(Task)>;

  struct Awaiter {
    Coroutine coroutine;

    [[nodiscard]] bool await_ready(
        const SourceLocation& place = SourceLocation::current()) const noexcept {
      checkUse(coroutine, place);
      return false;
    }
    template <class Promise>
    Coroutine await_suspend(std::coroutine_handle<Promise> by) noexcept {
      if constexpr (requires {
                      { by.promise().scope() } -> std::same_as<RequestBox*>;
                    }) {
        coroutine.promise().enterScope(by.promise().scope());
      }
      coroutine.promise().continueWith(by);
      return coroutine;
    }
    T await_resume() { return coroutine.promise().take(); }
  };

  // For who is told of the end alone.
  struct End : Awaiter {
    void await_resume() noexcept {}
  };

  explicit Task(Coroutine coroutine) noexcept : coroutine_(coroutine) {}

  static void checkUse(Coroutine coroutine, const SourceLocation& place) noexcept {
    precondition(coroutine && !coroutine.promise().hasBegun(), "a task can be run only once",
                 place);
  }

  T take() { return coroutine_.promise().take(); }

  RequestHandle begin(Ended ended, const SourceLocation& place) {
    checkUse(coroutine_, place);
    auto box = std::make_shared<RequestBox>();
    coroutine_.promise().enterScope(box.get());
    runToEnd(std::move(*this), box, std::move(ended));
    return box;
  }

  static detail::Detached runToEnd(Task task, std::shared_ptr<RequestBox> box, Ended ended) {
    co_await End{{task.coroutine_}};
    box->complete(ended, std::move(task));
  }

  Coroutine coroutine_;
};

/// The coroutine's side of a task.
template <class T>
class Task<T>::promise_type : public detail::TaskOutcome<T> {
 public:
  /// What the coroutine answers to who calls it.
  Task get_return_object() noexcept { return Task(Coroutine::from_promise(*this)); }
  /// Nothing runs before the task is begun.
  std::suspend_always initial_suspend() noexcept { return {}; }
  /// Goes on with who waits for it.
  auto final_suspend() noexcept {
    struct Final {
      [[nodiscard]] bool await_ready() const noexcept { return false; }
      std::coroutine_handle<> await_suspend(Coroutine ended) const noexcept {
        return ended.promise().continuation_;
      }
      void await_resume() const noexcept {}
    };
    return Final{};
  }
  /// Keeps what the coroutine has thrown, for `take`.
  void unhandled_exception() noexcept { thrown_ = std::current_exception(); }

  /// What has been returned; throws what has been thrown.
  T take() {
    if (thrown_) std::rethrow_exception(std::move(thrown_));
    return detail::TaskOutcome<T>::take();
  }

  /// The request that stands for the whole of which this is a part; null for none.
  [[nodiscard]] RequestBox* scope() const noexcept { return scope_; }
  /// Makes it a part of what that request stands for.
  void enterScope(RequestBox* scope) noexcept { scope_ = scope; }

  /// Says who waits for it.
  void continueWith(std::coroutine_handle<> continuation) noexcept { continuation_ = continuation; }
  /// True once it has been begun.
  [[nodiscard]] bool hasBegun() const noexcept { return continuation_ != nullptr; }

 private:
  std::coroutine_handle<> continuation_;
  RequestBox* scope_ = nullptr;
  std::exception_ptr thrown_;
};

template <class T>
T MainQueue::runUntil(Task<T> task, const SourceLocation& place) {
  std::optional<Task<T>> ended;
  const auto request = task.begin([&](Task<T> whole) { ended.emplace(std::move(whole)); }, place);
  wait(request);
  return ended->take();
}

}  // namespace orvane
