// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Services/Trip/TripComposer.h>
#include <Orvane/Services/Trip/TripService.h>
#include <Orvane/Services/Trip/TripWalk.h>

namespace orvane {
namespace {

using Trips = std::vector<Trip>;

TripComposer logbook(std::set<TripService::Filter> filters,
                     std::set<TripService::Expansion> expansions) {
  return TripComposer(TripComposer::Collection{true, std::nullopt, std::move(filters)},
                      std::move(expansions));
}

// What the backend must never send, in words; null for a logbook that is whole.
const char* faultOf(const LogbookWrapper& logbook) {
  if (!logbook.tripWrappers) return "a logbook has no list of entries";
  for (const LogbookWrapper::TripWrapper& wrapper : *logbook.tripWrappers) {
    if (!wrapper.trip) return "an entry of a logbook has no trip";
  }
  return nullptr;
}

// The trips of a logbook; of an empty answer, none.
Result<Trips> tripsOf(Result<LogbookWrapper> answer) {
  if (!answer) {
    if (answer.error() == NetworkError::noData) return Trips{};
    return *std::move(answer).error();
  }
  LogbookWrapper& logbook = *answer.value();
  if (faultOf(logbook) != nullptr) return NetworkError::invalidResponseData;
  Trips trips;
  trips.reserve(logbook.tripWrappers->size());
  for (LogbookWrapper::TripWrapper& wrapper : *logbook.tripWrappers) {
    trips.push_back(*std::move(wrapper.trip));
  }
  return trips;
}

Result<Trips> tripsOrStop(Result<LogbookWrapper> answer) {
  if (answer) {
    if (const char* fault = faultOf(*answer.value())) fatal(fault);
  }
  return tripsOf(std::move(answer));
}

}  // namespace

Operation<Trip> TripService::fetch(std::string id, SetOf<Expansion> expansions) const {
  return get<Trip>(
      *this, TripComposer(TripComposer::Resource{std::move(id)}, std::move(expansions).elements()));
}

RequestHandle TripService::fetch(std::string id, std::set<Expansion> expansions,
                                 Completion<Trip> then) const {
  return fetch(std::move(id), std::move(expansions)).start(std::move(then));
}

Operation<Trips> TripService::fetch(const std::optional<User>& user, SetOf<Filter> filters,
                                    SetOf<Expansion> expansions) const {
  TripComposer::Collection collection{false, user ? user->id : std::nullopt,
                                      std::move(filters).elements()};
  return get<Trips>(*this, TripComposer(std::move(collection), std::move(expansions).elements()));
}

RequestHandle TripService::fetch(const std::optional<User>& user, std::set<Filter> filters,
                                 std::set<Expansion> expansions,
                                 Completion<std::vector<Trip>> then) const {
  return fetch(user, std::move(filters), std::move(expansions)).start(std::move(then));
}

Operation<Trips> TripService::fetchAll(SetOf<Filter> filters, SetOf<Expansion> expansions) const {
  return operation<Trips, LogbookWrapper, tripsOrStop>(
      *this, Verb::get, logbook(std::move(filters).elements(), std::move(expansions).elements()));
}

RequestHandle TripService::fetchAll(std::set<Filter> filters, std::set<Expansion> expansions,
                                    Completion<std::vector<Trip>> then) const {
  return fetchAll(std::move(filters), std::move(expansions)).start(std::move(then));
}

Operation<Trips> TripService::fetchAllChecked(SetOf<Filter> filters,
                                              SetOf<Expansion> expansions) const {
  return operation<Trips, LogbookWrapper, tripsOf>(
      *this, Verb::get, logbook(std::move(filters).elements(), std::move(expansions).elements()));
}

RequestHandle TripService::fetchAllChecked(std::set<Filter> filters, std::set<Expansion> expansions,
                                           Completion<std::vector<Trip>> then) const {
  return fetchAllChecked(std::move(filters), std::move(expansions)).start(std::move(then));
}

TripPageReader TripService::pages(TripPages pages) const {
  return TripPageReader(*this, std::move(pages));
}

Operation<Unit> TripService::walk(TripPages pages, TripPageHandler onPage) const {
  // Not to be done again behind the caller's back, who would see pages twice.
  return Operation<Unit>(
      [cursor = TripCursor(*this, std::move(pages)),
       onPage = std::make_shared<TripPageHandler>(std::move(onPage))](Completion<Unit> then) {
        return TripWalk::start(cursor, onPage, std::move(then));
      },
      Effect::writes);
}

Operation<Trips> TripService::fetchPages(TripPages pages) const {
  return Operation<Trips>(
      [cursor = TripCursor(*this, std::move(pages))](Completion<Trips> then) {
        const auto all = std::make_shared<Trips>();
        auto collect = std::make_shared<TripPageHandler>([all](Trips page) {
          all->insert(all->end(), std::make_move_iterator(page.begin()),
                      std::make_move_iterator(page.end()));
        });
        return TripWalk::start(cursor, std::move(collect),
                               [all, then = std::move(then)](const Result<Unit>& outcome) mutable {
                                 then(outcome.transform([&](Unit) { return std::move(*all); }));
                               });
      },
      Effect::reads);
}

RequestHandle TripService::fetchPages(TripPages pages, Completion<std::vector<Trip>> then) const {
  return fetchPages(std::move(pages)).start(std::move(then));
}

Operation<Trip> TripService::update(const Trip& trip, std::optional<TransportMode> transportMode,
                                    std::optional<Trip::Purpose> purpose) const {
  const bool changesSomething = transportMode || purpose;
  precondition(trip.id || !changesSomething, "a trip without an id can't be updated");
  return update(trip.id.value_or(std::string()), transportMode, purpose);
}

RequestHandle TripService::update(const Trip& trip, std::optional<TransportMode> transportMode,
                                  std::optional<Trip::Purpose> purpose,
                                  Completion<Trip> then) const {
  return update(trip, transportMode, purpose).start(std::move(then));
}

Operation<Trip> TripService::update(std::string tripID, std::optional<TransportMode> transportMode,
                                    std::optional<Trip::Purpose> purpose) const {
  if (!transportMode && !purpose) {
    return Operation<Trip>::answering(NetworkError::malformedRequest, Effect::writes);
  }
  return post<Trip>(*this,
                    TripComposer(TripComposer::Update{std::move(tripID), transportMode, purpose}));
}

RequestHandle TripService::update(std::string tripID, std::optional<TransportMode> transportMode,
                                  std::optional<Trip::Purpose> purpose,
                                  Completion<Trip> then) const {
  return update(std::move(tripID), transportMode, purpose).start(std::move(then));
}

Operation<Trips> TripService::fetchTripsByVehicle(TripsByVehicle trips) const {
  return get<Trips>(*this, VehicleTripsComposer(std::move(trips)));
}

RequestHandle TripService::fetchTripsByVehicle(
    TripsByVehicle trips, Completion<std::vector<Trip>> completionHandler) const {
  return fetchTripsByVehicle(std::move(trips)).start(std::move(completionHandler));
}

RequestHandle TripService::fetchPages(TripPages pages, TripPageHandler onPage,
                                      Completion<Unit> then) const {
  return fetchPages(std::move(pages), std::move(onPage)).start(std::move(then));
}

}  // namespace orvane
