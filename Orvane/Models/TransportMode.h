// SPDX-License-Identifier: Apache-2.0
// How somebody travelled.
#pragma once

#include <Orvane/Platform/Enumeration.h>

#include <cstdint>

namespace orvane {

/// How somebody travelled. Always the text on the wire, never the number.
enum class TransportMode : std::uint8_t {
  unknown = 0,
  driver = 1,
  passenger = 2,
  train = 3,
  bus = 4,
  airplane = 5,
  taxi = 6,
  motorcycle = 7,
  boat = 8,
  walk = 9,
  bicycle = 10,
  publicTransit = 11,
  other = 12,
};

template <>
struct EnumerationTable<TransportMode> {
  using enum TransportMode;
  static constexpr EnumerationCase<TransportMode> cases[] = {
      // No text of its own: "UNKNOWN" is one of the texts that are not known.
      {unknown, ""},
      {driver, "DRIVER"},
      {passenger, "CAR_PASSENGER"},
      {train, "TRAIN"},
      {bus, "BUS"},
      {airplane, "AIRPLANE"},
      {taxi, "TAXI"},
      {motorcycle, "MOTORCYCLE"},
      {boat, "BOAT"},
      {walk, "WALK"},
      {bicycle, "BICYCLE"},
      {publicTransit, "PUBLIC_TRANSPORTATION"},
      {other, "OTHER"},
  };
  static constexpr auto fallback = unknown;
  static constexpr bool isJSONText = true;
};

}  // namespace orvane
