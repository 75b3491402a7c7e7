// SPDX-License-Identifier: Apache-2.0
// The queue on which resolution outcomes and cached answers are delivered.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>

namespace orvane {

class Request;
template <class T>
class Task;

/// Runs jobs one after the other, in order, on the thread that drains it. It has no thread of its
/// own: the application drains it (`run`, `runUntil`, `drain`) or hands in its own loop
/// (`forward`). While nobody does, no call gets past the resolution of the backend's details; the
/// queue warns about that through `log` after some seconds.
class ORVANE_EXPORT MainQueue {
 public:
  using Job = UniqueFunction<void()>;  ///< What is run on the queue; it must not throw.
  /// Posts a job to a loop; called from any thread, the job to be run later on the loop's. Inside
  /// the call it must neither run nor let go of the job, nor use the queue, which is locked, nor
  /// fork.
  using Post = UniqueFunction<void(Job)>;

  /// The main queue of the process, made on first use and never destroyed. A process that was
  /// forked has one of its own: without the jobs of its parent, which are the parent's to run, and
  /// drained by nobody yet; what the queue was handed to (`forward`), or left to, stays.
  [[nodiscard]] static MainQueue& main();

  /// Reads the time by which a job has waited for long.
  using Clock = std::chrono::steady_clock::time_point (*)();

  /// A queue of one's own.
  explicit MainQueue(Clock clock = &std::chrono::steady_clock::now);
  MainQueue(const MainQueue&) = delete;
  MainQueue& operator=(const MainQueue&) = delete;
  ~MainQueue();

  /// Adds a job at the end. Never runs it inside the call. Any thread.
  void async(Job job);

  /// Runs jobs on this thread until `stop()` is called. Jobs may call this, `runUntil` and `drain`
  /// themselves; they then run the jobs behind them.
  void run();
  /// Ends the `run()` under way, or else the next one, after the job at hand. Any thread.
  void stop();

  /// Runs jobs on this thread until `request` has finished. A request that is null has finished.
  /// Where the answer takes a further way to its handler, through `onMain` or as of a
  /// `UserIdentifier`, the request may have finished before the handler runs: `Future::get` waits
  /// for that.
  void runUntil(const std::shared_ptr<Request>& request);
  /// The same with a limit; false when it ran out before the request had finished.
  bool runUntil(const std::shared_ptr<Request>& request, std::chrono::milliseconds limit);
  /// Runs a task to its end and answers its value; an exception that it lets out comes out here.
  /// Runs jobs on this thread meanwhile; where another thread drains the queue, it only waits.
  /// Include Orvane/Common/Task.h.
  template <class T>
  T runUntil(Task<T> task, const SourceLocation& place = SourceLocation::current());

  /// Waits until `request` has finished: draining the queue where that is this thread's business
  /// (see `isDrainedByThisThread`), else leaving it to whoever drains it. On the thread of a loop
  /// that the queue was handed to, and in a handler on a transport's thread, it would wait for
  /// itself: a programming fault.
  void wait(const std::shared_ptr<Request>& request);
  /// The same with a limit; false when it ran out before the request had finished.
  bool wait(const std::shared_ptr<Request>& request, std::chrono::milliseconds limit);

  /// Runs the jobs that are waiting, and those that they add, without waiting for more. Answers how
  /// many they were.
  std::size_t drain();

  /// Waits until the jobs that are waiting have run, and those that they add: draining the queue
  /// where that is this thread's business (see `isDrainedByThisThread`), else leaving it to whoever
  /// drains it. False when they have not within `limit`, and at once on the thread of a loop that
  /// the queue was handed to, which can't run them meanwhile.
  [[nodiscard]] bool settle(std::chrono::milliseconds limit);

  /// Hands the queue to the application's own loop: `post` receives every job from now on, those
  /// that are waiting first. To be called once, by the loop's thread; draining the queue afterwards
  /// is a programming fault.
  void forward(Post post);

  /// True once the queue has been handed to a loop.
  [[nodiscard]] bool isForwarded() const;

  /// True on the thread that drained the queue last, and on every thread before any did: where
  /// waiting for an outcome means draining the queue.
  [[nodiscard]] bool isDrainedByThisThread() const;

  /// Warns through `log` when jobs have been waiting for long, once for each such jam. Answers
  /// after what time it is worth asking again; zero: not before the queue moves, since no job is
  /// waiting, or this jam has been warned about. For threads that wait anyway.
  std::chrono::milliseconds warnWhenStalled();

  /// For who has drained the queue and stops doing so: `onJob` is called when a job comes, and has
  /// to see to it that somebody drains the queue; on the thread that brings the job, outside of any
  /// lock. Null for nothing. It is forgotten when the queue is handed to a loop.
  void whenAbandoned(UniqueFunction<void()> onJob);

  /// For transports: says that this thread delivers answers. Waiting for a request here, which
  /// would wait for the thread itself, is a programming fault from now on.
  static void forbidWaitingOnThisThread() noexcept;

  /// For implementers of `Request`: makes `runUntil` look at its request again.
  void wakeWaiters() noexcept;

 private:
  struct State;

  /// Adds a job, and answers how many have been added by then.
  std::uint64_t add(Job job);

  const std::unique_ptr<State> state_;
};

/// A handler that runs on the main queue whatever thread the answer comes on.
template <class T>
[[nodiscard]] Completion<T> onMain(Completion<T> handler) {
  return [handler = std::move(handler)](Result<T> result) mutable {
    MainQueue::main().async([handler = std::move(handler), result = std::move(result)]() mutable {
      handler(std::move(result));
    });
  };
}

}  // namespace orvane
