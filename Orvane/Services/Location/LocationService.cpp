// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Location/LocationComposer.h>
#include <Orvane/Services/Location/LocationService.h>

namespace orvane {

Operation<Location> LocationService::fetchLastKnownLocation() const {
  return get<Location>(*this, LocationComposer());
}

RequestHandle LocationService::fetchLastKnownLocation(Completion<Location> then) const {
  return fetchLastKnownLocation().start(std::move(then));
}

}  // namespace orvane
