// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Testing/MovableTimers.h>

#include <map>
#include <mutex>
#include <utility>

namespace orvane {

struct MovableTimers::State {
  mutable std::mutex mutex;
  Clock::time_point now;
  std::multimap<Clock::time_point, std::shared_ptr<Timer>> waiting;
};

class MovableTimers::Timer final : public Request {
 public:
  explicit Timer(UniqueFunction<void()> job) : job_(std::move(job)) {}

  void run() {
    if (!box_.claim()) return;
    std::exchange(job_, nullptr)();
    box_.finish();
  }

  bool cancel() override {
    if (box_.cancelled()) return true;
    if (!box_.cancel()) return false;
    job_ = nullptr;
    return true;
  }
  [[nodiscard]] bool isFinished() const noexcept override { return box_.isFinished(); }

 private:
  UniqueFunction<void()> job_;
  RequestBox box_;
};

MovableTimers::MovableTimers() : state_(std::make_shared<State>()) {}
MovableTimers::~MovableTimers() = default;

RequestHandle MovableTimers::after(std::chrono::milliseconds pause, UniqueFunction<void()> job) {
  auto timer = std::make_shared<Timer>(std::move(job));
  const std::scoped_lock lock(state_->mutex);
  state_->waiting.emplace(state_->now + pause, timer);
  return timer;
}

Timers::Clock::time_point MovableTimers::now() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->now;
}

std::size_t MovableTimers::advance(std::chrono::milliseconds time) {
  std::size_t count = 0;
  std::unique_lock lock(state_->mutex);
  const Clock::time_point end = state_->now + time;
  while (!state_->waiting.empty() && state_->waiting.begin()->first <= end) {
    const auto first = state_->waiting.begin();
    state_->now = first->first;
    const std::shared_ptr<Timer> timer = std::move(first->second);
    state_->waiting.erase(first);
    if (timer->isFinished()) continue;
    ++count;
    lock.unlock();
    timer->run();
    lock.lock();
  }
  state_->now = end;
  return count;
}

std::size_t MovableTimers::waiting() const {
  const std::scoped_lock lock(state_->mutex);
  std::size_t count = 0;
  for (const auto& [time, timer] : state_->waiting) count += timer->isFinished() ? 0U : 1U;
  return count;
}

std::chrono::milliseconds MovableTimers::untilNext() const {
  const std::scoped_lock lock(state_->mutex);
  for (const auto& [time, timer] : state_->waiting) {
    if (!timer->isFinished()) {
      return std::chrono::ceil<std::chrono::milliseconds>(time - state_->now);
    }
  }
  return std::chrono::milliseconds::zero();
}

}  // namespace orvane
