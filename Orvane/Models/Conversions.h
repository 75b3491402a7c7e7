// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// How the units and texts of trips and events stand on the wire.
#pragma once

#include <Orvane/Coding/Decoder.h>
#include <Orvane/Models/Polyline.h>
#include <Orvane/Platform/Text.h>

#include <optional>
#include <string_view>

namespace orvane {

/// Metres, as kilometres.
struct Kilometres {
  using Wire = double;
  static double fromWire(Wire kilometres) { return kilometres * 1000.0; }
  static Wire toWire(double metres) { return metres / 1000.0; }
};

/// Metres per second, as kilometres per hour. The two directions round differently; the operations
/// and their order are part of the format.
struct KilometresPerHour {
  using Wire = double;
  static double fromWire(Wire speed) { return speed * 1000.0 / 60.0 / 60.0; }
  static Wire toWire(double metresPerSecond) { return metresPerSecond / 0.2777777777777778; }
};

/// A text that is not ASCII leaves the member absent.
struct EncodedPolyline {
  using Wire = std::string_view;
  static std::optional<Polyline> fromWire(Wire text, Decoder& decoder) {
    if (!isASCII(text)) return std::nullopt;
    return Polyline(decoder.keep(text));
  }
  static Wire toWire(const Polyline& polyline) { return polyline.encodedString(); }
};

}  // namespace orvane
