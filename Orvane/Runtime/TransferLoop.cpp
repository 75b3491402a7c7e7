// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/MainQueue.h>
#include <Orvane/Platform/Deadline.h>
#include <Orvane/Platform/Signals.h>
#include <Orvane/Runtime/ConfiguredProxy.h>
#include <Orvane/Runtime/CurlErrors.h>
#include <Orvane/Runtime/TransferLoop.h>
#include <Orvane/Runtime/TransportError.h>
#include <Orvane/Runtime/TransportProblems.h>

#include <openssl/crypto.h>

#include <algorithm>
#include <csignal>
#include <limits>
#include <thread>
#include <utility>

namespace orvane {
namespace {

// Handles that wait for their next request. Each holds a few buffers.
constexpr std::size_t mostIdleHandles = 32;

// Connections kept open, to all hosts together.
constexpr long mostConnections = 64;

// While transfers run, libcurl is asked though it has announced nothing: what it forgets to
// announce (7.88 does of one answer in some 150,000, over connections that many share) would wait
// for the server's next word. First after so long, then after twice as long each time.
constexpr std::chrono::milliseconds shortestPause{16};
constexpr std::chrono::milliseconds longestPause{1000};

TransportError shutDown() { return TransportError(TransportError::Kind::cancelled); }

TransportError orphaned() {
  return TransportError(TransportError::Kind::other,
                        "this process was forked after the transport had started, and has not got "
                        "its thread: a forked process needs a transport of its own");
}

// To come before anything else that asks something of OpenSSL: its first initialisation decides.
// False when libcurl can't be initialised.
bool prepareProcess() {
  static const bool isPrepared = [] {
    // Without OpenSSL's cleanup on exit, which would pull the ground from under a thread that is
    // still transferring when `main` returns.
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
    return curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  }();
  return isPrepared;
}

CURLM* makeMulti(const TransportOptions& options) {
  CURLM* multi = curl_multi_init();
  if (multi == nullptr) return nullptr;
  const long perHost = static_cast<long>(options.maximumConnectionsPerHost);
  curl_multi_setopt(multi, CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
  curl_multi_setopt(multi, CURLMOPT_MAX_HOST_CONNECTIONS, perHost);
  curl_multi_setopt(multi, CURLMOPT_MAXCONNECTS, std::max(mostConnections, perHost));
  return multi;
}

}  // namespace

Result<std::shared_ptr<TransferLoop>> TransferLoop::make(TransportOptions options) {
  const ConfigurationError noLibcurl("libcurl can't be initialised");
  if (!prepareProcess()) return noLibcurl;
  if (auto problem = problemWith(options)) return *std::move(problem);
  if (auto problem = separateProxyCredentials(options)) return *std::move(problem);
  auto loop = std::make_shared<TransferLoop>(std::move(options));
  if (loop->multi_ == nullptr) return noLibcurl;
  return loop;
}

TransferLoop::TransferLoop(TransportOptions options)
    : options_(std::move(options)),
      multi_(makeMulti(options_)),
      lines_(options_.maximumConnectionsPerHost) {}

TransferLoop::~TransferLoop() {
  if (multi_ != nullptr) curl_multi_cleanup(multi_);
}

void TransferLoop::start(const std::shared_ptr<Transfer>& transfer) {
  // Before the lock, which a thread of the parent's may have held.
  if (thread_.isOfAnotherProcess()) return transfer->complete(orphaned());
  std::unique_lock lock(mutex_);
  if (auto error = problemWithStarting()) {
    lock.unlock();
    return transfer->complete(*std::move(error));
  }
  ++waiting_;
  inbox_.started.push_back(transfer);
  wake(std::move(lock));
}

std::optional<Error> TransferLoop::problemWithStarting() {
  if (inbox_.isStopping) return shutDown();
  if (options_.maximumWaitingRequests > 0 && waiting_ >= options_.maximumWaitingRequests) {
    return TransportError(TransportError::Kind::overloaded);
  }
  if (!hasStarted_ && process_ != ::getpid()) {
    // Forked before the first request: who wakes this handle would wake the parent's.
    curl_multi_cleanup(std::exchange(multi_, makeMulti(options_)));
    if (multi_ == nullptr) return TransportError(TransportError::Kind::other, "no libcurl");
    process_ = ::getpid();
  }
  if (!hasStarted_) hasStarted_ = thread_.start([self = shared_from_this()] { self->run(); });
  if (!hasStarted_) return TransportError(TransportError::Kind::other, "no thread can be started");
  return std::nullopt;
}

void TransferLoop::drop(const std::shared_ptr<Transfer>& transfer) {
  if (thread_.isOfAnotherProcess()) return;
  std::unique_lock lock(mutex_);
  if (inbox_.isStopping || !hasStarted_) return;
  inbox_.dropped.push_back(transfer);
  wake(std::move(lock));
}

void TransferLoop::wake(std::unique_lock<std::mutex> lock) {
  if (!isWaiting_.exchange(false)) return;
  // Outside the lock, for which the thread would have to wait as soon as it is awake; counted,
  // because nobody may wake a thread that has closed its handle.
  wakers_.fetch_add(1);
  lock.unlock();
  curl_multi_wakeup(multi_);
  wakers_.fetch_sub(1);
}

bool TransferLoop::waitUntilIdle(std::chrono::milliseconds timeout) {
  if (thread_.isOfAnotherProcess()) return true;
  if (thread_.isCurrent()) return false;
  std::unique_lock lock(mutex_);
  return isIdle_.wait_until(lock, deadlineAfter(timeout), [this] { return unfinished_ == 0; });
}

void TransferLoop::hasFinished() noexcept {
  if (--unfinished_ != 0 || thread_.isOfAnotherProcess()) return;
  // The lock makes sure that who has just looked is asleep by now.
  { const std::scoped_lock lock(mutex_); }
  isIdle_.notify_all();
}

bool TransferLoop::shutdown(std::chrono::milliseconds timeout) {
  if (thread_.isOfAnotherProcess()) return true;
  {
    std::unique_lock lock(mutex_);
    inbox_.isStopping = true;
    wake(std::move(lock));
  }
  return thread_.join(timeout);
}

void TransferLoop::run() {
  blockSignals();
  MainQueue::forbidWaitingOnThisThread();
  Inbox inbox = takeInbox();
  for (; !inbox.isStopping; inbox = takeInbox()) {
    for (const auto& transfer : inbox.dropped) abandon(*transfer);
    for (const auto& transfer : inbox.started) line(transfer);
    inbox = {};    // lets go of what is not needed any more before it waits
    finishLate();  // what is too late by now is not sent any more
    beginWaiting();
    int count = 0;
    curl_multi_perform(multi_, &count);
    finishEnded();
    finishLate();
    renewUsed();
    wait();
  }
  // What was handed over just before the end came along with it; nothing comes after it.
  close(inbox.started);
}

TransferLoop::Inbox TransferLoop::takeInbox() {
  const std::scoped_lock lock(mutex_);
  Inbox taken;
  std::swap(taken.started, inbox_.started);
  std::swap(taken.dropped, inbox_.dropped);
  taken.isStopping = inbox_.isStopping;
  return taken;
}

std::unique_ptr<CurlEasy> TransferLoop::takeEasy() {
  if (idle_.empty()) return std::make_unique<CurlEasy>(options_, sockets_);
  std::unique_ptr<CurlEasy> easy = std::move(idle_.back());
  idle_.pop_back();
  return easy;
}

void TransferLoop::line(const std::shared_ptr<Transfer>& transfer) {
  if (!transfer->isPending()) {
    --waiting_;
    return answer(transfer, shutDown());
  }
  lines_.add(transfer);
  schedule(*transfer);
}

void TransferLoop::beginWaiting() {
  const Clock::time_point now = Clock::now();
  while (const std::shared_ptr<Transfer> transfer = lines_.next(now)) {
    --waiting_;
    begin(transfer);
  }
}

void TransferLoop::begin(const std::shared_ptr<Transfer>& transfer) {
  // Cancelled, of which the inbox will tell.
  std::optional<Error> error;
  if (!transfer->isPending()) error = shutDown();
  if (!error) error = transfer->prepare(takeEasy());
  if (!error && curl_multi_add_handle(multi_, transfer->easy()->get()) != CURLM_OK) {
    error = errorOf(CURLE_FAILED_INIT, {});
  }
  if (error) {
    unschedule(*transfer);
    lines_.hasEnded(*transfer);
    return answer(transfer, *std::move(error));
  }
  nextPause_ = shortestPause;
  transfer->index = running_.size();
  running_.push_back(transfer);
}

void TransferLoop::abandon(Transfer& transfer) {
  if (transfer.isWaiting || transfer.easy() != nullptr) end(transfer, shutDown());
}

// First all are taken out, then all are answered: what the handlers hand to other threads comes to
// them in one go, while this one has still to do.
void TransferLoop::finishEnded() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    char* pointer = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &pointer);
    Transfer& transfer = *static_cast<Transfer*>(static_cast<void*>(pointer));
    const CURLcode code = message->data.result;
    if (sendsAgain(transfer, code)) continue;
    Result<std::string> outcome = transfer.outcome(code);
    ended_.emplace_back(takeOut(transfer), std::move(outcome));
  }
  for (auto& [transfer, outcome] : ended_) {
    held_ -= transfer->heldMemory();
    answer(transfer, std::move(outcome));
  }
  ended_.clear();
}

bool TransferLoop::sendsAgain(Transfer& transfer, CURLcode code) {
  if (!transfer.goesOutAgain(code)) return false;
  CURL* handle = transfer.easy()->get();
  curl_multi_remove_handle(multi_, handle);
  const CURLMcode added = curl_multi_add_handle(multi_, handle);
  if (added != CURLM_OK) end(transfer, errorOf(CURLE_FAILED_INIT, {}));
  return true;
}

void TransferLoop::finishLate() {
  const Clock::time_point now = Clock::now();
  while (!times_.empty() && times_.begin()->first <= now) {
    Transfer& transfer = *times_.begin()->second;
    unschedule(transfer);
    checkTime(transfer, now);
  }
}

void TransferLoop::checkTime(Transfer& transfer, Clock::time_point now) {
  const auto idle = options_.idleTimeout;
  if (transfer.deadline <= now) {
    end(transfer, transfer.outcome(CURLE_OPERATION_TIMEDOUT, "the answer is not complete"));
  } else if (idle.count() > 0 && transfer.lastMove() && *transfer.lastMove() + idle <= now) {
    end(transfer, transfer.outcome(CURLE_OPERATION_TIMEDOUT, "nothing has moved"));
  } else {
    schedule(transfer);
  }
}

// When a byte moves, or the request leaves its line, nothing is changed here: the time is found to
// be later when it has come.
void TransferLoop::schedule(Transfer& transfer) {
  Clock::time_point due = transfer.deadline;
  if (options_.idleTimeout.count() > 0) {
    const Clock::time_point last = transfer.lastMove().value_or(Clock::now());
    due = std::min(due, last + options_.idleTimeout);
  }
  if (due == Clock::time_point::max()) return;
  transfer.due = due;
  times_.emplace(due, &transfer);
}

void TransferLoop::unschedule(Transfer& transfer) {
  if (!transfer.due) return;
  times_.erase({*transfer.due, &transfer});
  transfer.due.reset();
}

bool TransferLoop::mayHold(std::size_t count) const noexcept {
  const std::size_t most = options_.maximumAnswerMemory;
  return most == 0 || (held_ <= most && count <= most - held_);
}

// A transfer that waits or runs is neither any more.
std::shared_ptr<Transfer> TransferLoop::takeOut(Transfer& transfer) {
  unschedule(transfer);
  if (transfer.isWaiting) {
    --waiting_;
    return lines_.remove(transfer);
  }
  curl_multi_remove_handle(multi_, transfer.easy()->get());
  running_.back()->index = transfer.index;
  std::swap(running_[transfer.index], running_.back());
  std::shared_ptr<Transfer> ending = std::move(running_.back());
  running_.pop_back();
  lines_.hasEnded(transfer);
  return ending;
}

void TransferLoop::end(Transfer& transfer, Result<std::string> outcome) {
  const std::shared_ptr<Transfer> ending = takeOut(transfer);
  held_ -= ending->heldMemory();
  answer(ending, std::move(outcome));
}

// The end of every transfer that was taken over.
void TransferLoop::answer(const std::shared_ptr<Transfer>& transfer, Result<std::string> outcome) {
  if (options_.observer) {
    options_.observer(transfer->exchange(outcome, options_.observerSeesSecrets));
  }
  if (auto easy = transfer->release(); easy && easy->get() != nullptr) {
    used_.push_back(std::move(easy));
  }
  transfer->complete(std::move(outcome));
}

// Behind the answers, which need not wait for it.
void TransferLoop::renewUsed() {
  used_.resize(std::min(used_.size(), mostIdleHandles - std::min(mostIdleHandles, idle_.size())));
  for (auto& easy : used_) {
    easy->reset();
    idle_.push_back(std::move(easy));
  }
  used_.clear();
}

void TransferLoop::wait() {
  const int timeout = pause();
  {
    const std::scoped_lock lock(mutex_);
    if (!inbox_.isEmpty()) return;
    isWaiting_ = true;
  }
  int ready = 0;
  curl_multi_poll(multi_, nullptr, 0, timeout, &ready);
  isWaiting_ = false;
  nextPause_ = ready > 0 ? shortestPause : std::min(2 * nextPause_, longestPause);
}

// How long to wait for something to happen, in milliseconds.
int TransferLoop::pause() {
  auto longest = std::chrono::milliseconds(std::numeric_limits<int>::max());
  const auto shorten = [&](std::chrono::milliseconds pause) { longest = std::min(longest, pause); };
  const auto shortenTo = [&](Clock::time_point time) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now());
    shorten(std::max(left, std::chrono::milliseconds::zero()));
  };
  if (const auto stalled = MainQueue::main().warnWhenStalled(); stalled.count() > 0) {
    shorten(stalled);
  }
  if (!running_.empty()) shorten(nextPause_);
  if (!times_.empty()) shortenTo(times_.begin()->first);
  if (const auto change = lines_.nextChange(Clock::now())) shortenTo(*change);
  return static_cast<int>(longest.count());
}

void TransferLoop::close(const Transfers& late) {
  lines_.takeAll([this](Transfer& transfer) { end(transfer, shutDown()); });
  while (!running_.empty()) end(*running_.back(), shutDown());
  for (const auto& transfer : late) answer(transfer, shutDown());
  while (wakers_.load() != 0) std::this_thread::yield();
  used_.clear();
  idle_.clear();
  curl_multi_cleanup(std::exchange(multi_, nullptr));
}

}  // namespace orvane
