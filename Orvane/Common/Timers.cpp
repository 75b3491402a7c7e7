// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Timers.h>
#include <Orvane/Platform/Deadline.h>
#include <Orvane/Platform/Signals.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace orvane {
namespace {

constexpr std::chrono::seconds patience{10};

class ThreadTimers;

// A job that waits, or has waited.
class Timer final : public Request {
 public:
  explicit Timer(ThreadTimers& timers) : timers_(timers) {}
  bool cancel() override;
  [[nodiscard]] bool isFinished() const noexcept override;

 private:
  friend class ThreadTimers;
  enum class State : std::uint8_t { waiting, running, finished, cancelled };
  using Waiting = std::multimap<Timers::Clock::time_point, std::shared_ptr<Timer>>;

  ThreadTimers& timers_;
  // Under the timers' lock.
  UniqueFunction<void()> job_;
  Waiting::iterator place_;
  std::atomic<State> state_{State::waiting};
};

class ThreadTimers final : public Timers {
 public:
  RequestHandle after(std::chrono::milliseconds pause, UniqueFunction<void()> job) override {
    auto timer = std::make_shared<Timer>(*this);
    timer->job_ = std::move(job);
    bool isStuck = false;
    {
      const std::scoped_lock lock(mutex_);
      timer->place_ = waiting_.emplace(deadlineAfter(pause), timer);
      if (!isRunning_) {
        isRunning_ = begin();
        isStuck = !isRunning_;
      } else if (timer->place_ == waiting_.begin()) {
        changed_.notify_one();
      }
    }
    if (isStuck) log.e("No thread can be started for timers: limits of time do not hold.");
    return timer;
  }

  [[nodiscard]] Clock::time_point now() const override { return Clock::now(); }

  bool cancel(Timer& timer) {
    UniqueFunction<void()> job;
    std::shared_ptr<Timer> kept;
    {
      const std::scoped_lock lock(mutex_);
      if (timer.state_ != Timer::State::waiting) return timer.state_ == Timer::State::cancelled;
      timer.state_ = Timer::State::cancelled;
      job = std::move(timer.job_);
      kept = std::move(timer.place_->second);
      waiting_.erase(timer.place_);
    }
    return true;  // what the job holds is let go of without the lock
  }

 private:
  [[nodiscard]] bool begin() {
    try {
      std::thread([this] { run(); }).detach();
      return true;
    } catch (const std::system_error&) {
      return false;  // the next one tries again
    }
  }

  void run() {
    blockSignals();
    MainQueue::forbidWaitingOnThisThread();
    std::unique_lock lock(mutex_);
    while (true) {
      if (waiting_.empty()) {
        changed_.wait_for(lock, patience);
        if (!waiting_.empty()) continue;
        isRunning_ = false;
        return;
      }
      const auto first = waiting_.begin();
      if (first->first > Clock::now()) {
        changed_.wait_until(lock, Clock::time_point(first->first));
        continue;
      }
      const std::shared_ptr<Timer> timer = std::move(first->second);
      waiting_.erase(first);
      timer->state_ = Timer::State::running;
      UniqueFunction<void()> job = std::move(timer->job_);
      lock.unlock();
      job();
      job = nullptr;
      timer->state_ = Timer::State::finished;
      MainQueue::main().wakeWaiters();
      lock.lock();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  Timer::Waiting waiting_;
  bool isRunning_ = false;
};

bool Timer::cancel() { return timers_.cancel(*this); }

bool Timer::isFinished() const noexcept {
  const State state = state_.load();
  return state == State::finished || state == State::cancelled;
}

}  // namespace

Timers::~Timers() = default;

Timers& Timers::ofProcess() {
  static std::atomic<ThreadTimers*> timers = [] {
  // A forked child has neither the thread nor, perhaps, the lock.
#ifndef _WIN32
    pthread_atfork(nullptr, nullptr, [] { timers = new ThreadTimers; });
#endif
    return new ThreadTimers;
  }();
  return *timers;
}

}  // namespace orvane
