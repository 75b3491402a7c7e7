// SPDX-License-Identifier: Apache-2.0
// A handler that keeps what it is given, and the identities and queues that calls are made with.
#pragma once

#include <Orvane/Common/Identity.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Result.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvane {

/// The results of an operation. Each `handler()` keeps it alive; any thread may call them.
template <class T>
class Outcome {
 public:
  [[nodiscard]] Completion<T> handler() const {
    return [kept = kept_](Result<T> result) {
      const std::scoped_lock lock(kept->mutex);
      kept->results.push_back(std::move(result));
      kept->thread = std::this_thread::get_id();
    };
  }

  [[nodiscard]] std::size_t count() const { return results().size(); }

  /// The one result there must be.
  [[nodiscard]] Result<T> result() const {
    const auto all = results();
    EXPECT_EQ(all.size(), 1U);
    return all.empty() ? Result<T>{} : all.front();
  }

  /// The thread of the last result.
  [[nodiscard]] std::thread::id thread() const {
    const std::scoped_lock lock(kept_->mutex);
    return kept_->thread;
  }

  /// True while a handler that was given out is alive.
  [[nodiscard]] bool isHeld() const { return kept_.use_count() > 1; }

 private:
  struct Kept {
    std::mutex mutex;
    std::vector<Result<T>> results;
    std::thread::id thread;
  };

  [[nodiscard]] std::vector<Result<T>> results() const {
    const std::scoped_lock lock(kept_->mutex);
    return kept_->results;
  }

  std::shared_ptr<Kept> kept_ = std::make_shared<Kept>();
};

/// What the operation that `start` calls with a handler answers at once.
template <class T, class Start>
[[nodiscard]] Result<T> resultOf(Start start) {
  const Outcome<T> outcome;
  start(outcome.handler());
  return outcome.result();
}

/// An identity that no other test has: what the library caches for it is its own.
[[nodiscard]] inline Identity freshIdentity() {
  static int count = 0;
  return {"key-" + std::to_string(++count), "reference"};
}

/// Drains the main queue until `request` has finished; false when it never does.
[[nodiscard]] inline bool finishes(const std::shared_ptr<Request>& request) {
  return MainQueue::main().runUntil(request, std::chrono::seconds(30));
}

}  // namespace orvane
