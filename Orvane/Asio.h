// SPDX-License-Identifier: Apache-2.0
// Operations in the manner of Asio. Not part of Orvane/Orvane.h: whoever includes this has Asio,
// that of Boost (1.78 or later) or, where ORVANE_ASIO_STANDALONE is defined, the one that stands
// alone (1.22 or later). Nothing of it is in the library.
#pragma once

#include <Orvane/Common/AnswerOnce.h>
#include <Orvane/Common/Operation.h>

#ifdef ORVANE_ASIO_STANDALONE
#include <asio/associated_allocator.hpp>
#include <asio/associated_cancellation_slot.hpp>
#include <asio/associated_executor.hpp>
#include <asio/async_result.hpp>
#include <asio/execution_context.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/post.hpp>
#include <asio/system_executor.hpp>
#else
#include <boost/asio/associated_allocator.hpp>
#include <boost/asio/associated_cancellation_slot.hpp>
#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/execution_context.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/system_executor.hpp>
#endif

#include <memory>
#include <type_traits>
#include <utility>

namespace orvane::asio {

namespace detail {

#ifdef ORVANE_ASIO_STANDALONE
namespace library = ::asio;
#else
namespace library = ::boost::asio;
#endif

/// An operation under way on behalf of a completion handler of Asio's: who settles it first, the
/// answer or the cancellation, posts the handler to its executor.
template <class T, class Handler, class Executor>
class Initiated {
 public:
  using Associated = library::associated_executor_t<Handler, Executor>;

  Initiated(Handler handler, const Executor& executor)
      : work_(library::make_work_guard(library::get_associated_executor(handler, executor))),
        handler_(std::move(handler)) {}

  void answer(Result<T> result) {
    if (!settled_.claim()) return;
    // Posted, never called here: this may be inside the initiating call, or under somebody's lock.
    const auto executor = work_.get_executor();
    library::post(executor, Completed{std::move(handler_), std::move(result)});
    work_.reset();
    settled_.finish();
  }
  void unanswered() { answer(Cancelled{}); }

  [[nodiscard]] auto slot() const noexcept {
    return library::get_associated_cancellation_slot(handler_);
  }

 private:
  // What is posted, allocated as the handler wishes.
  struct Completed {
    Handler handler;
    Result<T> result;

    using allocator_type = library::associated_allocator_t<Handler>;
    [[nodiscard]] allocator_type get_allocator() const noexcept {
      return library::get_associated_allocator(handler);
    }
    void operator()() {
      auto slot = library::get_associated_cancellation_slot(handler);
      if (slot.is_connected()) slot.clear();
      std::move(handler)(std::move(result));
    }
  };

  library::executor_work_guard<Associated> work_;
  Handler handler_;
  RequestBox settled_;
};

/// Starts an operation for a completion handler.
template <class T, class Executor>
class Initiation {
 public:
  using executor_type = Executor;

  explicit Initiation(const Executor& executor) : executor_(executor) {}

  [[nodiscard]] executor_type get_executor() const noexcept { return executor_; }

  template <class Handler>
  void operator()(Handler&& handler, const Operation<T>& operation) const {
    using State = Initiated<T, std::decay_t<Handler>, Executor>;
    const auto state = std::make_shared<State>(std::forward<Handler>(handler), executor_);
    auto slot = state->slot();
    const auto request = std::make_shared<RequestBox>();
    if (slot.is_connected()) {
      slot.assign([request, late = std::weak_ptr<State>(state)](auto) {
        const auto waiting = late.lock();
        request->cancel();
        if (waiting) waiting->answer(Cancelled{});
      });
    }
    request->step([&] { return operation.start(orvane::detail::answerOnce<T>(state)); });
  }

 private:
  Executor executor_;
};

}  // namespace detail

/// The operation as an asynchronous operation of Asio's, of the signature `void(Result<T>)`, for
/// any completion token:
///
///     Result<User> user = co_await orvane::asio::async(users.fetch(), boost::asio::use_awaitable);
///     orvane::asio::async(users.fetch(), [](Result<User> user) { … });
///
/// The completion handler is posted to its associated executor; where it has none, to `executor`.
/// What is posted is allocated by its associated allocator. Work is outstanding there until it has
/// been, so that an `io_context` keeps running. Its cancellation slot cancels the operation (of all
/// kinds of cancellation: nothing is left behind by any), which completes with `Cancelled` then. It
/// can be initiated from any thread; the main queue has to be drained as for any other use. The
/// context must outlive what is under way there: shut the Runtime down first.
template <class T, class Executor, class CompletionToken>
  requires(!std::is_convertible_v<Executor&, detail::library::execution_context&>)
auto async(Operation<T> operation, const Executor& executor, CompletionToken&& token,
           const SourceLocation& place = SourceLocation::current()) {
  static_cast<void>(operation.effect(place));  // one that was moved from stops here, with its line
  return detail::library::async_initiate<CompletionToken, void(Result<T>)>(
      detail::Initiation<T, Executor>(executor), token, std::move(operation));
}

/// The same with the executor of a context.
template <class T, class Context, class CompletionToken>
  requires(std::is_convertible_v<Context&, detail::library::execution_context&>)
auto async(Operation<T> operation, Context& context, CompletionToken&& token,
           const SourceLocation& place = SourceLocation::current()) {
  return async(std::move(operation), context.get_executor(), std::forward<CompletionToken>(token),
               place);
}

/// The same for completion handlers with an executor of their own; any other runs on the system's.
template <class T, class CompletionToken>
auto async(Operation<T> operation, CompletionToken&& token,
           const SourceLocation& place = SourceLocation::current()) {
  return async(std::move(operation), detail::library::system_executor(),
               std::forward<CompletionToken>(token), place);
}

}  // namespace orvane::asio
