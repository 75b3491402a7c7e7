// SPDX-License-Identifier: Apache-2.0
//
// What happens, as server-sent events for those who watch.
#pragma once

#include "Backend.h"
#include "RequestLog.h"
#include "http/Message.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace orvane::sandbox {

/// What has happened in a while.
struct FeedBatch {
  std::deque<std::shared_ptr<const LoggedRequest>> requests;
  bool cleared = false;  // before those requests
  bool faults = false;
  bool clock = false;
  bool recording = false;
  std::optional<Happening> data;

  [[nodiscard]] bool isEmpty() const {
    return requests.empty() && !cleared && !faults && !clock && !recording && !data;
  }
  /// As events; a comment when there are none. `backend` tells how things stand.
  [[nodiscard]] std::string text(Backend& backend) const;
};

/// Gathers what happens, so that many requests make few events. For one thread at a time.
class FeedQueue {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  static constexpr std::chrono::milliseconds betweenBatches{100};
  static constexpr std::chrono::milliseconds betweenReports{1000};  // of changed data, of recording
  static constexpr std::chrono::seconds betweenComments{15};

  void add(std::shared_ptr<const LoggedRequest> request);
  void tell(Happening happening);

  [[nodiscard]] bool isEmpty() const { return waiting_.isEmpty(); }
  /// When there is something to send.
  [[nodiscard]] TimePoint due() const;
  /// What is due by then.
  [[nodiscard]] FeedBatch take(TimePoint now);

 private:
  static constexpr std::size_t mostRequests = 10'000;  // as many as the log has

  FeedBatch waiting_;
  TimePoint nextBatch_{};
  TimePoint nextReport_{};
  TimePoint nextComment_{};
};

/// Sends them from one thread, which is there as long as somebody watches. Who takes them slowly
/// gets them in fewer and larger events.
class Feed {
 public:
  explicit Feed(Backend& backend) : backend_(backend) {}
  ~Feed();
  Feed(const Feed&) = delete;
  Feed& operator=(const Feed&) = delete;

  void add(const std::shared_ptr<const LoggedRequest>& request);
  void tell(Happening happening);
  void join(std::shared_ptr<Viewer> viewer);

 private:
  struct Watcher {
    std::shared_ptr<Viewer> viewer;
    FeedQueue queue;

    /// When to look whether there is something to send; `now` or before: at once.
    [[nodiscard]] FeedQueue::TimePoint due(FeedQueue::TimePoint now) const;
  };

  void run();
  template <class Note>
  void note(const Note& note);

  Backend& backend_;
  std::atomic<bool> watched_{false};
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Watcher> watchers_;
  bool stopping_ = false;
  std::thread thread_;
};

/// One server-sent event; the data is JSON, which has no line breaks.
[[nodiscard]] std::string serverSentEvent(std::string_view name, std::string_view json);

}  // namespace orvane::sandbox
