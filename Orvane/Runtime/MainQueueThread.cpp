// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Runtime/MainQueueThread.h>

#include <future>

namespace orvane {

bool MainQueueThread::start() {
  std::promise<void> hasBegun;
  const std::future<void> begun = hasBegun.get_future();
  if (!thread_.start([] { MainQueue::main().run(); })) return false;
  MainQueue::main().async([hasBegun = std::move(hasBegun)]() mutable { hasBegun.set_value(); });
  begun.wait();
  return true;
}

bool MainQueueThread::stop(std::chrono::milliseconds timeout) {
  // Once: a second call would end whoever drains the queue next.
  if (!isStopped_.exchange(true)) MainQueue::main().stop();
  return thread_.join(timeout);
}

}  // namespace orvane
