// SPDX-License-Identifier: Apache-2.0
// orvane location: where somebody was last.
#include "Commands.h"
#include <Orvane/Services/Location/LocationService.h>

namespace orvane::cli {
namespace {

struct ShowLocation {
  using Answer = Location;
  static constexpr std::string_view name = "location";
  static constexpr std::string_view summary = "Where the person who is signed in was last";
  static constexpr Example examples[] = {
      {"location", "in degrees, and when that was"},
  };

  Operation<Location> ask(const LocationService& service) const {
    return service.fetchLastKnownLocation();
  }

  static void print(const Location& location, Output& output) {
    output.block(Block()
                     .row("latitude", location.latitude)
                     .row("longitude", location.longitude)
                     .row("time", location.date));
  }
};

}  // namespace

Resource locationCommands() { return Resource::only<ShowLocation>(); }

}  // namespace orvane::cli
