// SPDX-License-Identifier: Apache-2.0
// Operations that are tried again when they fail for a reason that passes.
#pragma once

#include <Orvane/Common/Operation.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Common/Timers.h>
#include <Orvane/Platform/Export.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane {

/// What is tried again, how often, and after what pauses. Nothing is tried again unless asked for.
///
/// Tried again is what failed with an error that says that it passes (`Error::isTransient`): a
/// connection that failed, a time-out, and the refusals 429, 502, 503 and 504. The pause before the
/// n-th repetition is a random time below `firstPause` * 2^(n-1), and below `longestPause`
/// (exponential back-off with full jitter). Where the server names one ("Retry-After", RFC 9110,
/// section 10.2.3, seconds or a date), it is no shorter than that.
struct ORVANE_EXPORT RetryPolicy {
  /// How often it is tried in all; none is taken for once.
  std::size_t attempts = 3;
  /// The bound of the first pause; it doubles with each one.
  std::chrono::milliseconds firstPause{500};
  /// The bound beyond which none grows.
  std::chrono::milliseconds longestPause{30'000};
  /// No attempt begins later than this after the first one; the failure before is the outcome then.
  std::chrono::milliseconds totalTime{120'000};
  /// Writes, too, of which the former attempt may well have been carried out.
  bool includesWrites = false;
  /// Chance: a number from 0 up to 1, anew in each call, by any thread. Null: the process's own.
  double (*chance)() = nullptr;
  /// Null: those of the process.
  std::shared_ptr<Timers> timers{};
};

namespace detail {

/// The attempts at one operation, one after the other.
class ORVANE_EXPORT Attempts {
 public:
  explicit Attempts(RetryPolicy policy);

  /// After what pause to try again after this failure; absent where that is not to be done.
  [[nodiscard]] std::optional<std::chrono::milliseconds> pauseAfter(
      const std::optional<Error>& failure);
  [[nodiscard]] Timers& timers() const noexcept;

 private:
  RetryPolicy policy_;
  Timers::Clock::time_point start_;
  std::size_t made_ = 1;
};

template <class T>
class Retrying : public Relay<T>, public std::enable_shared_from_this<Retrying<T>> {
 public:
  Retrying(Operation<T> operation, RetryPolicy policy, Completion<T> handler)
      : Relay<T>(std::move(handler)),
        operation_(std::move(operation)),
        attempts_(std::move(policy)) {}

  RequestHandle attempt() {
    return this->pass(operation_, this->shared_from_this(),
                      [](auto self, Result<T> result) { self->attempted(std::move(result)); });
  }

 private:
  void attempted(Result<T> result) {
    const auto pause = result ? std::nullopt : attempts_.pauseAfter(result.error());
    if (!pause) return this->answer(std::move(result));
    if (this->box()->cancelled()) return;
    this->box()->step([&] {
      return attempts_.timers().after(*pause,
                                      [self = this->shared_from_this()] { self->attempt(); });
    });
  }

  const Operation<T> operation_;
  Attempts attempts_;
};

}  // namespace detail

/// The same operation, tried again as the policy says: `retrying(trips.fetch("17"), {.attempts =
/// 4})`. The last failure is the outcome. A write is tried once, unless the policy includes writes.
/// It can be cancelled at any time, also while it pauses, and answers on the thread of the attempt
/// that settles it. Each start begins to count anew.
template <class T>
[[nodiscard]] Operation<T> retrying(Operation<T> operation, RetryPolicy policy = {},
                                    const SourceLocation& place = SourceLocation::current()) {
  const Effect effect = operation.effect(place);
  if (effect == Effect::writes && !policy.includesWrites) return operation;
  const auto start = [policy = std::move(policy)](const Operation<T>& tried,
                                                  Completion<T> handler) -> RequestHandle {
    return std::make_shared<detail::Retrying<T>>(tried, policy, std::move(handler))->attempt();
  };
  return detail::over(operation, start, place);
}

/// A transport that tries again what another one fails at, as a policy says: for who wants it
/// everywhere (`RuntimeOptions::retry`).
class ORVANE_EXPORT RetryingRequestManager final : public RequestManager {
 public:
  /// Tries again what `requestManager` fails at.
  RetryingRequestManager(std::shared_ptr<RequestManager> requestManager, RetryPolicy policy)
      : requestManager_(std::move(requestManager)), policy_(std::move(policy)) {}
  ~RetryingRequestManager() override;

  RequestHandle send(Verb verb, URL url, std::string body, Headers headers,
                     Completion<std::string> then) override;

 private:
  const std::shared_ptr<RequestManager> requestManager_;
  const RetryPolicy policy_;
};

}  // namespace orvane
