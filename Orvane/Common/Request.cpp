// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Request.h>

namespace orvane {

Request::~Request() = default;

std::uint64_t RequestBox::nextStep() {
  const std::scoped_lock lock(mutex_);
  return ++step_;
}

void RequestBox::keep(std::uint64_t number, RequestHandle request) {
  RequestHandle former;
  bool isInterrupted = false;
  {
    const std::scoped_lock lock(mutex_);
    // Cancelling changes the state before it takes the lock: either it sees the request stored
    // here, or this sees the box cancelled.
    if (number == step_ && state_.load(std::memory_order_acquire) == State::pending) {
      former = std::exchange(value_, std::move(request));
      return;
    }
    isInterrupted = isInterrupted_;
  }
  if ((isInterrupted || cancelled()) && request) request->cancel();
}

RequestHandle RequestBox::letGo(bool isInterrupted) {
  const std::scoped_lock lock(mutex_);
  ++step_;
  isInterrupted_ = isInterrupted;
  return std::move(value_);
}

bool RequestBox::claim() {
  State expected = State::pending;
  if (!state_.compare_exchange_strong(expected, State::claimed, std::memory_order_acq_rel)) {
    return false;
  }
  letGo();  // the finished request and its closure, which may hold this box
  return true;
}

bool RequestBox::claim(RequestHandle& underWay) {
  State expected = State::pending;
  if (!state_.compare_exchange_strong(expected, State::claimed, std::memory_order_acq_rel)) {
    return false;
  }
  underWay = letGo(true);
  return true;
}

void RequestBox::finish() noexcept {
  state_.store(State::finished, std::memory_order_seq_cst);
  MainQueue::main().wakeWaiters();
}

bool RequestBox::cancel() {
  State expected = State::pending;
  if (!state_.compare_exchange_strong(expected, State::cancelled, std::memory_order_seq_cst)) {
    return expected == State::cancelled;
  }
  if (const RequestHandle request = letGo()) request->cancel();
  MainQueue::main().wakeWaiters();
  return true;
}

bool RequestBox::isFinished() const noexcept {
  const State state = state_.load(std::memory_order_seq_cst);
  return state == State::finished || state == State::cancelled;
}

}  // namespace orvane
