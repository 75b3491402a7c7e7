// SPDX-License-Identifier: Apache-2.0
// The application's entry to recorded journeys.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Trip.h>
#include <Orvane/Platform/DateRange.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/OneOf.h>
#include <Orvane/Platform/SetOf.h>
#include <Orvane/Platform/UniqueFunction.h>

#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvane {

struct TripsByVehicle;
struct TripPages;
class TripPageReader;

/// Receives the trips of one page, in the backend's order. It must not throw; null is ignored.
using TripPageHandler = UniqueFunction<void(std::vector<Trip>)>;

/// Fetches trips, and corrects them.
class ORVANE_EXPORT TripService : public SerializableService {
 public:
  /// What the backend is asked to embed in a trip.
  enum class Expansion : std::uint8_t {
    events,
    scores,
    geometry,  ///< The route. It comes with `points`, and is asked for as these where it can be.
    user,
    pois,
    points,
    vehicles,
    alerts,
  };

  /// What `Filter::cursor` carries.
  struct CursorFilter {
    std::int64_t limit;   ///< How many at most.
    std::int64_t offset;  ///< How many to leave out.
    [[nodiscard]] HashValue hashValue() const { return hashOf(limit, offset); }
    auto operator<=>(const CursorFilter&) const = default;
  };
  using DateFilter = DateRange;  ///< What `Filter::date` carries.

  /// Which trips of a list.
  class Filter : public OneOf<CursorFilter, DateFilter> {
   public:
    using OneOf::OneOf;
    /// At most `limit` trips (1 to 100; what is beyond is taken as the nearest), from the one at
    /// `offset` on (0 or more; likewise).
    [[nodiscard]] static Filter cursor(std::int64_t limit, std::int64_t offset) {
      return CursorFilter{limit, offset};
    }
    /// The days from `start` to `end`, both included, in the device's time zone. A range whose end
    /// is before its start, or one that the calendar has no days for, is left out, with a warning
    /// in the log.
    [[nodiscard]] static Filter date(Date start, Date end) { return DateFilter{start, end}; }
  };

  /// A service for the person who is signed in. A missing registration stops the process.
  explicit TripService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches one trip, by its `Trip::id`.
  Operation<Trip> fetch(std::string id, SetOf<Expansion> expansions = {}) const;
  RequestHandle fetch(std::string id, std::set<Expansion> expansions, Completion<Trip> then) const;

  /// Fetches the trips of a user: of the current one when there is no user, or one without an id.
  /// An empty answer is `NetworkError::noData`.
  Operation<std::vector<Trip>> fetch(const std::optional<User>& user, SetOf<Filter> filters = {},
                                     SetOf<Expansion> expansions = {}) const;
  RequestHandle fetch(const std::optional<User>& user, std::set<Filter> filters,
                      std::set<Expansion> expansions, Completion<std::vector<Trip>> then) const;

  /// Fetches the current user's logbook. An empty answer to this request is an empty list;
  /// `NetworkError::noData` of the steps before it stays an error. An answer without its list of
  /// entries, or with an entry that has no trip, stops the process: see `fetchAllChecked`.
  Operation<std::vector<Trip>> fetchAll(SetOf<Filter> filters = {},
                                        SetOf<Expansion> expansions = {}) const;
  RequestHandle fetchAll(std::set<Filter> filters, std::set<Expansion> expansions,
                         Completion<std::vector<Trip>> then) const;

  /// The same, with `NetworkError::invalidResponseData` where `fetchAll` stops the process.
  Operation<std::vector<Trip>> fetchAllChecked(SetOf<Filter> filters = {},
                                               SetOf<Expansion> expansions = {}) const;
  RequestHandle fetchAllChecked(std::set<Filter> filters, std::set<Expansion> expansions,
                                Completion<std::vector<Trip>> then) const;

  /// A list of trips of any length, to be read page by page:
  ///
  ///     TripPageReader pages = trips.pages({.dates = week});
  ///     while (auto page = co_await pages.next()) { … }
  ///     if (pages.error()) …
  [[nodiscard]] TripPageReader pages(TripPages pages) const;

  /// Fetches a list of trips of any length, page by page and one request at a time, until a page
  /// comes that is not full. `onPage` receives each page on the thread on which its answer arrives;
  /// the outcome comes after the last one, or is the first error. Cancelling the request ends the
  /// walk between two pages or within one: no handler is called from then on (one that is running
  /// goes on). Every start begins with the first page.
  template <class OnPage>
    requires(!std::is_invocable_v<OnPage&, Result<std::vector<Trip>>> &&
             std::is_invocable_v<OnPage&, std::vector<Trip>>)
  Operation<Unit> fetchPages(TripPages pages, OnPage onPage)
  const;
  RequestHandle fetchPages(TripPages pages, TripPageHandler onPage, Completion<Unit> then) const;

  /// The same, with all trips in one list.
  Operation<std::vector<Trip>> fetchPages(TripPages pages) const;
  RequestHandle fetchPages(TripPages pages, Completion<std::vector<Trip>> then) const;

  /// Corrects how somebody travelled on a trip, what for, or both, and answers the corrected trip.
  /// With neither, the handler is called inside the call with `NetworkError::malformedRequest`, and
  /// nothing is sent. A trip without an id is a programming fault that stops the process.
  Operation<Trip> update(const Trip& trip, std::optional<TransportMode> transportMode,
                         std::optional<Trip::Purpose> purpose = {}) const;
  RequestHandle update(const Trip& trip, std::optional<TransportMode> transportMode,
                       std::optional<Trip::Purpose> purpose, Completion<Trip> then) const;

  /// The same by the trip's id.
  Operation<Trip> update(std::string tripID, std::optional<TransportMode> transportMode,
                         std::optional<Trip::Purpose> purpose = {}) const;
  RequestHandle update(std::string tripID, std::optional<TransportMode> transportMode,
                       std::optional<Trip::Purpose> purpose, Completion<Trip> then) const;

  /// Fetches the trips of a vehicle. An empty answer is `NetworkError::noData`.
  Operation<std::vector<Trip>> fetchTripsByVehicle(TripsByVehicle trips) const;
  RequestHandle fetchTripsByVehicle(TripsByVehicle trips,
                                    Completion<std::vector<Trip>> completionHandler) const;

 private:
  [[nodiscard]] Operation<Unit> walk(TripPages pages, TripPageHandler onPage) const;
};

template <>
struct EnumerationTable<TripService::Expansion> {
  using enum TripService::Expansion;
  static constexpr EnumerationCase<TripService::Expansion> cases[] = {
      {events, "events"}, {scores, "scores"}, {geometry, "geometry"}, {user, "user"},
      {pois, "pois"},     {points, "points"}, {vehicles, "vehicles"}, {alerts, "alerts"},
  };
};

/// Which trips of a vehicle. Everything is sent as it stands.
struct ORVANE_EXPORT TripsByVehicle {
  std::string startDate{};               ///< The first day, for example "2024-05-13".
  std::string endDate{};                 ///< The last day, in the same form.
  std::string vehicleId{};               ///< Whose trips.
  std::int64_t vehicleTripsLimit = 100;  ///< How many at most; not checked here.
  std::int64_t offset = 0;               ///< How many to leave out; sent from 1 on.
  std::string role{};  ///< What `userId` is to the vehicle, "OWNER" say; left out when empty.
  std::set<TripService::Expansion> expansions{};  ///< What the backend is asked to embed in each.
  std::string userId{};                           ///< The driver's identifier; sent if empty, too.
};

/// A list of trips to be walked page by page.
struct ORVANE_EXPORT TripPages {
  /// Where the trips are listed.
  enum class List : std::uint8_t {
    trips,    ///< The trips of `user`, as by `TripService::fetch`.
    logbook,  ///< The current user's logbook, as by `TripService::fetchAllChecked`.
  };

  List list = List::logbook;  ///< Which of the two is read.
  /// Whose trips; the current user's when there is none. Of no effect on the logbook.
  std::optional<User> user{};
  /// Which trips; the range as for `TripService::Filter::date`.
  std::optional<DateRange> dates{};
  /// What the backend is asked to embed in each trip.
  std::set<TripService::Expansion> expansions{};
  std::int64_t pageSize = 100;  ///< 1 to 100; what is beyond is taken as the nearest.
};

/// Reads a list of trips page by page, one page at a time; made by `TripService::pages`. Copies
/// read the same list together.
class ORVANE_EXPORT TripPageReader {
 public:
  /// What `TripService::pages` makes. Sends nothing.
  TripPageReader(const TripService& service, TripPages pages);

  /// The next page, in the backend's order. Behind the last one there is a failure without an
  /// error, and nothing is sent. After any other failure, one that came of `within` or of
  /// cancelling included, the same page is asked for again; a page that comes late then counts no
  /// more.
  [[nodiscard]] Operation<std::vector<Trip>> next() const;

  /// Why the last page asked for is not there: `Cancelled` while it is under way, and where it was
  /// given up. Absent where it is there, and at the end of the list.
  [[nodiscard]] std::optional<Error> error() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

template <class OnPage>
  requires(!std::is_invocable_v<OnPage&, Result<std::vector<Trip>>> &&
           std::is_invocable_v<OnPage&, std::vector<Trip>>)
Operation<Unit> TripService::fetchPages(
    TripPages pages,  // NOLINT(performance-unnecessary-value-param): it is handed on
    OnPage onPage)
const { return walk(std::move(pages), std::move(onPage)); }

}  // namespace orvane
