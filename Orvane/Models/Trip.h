// SPDX-License-Identifier: Apache-2.0
// Recorded journeys.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Models/Event.h>
#include <Orvane/Models/Polyline.h>
#include <Orvane/Models/Scoring.h>
#include <Orvane/Models/TransportMode.h>
#include <Orvane/Models/User.h>
#include <Orvane/Models/Vehicle.h>
#include <Orvane/Platform/CLLocation.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Indirect.h>
#include <Orvane/Platform/TimeZone.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

// X11 has a macro of this name.
#pragma push_macro("Status")
#undef Status

namespace orvane {

/// A recorded journey. Every member is absent where the backend did not tell it; in a trip that the
/// backend sent `id`, `status`, `transportMode` and `purpose` are there, since it fails without.
///
/// What is read is not all written: the three scores are lost.
struct ORVANE_EXPORT Trip {
  /// What the trip was for.
  enum class Purpose : std::uint8_t { unknown, personal, business };

  /// How far the recording has come.
  enum class Status : std::uint8_t { inProgress, complete, unknown };

  /// Events by their kind, in the backend's order within each.
  using Events = std::map<Event::EventType, std::vector<Event>>;

  /// The backend's identifier of the trip; "tripId" on the wire.
  std::optional<std::string> id{};
  std::optional<Date> dateStarted{};     ///< When it began.
  std::optional<Date> dateEnded{};       ///< When it ended.
  std::optional<Date> dateProcessed{};   ///< When the backend was done with it.
  std::optional<double> distance{};      ///< Metres.
  std::optional<double> averageSpeed{};  ///< Metres per second.
  std::optional<double> maximumSpeed{};  ///< Metres per second.
  std::optional<double> duration{};      ///< Seconds.
  /// Where the trip took place. Absent, too, for an offset that no zone has.
  std::optional<TimeZone> timeZone{};
  std::optional<Status> status{};                ///< How far the recording has come.
  std::optional<TransportMode> transportMode{};  ///< How the person travelled.
  /// What happened on the way; there when a request asked for it.
  std::optional<Events> events{};
  std::optional<double> score{};       ///< The score as a whole. Never written.
  Indirect<TripScores> scores{};       ///< Never written.
  Indirect<TripScoring> scoring{};     ///< Never written.
  std::optional<Polyline> polyline{};  ///< The route.
  std::optional<Purpose> purpose{};    ///< What it was for.
  /// The first stretch of the route, where it had to be reconstructed.
  std::optional<Polyline> startPolyline{};
  /// The driver; there when a request asked for it.
  Indirect<User> user{};
  std::optional<std::string> vehicleId{};  ///< The identifier of the vehicle.
  /// There when a request asked for it.
  Indirect<Vehicle> vehicle{};

  /// The coordinates of `polyline`, decoded anew by each call; absent without one. A polyline that
  /// is no list of coordinates stops the process (see `Polyline::decodeChecked`).
  [[nodiscard]] std::optional<std::vector<CLLocationCoordinate2D>> geometry() const;
  /// The same of `startPolyline`.
  [[nodiscard]] std::optional<std::vector<CLLocationCoordinate2D>> reconstructedStartGeometry()
      const;

  /// Vehicles count as equal when their `vehicleId` is.
  ORVANE_EXPORT bool operator==(const Trip& other) const noexcept;
};

template <>
struct EnumerationTable<Trip::Purpose> {
  using enum Trip::Purpose;
  static constexpr EnumerationCase<Trip::Purpose> cases[] = {
      {unknown, "UNKNOWN"}, {personal, "PERSONAL"}, {business, "BUSINESS"}};
  static constexpr auto fallback = unknown;
  static constexpr bool isJSONText = true;
};

template <>
struct EnumerationTable<Trip::Status> {
  using enum Trip::Status;
  static constexpr EnumerationCase<Trip::Status> cases[] = {
      {inProgress, "STARTED"}, {complete, "FINISHED"}, {unknown, "UNKNOWN"}};
  static constexpr auto fallback = unknown;
  static constexpr bool isJSONText = true;
};

template <>
inline constexpr bool hasCoding<Trip> = true;

}  // namespace orvane

#pragma pop_macro("Status")
