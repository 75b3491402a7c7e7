// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Platform/Deadline.h>
#include <Orvane/Runtime/MainQueueThread.h>

#include <unistd.h>

#include <future>
#include <system_error>
#include <thread>
#include <utility>

namespace orvane {

bool MainQueueThread::start() {
  disown();
  std::promise<void> hasBegun;
  const std::future<void> begun = hasBegun.get_future();
  // Again and again: a `stop()` may be left over from who drained the queue before.
  const bool isStarted = thread_.start([state = state_] {
    while (!state->isStopped) MainQueue::main().run();
    state->drain();
  });
  if (!isStarted) return false;
  MainQueue::main().async([hasBegun = std::move(hasBegun)]() mutable { hasBegun.set_value(); });
  begun.wait();
  MainQueue::main().whenAbandoned([state = state_] { drainLate(state); });
  return true;
}

bool MainQueueThread::stop(std::chrono::milliseconds timeout) {
  if (thread_.isOfAnotherProcess()) return true;
  // Once: a second call would end whoever drains the queue next.
  if (!isToStop_.exchange(true)) {
    MainQueue::main().async([state = state_] {
      // Before others see the end: until this thread has gone, late jobs are its business, too.
      static_cast<void>(state->isFirst());
      state->isStopped = true;
      MainQueue::main().stop();
    });
  }
  return thread_.join(timeout);
}

void MainQueueThread::disown() { MainQueue::main().whenAbandoned(nullptr); }

bool MainQueueThread::State::isFirst() noexcept {
  const std::uint64_t none = static_cast<std::uint64_t>(::getpid()) << 32U;
  std::uint64_t seen = late;
  std::uint64_t next = 0;
  do {
    next = (seen >> 32U == none >> 32U ? seen : none) + 1;
  } while (!late.compare_exchange_weak(seen, next));
  return next == none + 1;
}

void MainQueueThread::State::drain() {
  std::uint64_t seen = late;
  do {
    MainQueue::main().drain();
  } while (!late.compare_exchange_strong(seen, 0));
}

// A call that comes after the end, or in a forked process, which has not got the thread, is to hear
// that, too.
void MainQueueThread::drainLate(const std::shared_ptr<State>& state) {
  const bool isAbandoned = state->isStopped || state->process != ::getpid();
  if (!isAbandoned || !state->isFirst()) return;
  try {
    std::thread([state] { state->drain(); }).detach();
  } catch (const std::system_error&) {
    state->late = 0;  // the queue waits for whoever drains it
  }
}

}  // namespace orvane
