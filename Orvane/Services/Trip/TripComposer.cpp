// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/DateRangeItems.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Trip/TripComposer.h>

#include <algorithm>
#include <vector>

namespace orvane {
namespace {

constexpr std::int64_t largestLimit = 100;

}  // namespace

std::int64_t TripComposer::clampedLimit(std::int64_t limit) noexcept {
  return std::clamp(limit, std::int64_t{1}, largestLimit);
}

std::string TripComposer::path(std::string_view userID) const {
  if (const auto* resource = std::get_if<Resource>(&requestType)) {
    return concatenated({"trips/", resource->tripID});
  }
  if (const auto* update = std::get_if<Update>(&requestType)) {
    return concatenated({"trips/", update->tripID});
  }
  const auto& collection = std::get<Collection>(requestType);
  const std::string_view user = collection.otherUserID ? *collection.otherUserID : userID;
  return concatenated({"users/", user, collection.logbook ? "/logbook/trips" : "/trips"});
}

std::optional<std::string> TripComposer::query() const {
  using enum TripService::Expansion;
  QueryItems items;
  for (const TripService::Expansion expansion : expansions) {
    // The route comes with the points.
    items.add("expand", wireText(expansion == geometry ? points : expansion));
  }
  if (const auto* collection = std::get_if<Collection>(&requestType)) {
    for (const TripService::Filter& filter : collection->filters) {
      if (const auto* cursor = filter.as<TripService::CursorFilter>()) {
        items.add("limit", clampedLimit(cursor->limit));
        items.add("offset", std::max(cursor->offset, std::int64_t{0}));
      } else {
        addDateRange(items, *filter.as<TripService::DateFilter>(), "Services/Trip/TripComposer");
      }
    }
  } else if (const auto* update = std::get_if<Update>(&requestType)) {
    if (update->transportMode) items.add("transportMode", wireText(*update->transportMode));
    if (update->purpose) items.add("purpose", wireText(*update->purpose));
  }
  return std::move(items).joined();
}

std::string VehicleTripsComposer::path(std::string_view) const {
  return concatenated({"vehicles/", trips.vehicleId, "/trips"});
}

std::optional<std::string> VehicleTripsComposer::query() const {
  QueryItems items;
  items.add("startDate", trips.startDate).add("endDate", trips.endDate);
  items.add("limit", trips.vehicleTripsLimit);
  if (trips.offset >= 1) items.add("offset", trips.offset);
  if (!trips.role.empty()) items.add("role", trips.role);
  items.add("user", trips.userId);
  if (!trips.expansions.empty()) items.add("expand", commaSeparated(trips.expansions));
  return std::move(items).joined();
}

}  // namespace orvane
