// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/All.h>

#include <algorithm>

namespace orvane::detail {

Gathering::Gathering(std::size_t count, std::size_t atOnce, StartPart startPart,
                     UniqueFunction<void()> whenDone)
    : atOnce_(std::max<std::size_t>(atOnce, 1)),
      startPart_(std::move(startPart)),
      whenDone_(std::move(whenDone)),
      requests_(count) {}

void Gathering::start() {
  if (requests_.empty()) return whenDone_();
  startParts();
}

// One thread at a time: a part that answers inside its start, or meanwhile, leaves it to that one.
void Gathering::startParts() {
  std::unique_lock lock(mutex_);
  if (isStarting_) return;
  isStarting_ = true;
  while (!isCancelled_ && started_ < requests_.size() && started_ - finished_ < atOnce_) {
    const std::size_t part = started_++;
    lock.unlock();
    RequestHandle request = startPart_(part);
    lock.lock();
    requests_[part] = std::move(request);
    if (isCancelled_) {
      request = requests_[part];
      lock.unlock();
      if (request) request->cancel();
      lock.lock();
    }
  }
  isStarting_ = false;
}

void Gathering::finished(std::size_t part) {
  RequestHandle request;
  bool isDone = false;
  {
    const std::scoped_lock lock(mutex_);
    request = std::move(requests_[part]);
    isDone = ++finished_ == requests_.size();
  }
  if (isDone) return whenDone_();
  startParts();
}

bool Gathering::cancel() {
  std::vector<RequestHandle> underWay;
  {
    const std::scoped_lock lock(mutex_);
    isCancelled_ = true;
    underWay = requests_;
  }
  for (const RequestHandle& request : underWay) {
    if (request) request->cancel();
  }
  return true;
}

bool Gathering::isFinished() const noexcept {
  const std::scoped_lock lock(mutex_);
  return isCancelled_ || finished_ == requests_.size();
}

}  // namespace orvane::detail
