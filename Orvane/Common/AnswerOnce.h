// SPDX-License-Identifier: Apache-2.0
// A handler that tells, too, that it will never be called.
#pragma once

#include <Orvane/Platform/Result.h>

#include <memory>
#include <utility>

namespace orvane::detail {

/// Hands an outcome on to `taker->answer(result)`; where it is let go of without a call, it calls
/// `taker->unanswered()` instead. That may be under somebody's lock.
template <class T, class Taker>
class AnswerOnce {
 public:
  explicit AnswerOnce(Taker taker) : taker_(std::move(taker)) {}
  AnswerOnce(AnswerOnce&&) noexcept = default;
  AnswerOnce& operator=(AnswerOnce&&) = delete;
  AnswerOnce(const AnswerOnce&) = delete;
  AnswerOnce& operator=(const AnswerOnce&) = delete;
  ~AnswerOnce() {
    if (taker_) taker_->unanswered();
  }

  void operator()(Result<T> result) {
    const Taker taker = std::move(taker_);
    if (taker) taker->answer(std::move(result));
  }

 private:
  Taker taker_;  // empty once moved from
};

/// The same for what is shared by pointer.
template <class T, class State>
[[nodiscard]] AnswerOnce<T, std::shared_ptr<State>> answerOnce(std::shared_ptr<State> state) {
  return AnswerOnce<T, std::shared_ptr<State>>(std::move(state));
}

}  // namespace orvane::detail
