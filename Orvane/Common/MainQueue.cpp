// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Deadline.h>
#include <Orvane/Platform/Fatal.h>

#ifndef _WIN32
#include <pthread.h>
#endif

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <future>
#include <iterator>
#include <mutex>
#include <new>
#include <optional>
#include <thread>

namespace orvane {
namespace {

using TimePoint = std::chrono::steady_clock::time_point;

constexpr std::chrono::milliseconds patience{5000};

thread_local bool deliversAnswers = false;

void warnOfStall() {
  log.w(
      "Nobody drains the main queue: no call can finish. Run it (MainQueue::main().run()) or "
      "hand it to the application's loop (MainQueue::main().forward(…)).");
}

void checkMayWait(const Request& request) {
  precondition(!deliversAnswers || request.isFinished(),
               "nobody can wait for a request on a transport's thread, which is to answer it: "
               "co_await it there, or bring the answer before to the main queue with onMain()");
}

}  // namespace

struct MainQueue::State {
  explicit State(MainQueue::Clock clock) : now(clock) {}

  const MainQueue::Clock now;
  std::mutex mutex;
  std::condition_variable changed;   // for who drains: a job has come, or a request has finished
  std::condition_variable finished;  // for who only waits: a request has finished
  std::deque<Job> jobs;
  std::deque<Job> ofParents;  // in a forked process; what they hold must not be let go of
  std::uint64_t added = 0;
  int running = 0;  // jobs, one inside the other
  Post post;
  bool isForwarded = false;
  bool isStopped = false;
  bool hasWarned = false;
  std::optional<std::thread::id> drainer;
  TimePoint waitingSince;
  std::atomic<int> waiters{0};
  std::shared_ptr<UniqueFunction<void()>> onAbandonedJob;

  // Called by a thread that is about to run jobs.
  void becomeDrainer() {
    precondition(!isForwarded, "the main queue is the application's loop's; run that instead");
    drainer = std::this_thread::get_id();
  }

  Job next() {
    Job job = std::move(jobs.front());
    jobs.pop_front();
    waitingSince = now();
    hasWarned = false;
    return job;
  }

  // Whether nobody has taken a job for too long; true once.
  [[nodiscard]] bool hasBegunToStall() {
    return !hasWarned && now() - waitingSince >= patience && !std::exchange(hasWarned, true);
  }

  // Runs the next job without the lock.
  void runNext(std::unique_lock<std::mutex>& lock) {
    Job job = next();
    ++running;
    lock.unlock();
    job();
    job = nullptr;  // what it holds is let go of without the lock
    lock.lock();
    --running;
  }

  [[nodiscard]] bool isDrainedByThisThread() const {
    return !drainer || *drainer == std::this_thread::get_id();
  }

  // In a process that was just forked by a thread with the lock. Who waited for the queue has not
  // come along; what they left in the conditions must not be waited for.
  void leaveParent() {
    new (&changed) std::condition_variable;
    new (&finished) std::condition_variable;
    ofParents.insert(ofParents.end(), std::make_move_iterator(jobs.begin()),
                     std::make_move_iterator(jobs.end()));
    jobs.clear();
    const bool isDrainer = drainer && *drainer == std::this_thread::get_id();
    if (isForwarded || isDrainer) return;
    drainer.reset();
    isStopped = false;
    running = 0;
  }

  // Forking takes the lock, so that the child finds the queue whole.
  static void surviveForks(State& main) {
#ifndef _WIN32
    static State* state = nullptr;
    state = &main;
    pthread_atfork([] { state->mutex.lock(); }, [] { state->mutex.unlock(); },
                   [] {
                     state->leaveParent();
                     state->mutex.unlock();
                   });
#else
    static_cast<void>(main);
#endif
  }
};

MainQueue& MainQueue::main() {
  static MainQueue& queue = []() -> MainQueue& {
    auto& made = *new MainQueue;
    State::surviveForks(*made.state_);
    return made;
  }();
  return queue;
}

MainQueue::MainQueue(Clock clock) : state_(std::make_unique<State>(clock)) {}
MainQueue::~MainQueue() = default;

void MainQueue::async(Job job) { add(std::move(job)); }

std::uint64_t MainQueue::add(Job job) {
  bool isJammed = false;
  bool isStalled = false;
  std::uint64_t number = 0;
  std::shared_ptr<UniqueFunction<void()>> onJob;
  {
    const std::scoped_lock lock(state_->mutex);
    number = ++state_->added;
    if (state_->isForwarded) {
      // Inside the lock, so that jobs reach the loop in the order in which they came.
      state_->post(std::move(job));
      return number;
    }
    isJammed = !state_->jobs.empty();
    if (!isJammed) state_->waitingSince = state_->now();
    isStalled = isJammed && state_->hasBegunToStall();
    state_->jobs.push_back(std::move(job));
    onJob = state_->onAbandonedJob;
  }
  // Who drains has been told of the jobs before this one, and takes it with them.
  if (!isJammed) state_->changed.notify_all();
  if (onJob) (*onJob)();
  if (isStalled) warnOfStall();
  return number;
}

void MainQueue::run() {
  std::unique_lock lock(state_->mutex);
  state_->becomeDrainer();
  while (true) {
    state_->changed.wait(lock, [this] { return state_->isStopped || !state_->jobs.empty(); });
    if (std::exchange(state_->isStopped, false)) return;
    state_->runNext(lock);
  }
}

void MainQueue::stop() {
  {
    const std::scoped_lock lock(state_->mutex);
    state_->isStopped = true;
  }
  state_->changed.notify_all();
}

void MainQueue::runUntil(const std::shared_ptr<Request>& request) {
  while (!runUntil(request, std::chrono::hours(1))) {
  }
}

bool MainQueue::runUntil(const std::shared_ptr<Request>& request, std::chrono::milliseconds limit) {
  if (!request) return true;
  checkMayWait(*request);
  const TimePoint end = deadlineAfter(limit);
  state_->waiters.fetch_add(1, std::memory_order_seq_cst);
  std::unique_lock lock(state_->mutex);
  state_->becomeDrainer();
  bool isInTime = true;
  while (!request->isFinished() && isInTime) {
    if (state_->jobs.empty()) {
      isInTime = state_->changed.wait_until(lock, end) == std::cv_status::no_timeout;
      continue;
    }
    state_->runNext(lock);
    isInTime = std::chrono::steady_clock::now() < end;
  }
  lock.unlock();
  state_->waiters.fetch_sub(1, std::memory_order_seq_cst);
  return request->isFinished();
}

void MainQueue::wait(const std::shared_ptr<Request>& request) {
  while (!wait(request, std::chrono::hours(1))) {
  }
}

bool MainQueue::wait(const std::shared_ptr<Request>& request, std::chrono::milliseconds limit) {
  if (!request || isDrainedByThisThread()) return runUntil(request, limit);
  checkMayWait(*request);
  const TimePoint end = deadlineAfter(limit);
  state_->waiters.fetch_add(1, std::memory_order_seq_cst);
  std::unique_lock lock(state_->mutex);
  while (!request->isFinished() && std::chrono::steady_clock::now() < end) {
    state_->finished.wait_until(lock, std::min(end, deadlineAfter(patience)));
    lock.unlock();
    warnWhenStalled();
    lock.lock();
  }
  lock.unlock();
  state_->waiters.fetch_sub(1, std::memory_order_seq_cst);
  return request->isFinished();
}

std::size_t MainQueue::drain() {
  std::size_t count = 0;
  std::unique_lock lock(state_->mutex);
  state_->becomeDrainer();
  for (; !state_->jobs.empty(); ++count) state_->runNext(lock);
  return count;
}

bool MainQueue::settle(std::chrono::milliseconds limit) {
  std::unique_lock lock(state_->mutex);
  if (state_->isDrainedByThisThread()) {
    if (state_->isForwarded) return false;
    lock.unlock();
    drain();
    return true;
  }
  const TimePoint end = deadlineAfter(limit);
  while (state_->isForwarded || !state_->jobs.empty() || state_->running > 0) {
    lock.unlock();
    // A job that comes behind all others and tells how many have been added when it runs.
    auto told = std::make_shared<std::promise<std::uint64_t>>();
    std::future<std::uint64_t> count = told->get_future();
    const std::uint64_t number = add([this, told] {
      const std::scoped_lock again(state_->mutex);
      told->set_value(state_->added);
    });
    if (count.wait_until(end) != std::future_status::ready) return false;
    if (count.get() == number) return true;
    lock.lock();
  }
  return true;
}

void MainQueue::forward(Post post) {
  const std::scoped_lock lock(state_->mutex);
  precondition(!state_->isForwarded, "the main queue has been handed to a loop before");
  state_->post = std::move(post);
  state_->isForwarded = true;
  state_->onAbandonedJob = nullptr;
  state_->drainer = std::this_thread::get_id();
  for (Job& job : state_->jobs) state_->post(std::move(job));
  state_->jobs.clear();
}

void MainQueue::whenAbandoned(UniqueFunction<void()> onJob) {
  auto shared = onJob ? std::make_shared<UniqueFunction<void()>>(std::move(onJob)) : nullptr;
  const std::scoped_lock lock(state_->mutex);
  std::swap(state_->onAbandonedJob, shared);
}

void MainQueue::forbidWaitingOnThisThread() noexcept { deliversAnswers = true; }

bool MainQueue::isForwarded() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->isForwarded;
}

bool MainQueue::isDrainedByThisThread() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->isDrainedByThisThread();
}

std::chrono::milliseconds MainQueue::warnWhenStalled() {
  {
    const std::scoped_lock lock(state_->mutex);
    if (state_->jobs.empty() || state_->hasWarned) return std::chrono::milliseconds::zero();
    const auto left = state_->waitingSince + patience - state_->now();
    if (left.count() > 0) return std::chrono::ceil<std::chrono::milliseconds>(left);
    state_->hasWarned = true;
  }
  warnOfStall();
  return std::chrono::milliseconds::zero();
}

void MainQueue::wakeWaiters() noexcept {
  if (state_->waiters.load(std::memory_order_seq_cst) == 0) return;
  // The lock makes sure that a waiter which has just looked at its request is asleep by now.
  { const std::scoped_lock lock(state_->mutex); }
  state_->changed.notify_all();
  state_->finished.notify_all();
}

}  // namespace orvane
