// SPDX-License-Identifier: Apache-2.0
// Any bytes as a list of trips: decoding answers trips or an error, whose routes can be asked for
// and which can be written again.
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/Trip.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

using orvane::Trip;

void askForRoutes(const Trip& trip) {
  if (trip.polyline) static_cast<void>(trip.polyline->decodeChecked());
  if (!trip.events) return;
  for (const auto& [type, events] : *trip.events) {
    for (const orvane::Event& event : events) {
      if (event.polyline) static_cast<void>(event.polyline->decodeChecked());
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto decoded = orvane::decode<std::vector<Trip>>(text);
  if (!decoded) return 0;

  for (const Trip& trip : *decoded.value()) askForRoutes(trip);
  const auto encoded = orvane::encodeChecked(*decoded.value());
  if (!encoded) return 0;
  if (!orvane::decode<std::vector<Trip>>(*encoded.value())) std::abort();
  return 0;
}
