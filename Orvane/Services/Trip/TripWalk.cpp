// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Trip/TripComposer.h>
#include <Orvane/Services/Trip/TripWalk.h>

#include <cstdint>
#include <mutex>
#include <utility>

namespace orvane {

TripCursor::TripCursor(const TripService& service, TripPages pages)
    : service_(service),
      pages_(std::move(pages)),
      pageSize_(TripComposer::clampedLimit(pages_.pageSize)) {}

Operation<std::vector<Trip>> TripCursor::page() const {
  std::set<TripService::Filter> filters{TripService::Filter::cursor(pageSize_, offset_)};
  if (pages_.dates) filters.insert(TripService::Filter(*pages_.dates));
  if (pages_.list == TripPages::List::logbook) {
    return service_.fetchAllChecked(std::move(filters), pages_.expansions);
  }
  return service_.fetch(pages_.user, std::move(filters), pages_.expansions);
}

Result<bool> TripCursor::advance(const std::vector<Trip>& page) {
  std::vector<std::optional<std::string>> ids;
  ids.reserve(page.size());
  for (const Trip& trip : page) ids.push_back(trip.id);
  if (ids.size() < static_cast<std::size_t>(pageSize_)) return false;
  if (ids == formerIDs_) return NetworkError::invalidResponseData;
  offset_ += static_cast<std::int64_t>(ids.size());
  formerIDs_ = std::move(ids);
  return true;
}

RequestHandle TripWalk::start(TripCursor from, std::shared_ptr<TripPageHandler> onPage,
                              Completion<Unit> then) {
  const auto walk = std::make_shared<TripWalk>(std::move(from), std::move(onPage), std::move(then));
  walk->askForPages();
  return walk->box_;
}

TripWalk::TripWalk(TripCursor from, std::shared_ptr<TripPageHandler> onPage, Completion<Unit> then)
    : cursor_(std::move(from)), onPage_(std::move(onPage)), then_(std::move(then)) {}

void TripWalk::askForPages() {
  do {
    progress_.store(Progress::asking);
    box_->step([this] {
      return cursor_.page().start([self = shared_from_this()](Result<std::vector<Trip>> answer) {
        self->pageArrived(std::move(answer));
      });
    });
  } while (progress_.exchange(Progress::waiting) == Progress::answered);
}

void TripWalk::pageArrived(Result<std::vector<Trip>> answer) {
  if (box_->cancelled()) return;
  if (!answer) return finish(answer.errorOr(NetworkError::unknown));
  const Result<bool> hasMore = cursor_.advance(*answer);
  if (!hasMore) return finish(*hasMore.error());

  (*onPage_)(*std::move(answer));
  if (!*hasMore) return finish(Unit{});
  if (box_->cancelled()) return;
  if (progress_.exchange(Progress::answered) == Progress::waiting) askForPages();
}

void TripWalk::finish(Result<Unit> outcome) {
  onPage_ = nullptr;
  box_->complete(then_, std::move(outcome));
}

// The pages that are asked for are numbered, so that one that has been given up changes nothing
// when it comes all the same.
struct TripPageReader::State {
  explicit State(TripCursor first) : cursor(std::move(first)) {}

  std::mutex mutex;
  TripCursor cursor;
  std::uint64_t asked = 0;
  bool isOver = false;
  std::optional<Error> error;

  // What to ask for; absent at the end.
  std::optional<Operation<std::vector<Trip>>> begin(std::uint64_t& number) {
    const std::scoped_lock lock(mutex);
    number = ++asked;
    error = isOver ? std::nullopt : std::optional<Error>(Cancelled{});
    if (isOver) return std::nullopt;
    return cursor.page();
  }

  // The answer, having gone on behind it.
  Result<std::vector<Trip>> end(std::uint64_t number, Result<std::vector<Trip>> answer) {
    const std::scoped_lock lock(mutex);
    if (!answer) answer = answer.errorOr(NetworkError::unknown);
    if (number != asked) return answer;
    if (answer) {
      const Result<bool> hasMore = cursor.advance(*answer);
      if (!hasMore) answer = *hasMore.error();
      isOver = hasMore && !*hasMore;
    }
    error = answer.error();
    return answer;
  }
};

TripPageReader::TripPageReader(const TripService& service, TripPages pages)
    : state_(std::make_shared<State>(TripCursor(service, std::move(pages)))) {}

std::optional<Error> TripPageReader::error() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->error;
}

Operation<std::vector<Trip>> TripPageReader::next() const {
  using Trips = std::vector<Trip>;
  const auto start = [state = state_](Completion<Trips> then) -> RequestHandle {
    std::uint64_t number = 0;
    const auto page = state->begin(number);
    if (!page) return Operation<Trips>::answering(Result<Trips>()).start(std::move(then));
    return page->start([state, number, then = std::move(then)](Result<Trips> answer) mutable {
      then(state->end(number, std::move(answer)));
    });
  };
  return Operation<Trips>(start, Effect::reads);
}

}  // namespace orvane
