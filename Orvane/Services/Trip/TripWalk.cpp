// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/Trip/TripComposer.h>
#include <Orvane/Services/Trip/TripWalk.h>

#include <utility>

namespace orvane {

RequestHandle TripWalk::start(const TripService& service, TripPages pages, TripPageHandler onPage,
                              Completion<Unit> then) {
  const auto walk =
      std::make_shared<TripWalk>(service, std::move(pages), std::move(onPage), std::move(then));
  walk->askForPages();
  return walk->box_;
}

TripWalk::TripWalk(const TripService& service, TripPages pages, TripPageHandler onPage,
                   Completion<Unit> then)
    : service_(service),
      pages_(std::move(pages)),
      pageSize_(TripComposer::clampedLimit(pages_.pageSize)),
      onPage_(std::move(onPage)),
      then_(std::move(then)) {}

void TripWalk::askForPages() {
  do {
    progress_.store(Progress::asking);
    box_->step([this] { return askForPage(); });
  } while (progress_.exchange(Progress::waiting) == Progress::answered);
}

RequestHandle TripWalk::askForPage() {
  std::set<TripService::Filter> filters{TripService::Filter::cursor(pageSize_, offset_)};
  if (pages_.dates) filters.insert(TripService::Filter(*pages_.dates));
  const auto arrived = [self = shared_from_this()](Result<std::vector<Trip>> answer) {
    self->pageArrived(std::move(answer));
  };
  if (pages_.list == TripPages::List::logbook) {
    return service_.fetchAllChecked(std::move(filters), pages_.expansions, arrived);
  }
  return service_.fetch(pages_.user, std::move(filters), pages_.expansions, arrived);
}

void TripWalk::pageArrived(Result<std::vector<Trip>> answer) {
  if (box_->cancelled()) return;
  if (!answer) return finish(answer.errorOr(NetworkError::unknown));

  std::vector<Trip>& page = *answer.value();
  TripIDs ids;
  ids.reserve(page.size());
  for (const Trip& trip : page) ids.push_back(trip.id);
  const bool isLast = ids.size() < static_cast<std::size_t>(pageSize_);
  // The same full page again: a backend that does not heed the offset would be asked for ever.
  if (!isLast && ids == formerIDs_) return finish(NetworkError::invalidResponseData);

  onPage_(std::move(page));
  if (isLast) return finish(Unit{});
  if (box_->cancelled()) return;
  offset_ += static_cast<std::int64_t>(ids.size());
  formerIDs_ = std::move(ids);
  if (progress_.exchange(Progress::answered) == Progress::waiting) askForPages();
}

void TripWalk::finish(Result<Unit> outcome) {
  onPage_ = nullptr;
  box_->complete(then_, std::move(outcome));
}

}  // namespace orvane
