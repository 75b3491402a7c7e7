// SPDX-License-Identifier: Apache-2.0
// The application's entry to where the current user was last.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Location.h>
#include <Orvane/Platform/Export.h>

#include <utility>

namespace orvane {

/// Fetches where the current user was last.
class ORVANE_EXPORT LocationService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit LocationService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the last known position of the current user's phone or vehicle.
  Operation<Location> fetchLastKnownLocation() const;
  RequestHandle fetchLastKnownLocation(Completion<Location> then) const;
};

}  // namespace orvane
