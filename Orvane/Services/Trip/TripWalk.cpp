// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Services/Trip/TripComposer.h>
#include <Orvane/Services/Trip/TripWalk.h>

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

struct TripPageReader::State {
  explicit State(TripCursor first) : cursor(std::move(first)) {}

  TripCursor cursor;
  std::atomic<bool> isUnderWay = false;
  bool isOver = false;
  std::optional<Error> error;
};

namespace {

// Who asks for a page, until it is there or has been given up.
template <class State>
class Turn {
 public:
  explicit Turn(std::shared_ptr<State> state) : state_(std::move(state)) {
    precondition(!state_->isUnderWay.exchange(true), "the page before is still under way");
  }
  Turn(Turn&&) noexcept = default;
  Turn& operator=(Turn&&) = delete;
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    if (state_) state_->isUnderWay = false;
  }

  State* operator->() const noexcept { return state_.get(); }
  void end() noexcept { std::exchange(state_, nullptr)->isUnderWay = false; }

 private:
  std::shared_ptr<State> state_;
};

}  // namespace

TripPageReader::TripPageReader(const TripService& service, TripPages pages)
    : state_(std::make_shared<State>(TripCursor(service, std::move(pages)))) {}

const std::optional<Error>& TripPageReader::error() const noexcept { return state_->error; }

Operation<std::vector<Trip>> TripPageReader::next() const {
  using Trips = std::vector<Trip>;
  const auto start = [state = state_](Completion<Trips> then) -> RequestHandle {
    Turn turn(state);
    turn->error = std::nullopt;
    if (turn->isOver) {
      turn.end();
      then(Result<Trips>());
      return std::make_shared<EmptyRequest>();
    }
    const Operation<Trips> page = turn->cursor.page();
    return page.start(
        [turn = std::move(turn), then = std::move(then)](Result<Trips> answer) mutable {
          if (answer) {
            const Result<bool> hasMore = turn->cursor.advance(*answer);
            if (hasMore) {
              turn->isOver = !*hasMore;
            } else {
              answer = *hasMore.error();
            }
          } else {
            answer = answer.errorOr(NetworkError::unknown);
          }
          turn->error = answer.error();
          turn.end();
          then(std::move(answer));
        });
  };
  return Operation<Trips>(start, Effect::reads);
}

}  // namespace orvane
