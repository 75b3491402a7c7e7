// SPDX-License-Identifier: Apache-2.0
#include "inspector/Feed.h"

#include "Admin.h"
#include "JsonWriter.h"
#include "inspector/Views.h"

#include <algorithm>
#include <utility>

namespace orvane::sandbox {

namespace {

constexpr std::chrono::seconds longestWait{1};  // until those who have gone are missed

std::string reportOf(Happening happening) {
  const char* why = happening == Happening::reset      ? "reset"
                    : happening == Happening::restored ? "restored"
                                                       : "changed";
  JsonWriter json;
  json.beginObject().member("why", why).endObject();
  return serverSentEvent("data", json.text());
}

}  // namespace

std::string serverSentEvent(std::string_view name, std::string_view json) {
  std::string text;
  text.reserve(name.size() + json.size() + 16);
  text.append("event: ").append(name).append("\ndata: ").append(json).append("\n\n");
  return text;
}

std::string FeedBatch::text(Backend& backend) const {
  if (isEmpty()) return ":\n\n";  // keeps the connection from being taken for dead
  std::string text;
  if (cleared) text += serverSentEvent("cleared", "{}");
  if (!requests.empty()) {
    JsonWriter json;
    json.beginArray();
    for (const auto& request : requests) writeSummary(json, *request);
    text += serverSentEvent("requests", json.endArray().text());
  }
  if (faults) text += serverSentEvent("faults", faultsAsJson(backend));
  if (clock) text += serverSentEvent("clock", clockAsJson(backend));
  if (data) text += reportOf(*data);
  if (recording) text += serverSentEvent("recording", recordingAsJson(backend));
  return text;
}

void FeedQueue::add(std::shared_ptr<const LoggedRequest> request) {
  if (waiting_.requests.size() == mostRequests) waiting_.requests.pop_front();
  waiting_.requests.push_back(std::move(request));
}

void FeedQueue::tell(Happening happening) {
  switch (happening) {
    case Happening::cleared:
      waiting_.requests.clear();
      waiting_.cleared = true;
      return;
    case Happening::faults:
      waiting_.faults = true;
      return;
    case Happening::clock:
      waiting_.clock = true;
      return;
    case Happening::recording:
      waiting_.recording = true;
      return;
    case Happening::changed:
      if (!waiting_.data) waiting_.data = happening;  // the greater change says it all
      return;
    case Happening::reset:
    case Happening::restored:
      waiting_.data = happening;
      return;
  }
}

FeedQueue::TimePoint FeedQueue::due() const {
  TimePoint due = nextComment_;
  const bool isBatch =
      !waiting_.requests.empty() || waiting_.cleared || waiting_.faults || waiting_.clock;
  if (isBatch) due = std::min(due, nextBatch_);
  const bool isReport = waiting_.data || waiting_.recording;
  if (isReport) due = std::min(due, std::max(nextReport_, nextBatch_));
  return due;
}

FeedBatch FeedQueue::take(TimePoint now) {
  FeedBatch batch = std::exchange(waiting_, {});
  if (now < nextReport_) {
    waiting_.data = std::exchange(batch.data, std::nullopt);
    waiting_.recording = std::exchange(batch.recording, false);
  } else if (batch.data || batch.recording) {
    nextReport_ = now + betweenReports;
  }
  nextBatch_ = now + betweenBatches;
  nextComment_ = now + betweenComments;
  return batch;
}

Feed::~Feed() {
  {
    const std::lock_guard lock{mutex_};
    stopping_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

/// While nobody watches this costs a look at a flag.
template <class Note>
void Feed::note(const Note& note) {
  if (!watched_.load(std::memory_order_relaxed)) return;
  bool isFirst = false;
  {
    const std::lock_guard lock{mutex_};
    for (Watcher& watcher : watchers_) {
      isFirst = isFirst || watcher.queue.isEmpty();
      note(watcher.queue);
    }
  }
  if (isFirst) changed_.notify_all();
}

void Feed::add(const std::shared_ptr<const LoggedRequest>& request) {
  note([&](FeedQueue& queue) { queue.add(request); });
}

void Feed::tell(Happening happening) {
  note([&](FeedQueue& queue) { queue.tell(happening); });
}

void Feed::join(std::shared_ptr<Viewer> viewer) {
  // Whoever comes back after a pause learns what it has missed.
  viewer->send("retry: 1000\n\n" + serverSentEvent("faults", faultsAsJson(backend_)) +
               serverSentEvent("clock", clockAsJson(backend_)) +
               serverSentEvent("recording", recordingAsJson(backend_)));
  const std::lock_guard lock{mutex_};
  watchers_.push_back({.viewer = std::move(viewer), .queue = {}});
  if (watched_) return;
  if (thread_.joinable()) thread_.join();  // it has ended, or is about to return
  watched_ = true;
  thread_ = std::thread{[this] { run(); }};
}

FeedQueue::TimePoint Feed::Watcher::due(FeedQueue::TimePoint now) const {
  const auto due = queue.due();
  return viewer->isBehind() ? std::max(due, now + FeedQueue::betweenBatches) : due;
}

void Feed::run() {
  std::unique_lock lock{mutex_};
  while (!stopping_) {
    std::erase_if(watchers_, [](const Watcher& watcher) { return watcher.viewer->isGone(); });
    if (watchers_.empty()) break;
    const auto now = std::chrono::steady_clock::now();
    const auto due = [now](const Watcher& watcher) { return watcher.due(now); };
    const auto next = std::ranges::min_element(watchers_, {}, due);
    const auto nextDue = due(*next);
    if (now < nextDue) {
      changed_.wait_until(lock, std::min(nextDue, now + longestWait));
      continue;
    }
    const FeedBatch batch = next->queue.take(now);
    const auto viewer = next->viewer;
    lock.unlock();
    viewer->send(batch.text(backend_));
    lock.lock();
  }
  watched_ = false;
}

}  // namespace orvane::sandbox
