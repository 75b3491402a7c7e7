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
  });
  if (!isStarted) return false;
  MainQueue::main().async([hasBegun = std::move(hasBegun)]() mutable { hasBegun.set_value(); });
  begun.wait();
  MainQueue::main().whenAbandoned([state = state_] { drainLate(state); });
  return true;
}

bool MainQueueThread::settle(std::chrono::milliseconds timeout) const {
  if (thread_.isCurrent() || thread_.isOfAnotherProcess()) return false;
  std::promise<void> isDone;
  const std::future<void> done = isDone.get_future();
  MainQueue::main().async([isDone = std::move(isDone)]() mutable {
    MainQueue::main().drain();
    isDone.set_value();
  });
  return done.wait_until(deadlineAfter(timeout)) == std::future_status::ready;
}

bool MainQueueThread::stop(std::chrono::milliseconds timeout) {
  if (thread_.isOfAnotherProcess()) return true;
  // Once: a second call would end whoever drains the queue next.
  if (!isToStop_.exchange(true)) {
    MainQueue::main().async([state = state_] {
      state->isStopped = true;
      MainQueue::main().drain();
      MainQueue::main().stop();
    });
  }
  return thread_.join(timeout);
}

void MainQueueThread::disown() { MainQueue::main().whenAbandoned(nullptr); }

// A call that comes after the end, or in a forked process, which has not got the thread, is to hear
// that, too.
void MainQueueThread::drainLate(const std::shared_ptr<State>& state) {
  const bool isAbandoned = state->isStopped || state->process != ::getpid();
  if (!isAbandoned || state->isDraining.exchange(true)) return;
  const auto run = [state] {
    MainQueue::main().drain();
    state->isDraining = false;
    // For a job that came before that was so, and started no thread.
    MainQueue::main().drain();
  };
  try {
    std::thread(run).detach();
  } catch (const std::system_error&) {
    state->isDraining = false;  // the queue waits for whoever drains it
  }
}

}  // namespace orvane
