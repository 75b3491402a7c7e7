// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Testing/Script.h>

#include <future>
#include <thread>

namespace orvane {
namespace {

// A queue of its own with a thread that drains it. Never destroyed: answers may still be under way
// while the process ends.
MainQueue& anotherThread() {
  static MainQueue& queue = []() -> MainQueue& {
    auto& made = *new MainQueue;
    std::thread([&made] { made.run(); }).detach();
    return made;
  }();
  return queue;
}

}  // namespace

void runOnAnotherThread(MainQueue::Job job) { anotherThread().async(std::move(job)); }

void waitForAnotherThread() {
  std::promise<void> done;
  runOnAnotherThread([&done] { done.set_value(); });
  done.get_future().wait();
}

}  // namespace orvane
