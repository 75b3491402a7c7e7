// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Runtime/MainQueueThread.h>

#include <future>

namespace orvane {

MainQueueThread::MainQueueThread() {
  std::promise<void> hasBegun;
  const std::future<void> begun = hasBegun.get_future();
  MainQueue::main().async([hasBegun = std::move(hasBegun)]() mutable { hasBegun.set_value(); });
  precondition(thread_.start([] { MainQueue::main().run(); }), "there is no thread for the queue");
  begun.wait();
}

bool MainQueueThread::stop(std::chrono::milliseconds timeout) {
  // Once: a second call would end whoever drains the queue next.
  if (!isStopped_.exchange(true)) MainQueue::main().stop();
  return thread_.join(timeout);
}

}  // namespace orvane
