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

RequestHandle TripService::fetch(std::string id, std::set<Expansion> expansions,
                                 Completion<Trip> then) const {
  return get(*this, TripComposer(TripComposer::Resource{std::move(id)}, std::move(expansions)),
             std::move(then));
}

RequestHandle TripService::fetch(const std::optional<User>& user, std::set<Filter> filters,
                                 std::set<Expansion> expansions, Completion<Trips> then) const {
  TripComposer::Collection collection{false, user ? user->id : std::nullopt, std::move(filters)};
  return get(*this, TripComposer(std::move(collection), std::move(expansions)), std::move(then));
}

RequestHandle TripService::fetchAll(std::set<Filter> filters, std::set<Expansion> expansions,
                                    Completion<Trips> then) const {
  return get(*this, logbook(std::move(filters), std::move(expansions)),
             decoding<LogbookWrapper>(std::move(then), tripsOrStop));
}

RequestHandle TripService::fetchAllChecked(std::set<Filter> filters, std::set<Expansion> expansions,
                                           Completion<Trips> then) const {
  return get(*this, logbook(std::move(filters), std::move(expansions)),
             decoding<LogbookWrapper>(std::move(then), tripsOf));
}

RequestHandle TripService::fetchPages(TripPages pages, TripPageHandler onPage,
                                      Completion<Unit> then) const {
  return TripWalk::start(*this, std::move(pages), std::move(onPage), std::move(then));
}

RequestHandle TripService::fetchPages(TripPages pages, Completion<Trips> then) const {
  const auto all = std::make_shared<Trips>();
  return fetchPages(
      std::move(pages),
      [all](Trips page) {
        all->insert(all->end(), std::make_move_iterator(page.begin()),
                    std::make_move_iterator(page.end()));
      },
      [all, then = std::move(then)](const Result<Unit>& outcome) mutable {
        if (!outcome) return then(outcome.errorOr(NetworkError::unknown));
        then(std::move(*all));
      });
}

RequestHandle TripService::update(const Trip& trip, std::optional<TransportMode> transportMode,
                                  std::optional<Trip::Purpose> purpose,
                                  Completion<Trip> then) const {
  const bool changesSomething = transportMode || purpose;
  precondition(trip.id || !changesSomething, "a trip without an id can't be updated");
  return update(trip.id.value_or(std::string()), transportMode, purpose, std::move(then));
}

RequestHandle TripService::update(std::string tripID, std::optional<TransportMode> transportMode,
                                  std::optional<Trip::Purpose> purpose,
                                  Completion<Trip> then) const {
  if (!transportMode && !purpose) {
    then(NetworkError::malformedRequest);
    return std::make_shared<EmptyRequest>();
  }
  return post(*this, TripComposer(TripComposer::Update{std::move(tripID), transportMode, purpose}),
              std::move(then));
}

RequestHandle TripService::fetchTripsByVehicle(TripsByVehicle trips,
                                               Completion<Trips> completionHandler) const {
  return get(*this, VehicleTripsComposer(std::move(trips)), std::move(completionHandler));
}

}  // namespace orvane
