// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests of trips: one, lists of them, corrections, and those of a vehicle.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Services/Trip/TripService.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <variant>

namespace orvane {

/// Reads a trip or a list of trips, or corrects a trip.
class TripComposer final : public URLComposer {
 public:
  struct Resource {
    std::string tripID;
  };
  struct Collection {
    bool logbook;
    std::optional<std::string> otherUserID;
    std::set<TripService::Filter> filters;
  };
  struct Update {
    std::string tripID;
    std::optional<TransportMode> transportMode;
    std::optional<Trip::Purpose> purpose;
  };
  using RequestType = std::variant<Resource, Collection, Update>;

  /// One of the request types: as it is, since GCC 12 takes the move of a variant whose collection
  /// names nobody for that of a text (at -O3, for arm64).
  template <class Type>
  explicit TripComposer(Type type, std::set<TripService::Expansion> expanded = {})
      : requestType(std::in_place_type<Type>, std::move(type)), expansions(std::move(expanded)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  /// The number of trips that is asked of the backend for a page of `limit`.
  [[nodiscard]] static std::int64_t clampedLimit(std::int64_t limit) noexcept;

  RequestType requestType;
  std::set<TripService::Expansion> expansions;
};

/// Reads the trips of a vehicle.
class VehicleTripsComposer final : public URLComposer {
 public:
  explicit VehicleTripsComposer(TripsByVehicle arguments) : trips(std::move(arguments)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  TripsByVehicle trips;
};

}  // namespace orvane
