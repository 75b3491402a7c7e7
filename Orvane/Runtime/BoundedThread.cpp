// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/Deadline.h>
#include <Orvane/Runtime/BoundedThread.h>

#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <system_error>
#include <utility>

namespace orvane {

struct BoundedThread::State {
  std::mutex mutex;
  std::condition_variable ended;
  bool isRunning = false;
  std::atomic<std::thread::id> id{};

  void setRunning(bool running) {
    {
      const std::scoped_lock lock(mutex);
      isRunning = running;
    }
    ended.notify_all();
  }

  bool waitForEnd(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex);
    return ended.wait_until(lock, deadlineAfter(timeout), [this] { return !isRunning; });
  }
};

BoundedThread::BoundedThread() : state_(std::make_shared<State>()) {}

BoundedThread::~BoundedThread() {
  if (thread_.joinable()) thread_.detach();
}

bool BoundedThread::start(UniqueFunction<void()> body) {
  const std::scoped_lock lock(mutex_);
  state_->setRunning(true);
  process_ = ::getpid();
  try {
    thread_ = std::thread([state = state_, body = std::move(body)]() mutable {
      state->id = std::this_thread::get_id();
      body();
      body = nullptr;
      state->id = std::thread::id();  // the next thread may get this one's
      state->setRunning(false);
    });
  } catch (const std::system_error&) {
    state_->setRunning(false);
    return false;
  }
  return true;
}

bool BoundedThread::isCurrent() const noexcept {
  return state_->id.load(std::memory_order_relaxed) == std::this_thread::get_id();
}

bool BoundedThread::isOfAnotherProcess() const noexcept {
  const pid_t process = process_.load(std::memory_order_relaxed);
  return process != 0 && process != ::getpid();
}

bool BoundedThread::join(std::chrono::milliseconds timeout) {
  if (isOfAnotherProcess()) return true;
  if (isCurrent() || !state_->waitForEnd(timeout)) return false;
  const std::scoped_lock lock(mutex_);
  if (thread_.joinable()) thread_.join();
  return true;
}

}  // namespace orvane
