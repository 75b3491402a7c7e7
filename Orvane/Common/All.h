// SPDX-License-Identifier: Apache-2.0
// Several operations at once.
#pragma once

#include <Orvane/Common/AnswerOnce.h>
#include <Orvane/Common/Operation.h>
#include <Orvane/Platform/Export.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <tuple>
#include <utility>
#include <vector>

namespace orvane {

namespace detail {

/// The parts of a whole that are under way, so many at a time. Any thread.
class ORVANE_EXPORT Gathering final : public Request,
                                      public std::enable_shared_from_this<Gathering> {
 public:
  /// Starts the part with the given number.
  using StartPart = UniqueFunction<RequestHandle(std::size_t)>;

  /// @param atOnce how many parts may be under way, at least one.
  Gathering(std::size_t count, std::size_t atOnce, StartPart startPart,
            UniqueFunction<void()> whenDone);

  /// Starts as many parts as may be under way; answers inside the call where there are none.
  void start();
  /// A part has its outcome.
  void finished(std::size_t part);

  bool cancel() override;
  [[nodiscard]] bool isFinished() const noexcept override;

 private:
  void startParts();

  const std::size_t atOnce_;
  StartPart startPart_;
  UniqueFunction<void()> whenDone_;
  mutable std::mutex mutex_;
  std::vector<RequestHandle> requests_;
  std::size_t started_ = 0;
  std::size_t finished_ = 0;
  bool isStarting_ = false;
  bool isCancelled_ = false;
};

/// The place of one part's outcome, which the gathering owns.
template <class T>
class Part {
 public:
  Part(std::shared_ptr<Gathering> gathering, std::size_t number, Result<T>& place)
      : gathering_(std::move(gathering)), number_(number), place_(&place) {}

  explicit operator bool() const noexcept { return gathering_ != nullptr; }
  const Part* operator->() const noexcept { return this; }

  void answer(Result<T> result) const {
    *place_ = std::move(result);
    gathering_->finished(number_);
  }
  void unanswered() const {
    if (gathering_->isFinished()) return;
    // Not here: who lets go of a handler may hold a lock.
    MainQueue::main().async([part = *this] { part.answer(Cancelled{}); });
  }

 private:
  std::shared_ptr<Gathering> gathering_;
  std::size_t number_;
  Result<T>* place_;
};
template <class T>
[[nodiscard]] AnswerOnce<T, Part<T>> partHandler(std::shared_ptr<Gathering> gathering,
                                                 std::size_t number, Result<T>& place) {
  return AnswerOnce<T, Part<T>>(Part<T>(std::move(gathering), number, place));
}

/// Starts the parts of a whole, whose outcome is `results`: a container of `Result`s that
/// `startPart` is given to put its own into.
template <class Results, class StartPart>
RequestHandle gather(std::size_t count, std::size_t atOnce, Results results, StartPart startPart,
                     Completion<Results> handler) {
  // It goes with the gathering, and so with the last part.
  struct Whole {
    Results results;
    StartPart startPart;
    Completion<Results> handler;
    std::weak_ptr<Gathering> gathering{};
    const std::shared_ptr<RequestBox> box = std::make_shared<RequestBox>();
  };
  const auto whole =
      std::make_shared<Whole>(Whole{std::move(results), std::move(startPart), std::move(handler)});
  const auto box = whole->box;
  const auto gathering = std::make_shared<Gathering>(
      count, atOnce,
      [whole](std::size_t part) {
        return whole->startPart(part, whole->gathering.lock(), whole->results);
      },
      [whole] {
        whole->box->complete(whole->handler, Result<Results>(std::move(whole->results)));
      });
  whole->gathering = gathering;
  box->step([&] {
    gathering->start();
    return gathering;
  });
  return box;
}

}  // namespace detail

/// The outcomes of several operations at once; see `all`.
template <class... T>
using Outcomes = std::tuple<Result<T>...>;

/// Starts all of the operations at once, and answers all of their outcomes when the last one is
/// there, in the order of the operations; a failure of one is no failure of the whole:
///
///     auto [me, cars] = co_await all(users.fetch(), vehicles.getAllVehicles());   // two results
///
/// Cancelling the whole cancels those that are under way; when it ends early for any other reason
/// (`within`, `cancelledBy`), each of the outcomes is that error. It answers on the thread on
/// which the last one does. Where one of the operations was moved from, the whole counts as such.
template <class... T>
[[nodiscard]] Operation<Outcomes<T...>> all(Operation<T>... operations) {
  // Who uses the whole is told, and of that line.
  if ((operations.wasMovedFrom() || ...)) {
    return Operation<Outcomes<T...>>(nullptr, nullptr, Effect::writes);
  }
  const bool readsOnly = ((operations.effect() == Effect::reads) && ...);
  auto startPart = [operations = std::make_tuple(std::move(operations)...)](
                       std::size_t part, std::shared_ptr<detail::Gathering> gathering,
                       Outcomes<T...>& results) {
    return [&]<std::size_t... index>(std::index_sequence<index...>) {
      RequestHandle request;
      ((index == part ? void(request = std::get<index>(operations)
                                           .start(detail::partHandler<T>(std::move(gathering), part,
                                                                         std::get<index>(results))))
                      : void()),
       ...);
      return request;
    }
    (std::index_sequence_for<T...>());
  };
  return Operation<Outcomes<T...>>(
      [startPart = std::move(startPart)](Completion<Outcomes<T...>> handler) {
        return detail::gather(sizeof...(T), sizeof...(T), Outcomes<T...>(), startPart,
                              std::move(handler));
      },
      readsOnly ? Effect::reads : Effect::writes);
}

/// How many operations of a list may be under way at once.
struct AtOnce {
  std::size_t limit = 8;  ///< None is taken for one.
};

/// The same for a list of operations, of which no more than a limit are under way at a time, begun
/// in their order:
///
///     auto trips = co_await all(std::move(fetches), {.limit = 4});
///     if (trips) for (const Result<Trip>& trip : *trips) …
template <class T>
[[nodiscard]] Operation<std::vector<Result<T>>> all(
    std::vector<Operation<T>> operations, AtOnce atOnce = {},
    const SourceLocation& place = SourceLocation::current()) {
  bool readsOnly = true;
  for (const Operation<T>& operation : operations) {
    readsOnly = readsOnly && operation.effect(place) == Effect::reads;
  }
  const auto shared = std::make_shared<const std::vector<Operation<T>>>(std::move(operations));
  const auto startPart = [shared](std::size_t part, std::shared_ptr<detail::Gathering> gathering,
                                  std::vector<Result<T>>& results) {
    return (*shared)[part].start(detail::partHandler<T>(std::move(gathering), part, results[part]));
  };
  return Operation<std::vector<Result<T>>>(
      [startPart, count = shared->size(), atOnce](Completion<std::vector<Result<T>>> handler) {
        return detail::gather(count, atOnce.limit, std::vector<Result<T>>(count), startPart,
                              std::move(handler));
      },
      readsOnly ? Effect::reads : Effect::writes);
}

/// The outcome of the operation with the number `index` of an `all`: its own, or what has ended the
/// whole before. By these `auto [me, cars] = …` takes an outcome apart.
template <std::size_t index, class... T>
[[nodiscard]] std::tuple_element_t<index, Outcomes<T...>> get(Result<Outcomes<T...>>&& outcomes) {
  if (outcomes) return std::get<index>(*std::move(outcomes));
  return outcomes.template failure<typename std::tuple_element_t<index, Outcomes<T...>>::Value>();
}
template <std::size_t index, class... T>
[[nodiscard]] std::tuple_element_t<index, Outcomes<T...>> get(
    const Result<Outcomes<T...>>& outcomes) {
  return get<index>(Result<Outcomes<T...>>(outcomes));
}

}  // namespace orvane

template <class... T>
struct std::tuple_size<orvane::Result<std::tuple<orvane::Result<T>...>>>
    : std::integral_constant<std::size_t, sizeof...(T)> {};

template <std::size_t index, class... T>
struct std::tuple_element<index, orvane::Result<std::tuple<orvane::Result<T>...>>>
    : std::tuple_element<index, std::tuple<orvane::Result<T>...>> {};
