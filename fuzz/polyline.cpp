// SPDX-License-Identifier: Apache-2.0
// Any text as a route: decoding answers coordinates or an error, and coordinates that a text can
// hold come back from the text that they are encoded into.
#include <Orvane/Models/Polyline.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using orvane::CLLocationCoordinate2D;
using orvane::Polyline;

// Up to here six decimal places are exact enough to find the same number of them again.
bool isOnEarth(const CLLocationCoordinate2D& coordinate) {
  return std::abs(coordinate.latitude) <= 90 && std::abs(coordinate.longitude) <= 180;
}

bool areOnEarth(const std::vector<CLLocationCoordinate2D>& coordinates) {
  for (const CLLocationCoordinate2D& coordinate : coordinates) {
    if (!isOnEarth(coordinate)) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto polyline = Polyline::make({reinterpret_cast<const char*>(data), size});
  if (!polyline) return 0;
  const auto coordinates = polyline->decodeChecked();
  if (!coordinates) return 0;

  const auto encoded = Polyline::encode(*coordinates.value());
  if (!areOnEarth(*coordinates.value())) return 0;
  if (!encoded || encoded->decode() != *coordinates.value()) std::abort();
  return 0;
}
