// SPDX-License-Identifier: Apache-2.0
// Operations as values: to start with a handler, to wait for, to await, to limit and to combine.
#pragma once

#include <Orvane/Common/Awaiting.h>
#include <Orvane/Common/Future.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Relay.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Common/Timers.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Result.h>

#include <chrono>
#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <version>

#ifdef __cpp_lib_jthread
#include <stop_token>
#endif

namespace orvane {

/// What an operation does to what the backend keeps.
enum class Effect : std::uint8_t {
  reads,   ///< Nothing: it may be done again without harm (RFC 9110, section 9.2.1).
  writes,  ///< Something, or it is not known.
};

/// Something that starts an operation with the handler it is given and returns the operation's
/// handle: `[=](auto then) { return users.fetch(id, {}, std::move(then)); }`.
template <class Start, class T>
concept StartsOperation = requires(Start& start, Completion<T> then) {
  { start(std::move(then)) } -> std::convertible_to<RequestHandle>;
};

template <class T>
class Operation;

namespace detail {

/// An operation that does another in a way of its own: `start` is given that and the handler.
template <class T, class Start>
[[nodiscard]] Operation<T> over(const Operation<T>& operation, Start start,
                                const SourceLocation& place);

}  // namespace detail

/// Something to be done that answers a `Result<T>`. Making one sends nothing; it owns its
/// arguments, may outlive the service that made it, and is cheap to copy. It may be started any
/// number of times, by several threads at once, too: each start is a request of its own.
///
///     auto request = trips.fetch("17").start([](Result<Trip> trip) { … });   // any thread
///     auto trip = trips.fetch("17").wait();                   // where a thread may block
///     auto same = co_await trips.fetch("17").within(5s);      // in any coroutine
///
/// One that has been moved from is good for assignment and destruction only; using it is a
/// programming fault that stops the process.
template <class T>
class [[nodiscard]] Operation {
 public:
  using Value = T;  ///< What it answers on success.

  /// An operation of one's own. `by` is kept, and called for each start; where it has a
  /// `description()`, that is the operation's.
  template <StartsOperation<T> Start>
    requires(!std::same_as<std::remove_cvref_t<Start>, Operation>)
  explicit Operation(Start&& by, Effect effect = Effect::writes)
      : source_(std::make_shared<Kept<std::decay_t<Start>>>(std::forward<Start>(by))),
        start_([](const std::shared_ptr<const void>& source, Completion<T> handler) {
          const auto& kept = *static_cast<const Kept<std::decay_t<Start>>*>(source.get());
          return RequestHandle(kept.start(std::move(handler)));
        }),
        effect_(effect) {
    if constexpr (requires { by.description(); }) {
      describe_ = [](const std::shared_ptr<const void>& source) -> std::string {
        return static_cast<const Kept<std::decay_t<Start>>*>(source.get())->start.description();
      };
    }
  }

  /// For the library's services: `by` and `describe` are given `source`, which they know the type
  /// of.
  using Starter = RequestHandle (*)(const std::shared_ptr<const void>& source,
                                    Completion<T> handler);
  /// Answers `description()` of what `source` describes.
  using Describer = std::string (*)(const std::shared_ptr<const void>& source);
  /// See `Starter`. Without `describe` it has no description.
  Operation(std::shared_ptr<const void> source, Starter by, Effect effect,
            Describer describe = nullptr) noexcept
      : source_(std::move(source)), start_(by), describe_(describe), effect_(effect) {}

  /// An operation that answers `result` inside the call that starts it.
  [[nodiscard]] static Operation answering(
      Result<T> result, Effect effect = Effect::reads) requires(std::copyable<T>) {
    return Operation(
        [result = std::move(result)](Completion<T> handler) {
          handler(result);
          return std::make_shared<EmptyRequest>();
        },
        effect);
  }

  /// Starts it. The handler is called once, unless the request is cancelled before; on which thread
  /// says `SerializableService` for the operations of services.
  RequestHandle start(Completion<T> handler,
                      const SourceLocation& place = SourceLocation::current()) const {
    checkUse(place);
    return start_(source_, std::move(handler));
  }

  /// Whether it may be done again without harm.
  [[nodiscard]] Effect effect(
      const SourceLocation& place = SourceLocation::current()) const noexcept {
    checkUse(place);
    return effect_;
  }

  /// What is asked for, as `ErrorContext::operation` tells it: "GET users/{userId}/trips". Empty
  /// where who made it has not said.
  [[nodiscard]] std::string description(
      const SourceLocation& place = SourceLocation::current()) const {
    checkUse(place);
    return describe_ != nullptr ? describe_(source_) : std::string();
  }

  /// One that was moved from: nothing but assignment and destruction are left to it.
  [[nodiscard]] bool wasMovedFrom() const noexcept { return source_ == nullptr; }

  /// @name To wait for it
  /// On the thread that drains the main queue, the queue is drained meanwhile; any other thread
  /// only waits. In a handler on a transport's thread it would wait for itself: a programming
  /// fault.
  /// @{

  /// Starts it and waits for its outcome; `Cancelled` when somebody cancelled it.
  [[nodiscard]] Result<T> wait(const SourceLocation& place = SourceLocation::current()) const {
    return future(place).get();
  }

  /// The same for no longer than `limit`: it is cancelled then, and the outcome is `TimedOut`.
  [[nodiscard]] Result<T> wait(std::chrono::milliseconds limit,
                               const SourceLocation& place = SourceLocation::current()) const {
    Result<T> result = future(place).get(limit);
    if (result.error() && result.error()->template as<TimedOut>() != nullptr) {
      return result.error()->with({.operation = description()});
    }
    return result;
  }

  /// Starts it, for an outcome that is waited for later.
  [[nodiscard]] Future<T> future(const SourceLocation& place = SourceLocation::current()) const {
    checkUse(place);
    return Future<T>([this](Completion<T> handler) { return start_(source_, std::move(handler)); });
  }
  /// @}

  /// For `co_await` in any coroutine: starts it, and goes on with its `Result<T>`.
  ///
  /// The coroutine goes on on the thread on which a handler would be called, without a further
  /// hop; at once where the answer is at hand. Where the operation is cancelled, by whomever, it
  /// goes on with `Cancelled`: inside `request_stop()` for `cancelledBy`, else on the main queue. A
  /// coroutine that is destroyed while it waits cancels the operation; that must not happen while
  /// another thread is about to let it go on.
  [[nodiscard]] Awaiting<T> operator co_await() const { return Awaiting<T>(start_, source_); }

  /// @name To change how it is done
  /// @{

  /// The same, but `TimedOut` when it takes longer than `limit`: it is cancelled then, and answers
  /// on the thread of `timers`, which must outlive what is started. With a limit of nothing it is
  /// not started at all, and answers inside the call.
  Operation within(std::chrono::milliseconds limit, Timers& timers = Timers::ofProcess(),
                   const SourceLocation& place = SourceLocation::current()) const {
    const auto start = [limit, &timers](const Operation& operation,
                                        Completion<T> handler) -> RequestHandle {
      const auto late = [operation, limit] {
        return detail::timedOut(limit).with({.operation = operation.description()});
      };
      if (limit <= std::chrono::milliseconds::zero()) return failing(late(), std::move(handler));
      const auto relay = std::make_shared<Limited>(std::move(handler));
      relay->timer = timers.after(limit, [passed = std::weak_ptr(relay), late] {
        if (const auto kept = passed.lock()) kept->interrupt(late());
      });
      return relay->pass(operation, relay);
    };
    return detail::over(*this, start, place);
  }

#ifdef __cpp_lib_jthread
  /// The same, but cancelled when `token` is asked to stop: it answers `Cancelled` then, inside
  /// that call. Where this has happened before, it is not started at all.
  Operation cancelledBy(std::stop_token token,
                        const SourceLocation& place = SourceLocation::current()) const {
    const auto start = [token = std::move(token)](const Operation& operation,
                                                  Completion<T> handler) -> RequestHandle {
      if (token.stop_requested()) return failing(Cancelled{}, std::move(handler));
      const auto relay = std::make_shared<Stoppable>(std::move(handler));
      auto request = relay->pass(operation, relay);
      relay->onStop.emplace(token, Stop{relay});
      return request;
    };
    return detail::over(*this, start, place);
  }
#endif

  /// The same, answering on the main queue whatever thread the answer comes on. It can be cancelled
  /// until its turn comes there.
  Operation onMain(const SourceLocation& place = SourceLocation::current()) const {
    const auto start = [](const Operation& operation, Completion<T> handler) -> RequestHandle {
      const auto relay = std::make_shared<detail::Relay<T>>(std::move(handler));
      return relay->pass(operation, relay, [](auto kept, Result<T> result) {
        MainQueue::main().async(
            [kept, result = std::move(result)]() mutable { kept->answer(std::move(result)); });
      });
    };
    return detail::over(*this, start, place);
  }
  /// @}

 private:
  template <class Start>
  struct Kept {
    template <class Given>
    explicit Kept(Given&& given) : start(std::forward<Given>(given)) {}
    // Who starts operations may well change what it holds.
    mutable Start start;
  };

  struct Limited : detail::Relay<T> {
    using detail::Relay<T>::Relay;
    ScopedRequest timer;
  };

#ifdef __cpp_lib_jthread
  struct Stop {
    std::weak_ptr<detail::Relay<T>> stopped;
    void operator()() const noexcept {
      if (const auto relay = stopped.lock()) relay->interrupt(Cancelled{});
    }
  };
  struct Stoppable : detail::Relay<T> {
    using detail::Relay<T>::Relay;
    std::optional<std::stop_callback<Stop>> onStop;
  };
#endif

  static RequestHandle failing(Error error, Completion<T> handler) {
    handler(std::move(error));
    return std::make_shared<EmptyRequest>();
  }

  void checkUse(const SourceLocation& place) const noexcept {
    precondition(source_ != nullptr, "an operation that was moved from can't be used", place);
  }

  std::shared_ptr<const void> source_;
  Starter start_;
  Describer describe_ = nullptr;
  Effect effect_;
};

template <class T, class Start>
Operation<T> detail::over(const Operation<T>& operation, Start start, const SourceLocation& place) {
  struct Over {
    Operation<T> operation;
    Start start;

    RequestHandle operator()(Completion<T> handler) const {
      return start(operation, std::move(handler));
    }
    [[nodiscard]] std::string description() const { return operation.description(); }
  };
  const Effect effect = operation.effect(place);
  return Operation<T>(Over{operation, std::move(start)}, effect);
}

/// @name The same for anything that is started with a handler
/// @{
/// `Operation::wait`.
template <class T, StartsOperation<T> Start>
[[nodiscard]] Result<T> wait(Start&& start) {
  return Operation<T>(std::forward<Start>(start)).wait();
}
/// `Operation::future`.
template <class T, StartsOperation<T> Start>
[[nodiscard]] Future<T> future(Start&& start) {
  return Operation<T>(std::forward<Start>(start)).future();
}
/// What `co_await` takes.
template <class T, StartsOperation<T> Start>
[[nodiscard]] Awaiting<T> awaiting(Start&& start) {
  return Operation<T>(std::forward<Start>(start)).operator co_await();
}
/// @}

}  // namespace orvane
