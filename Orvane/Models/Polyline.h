// SPDX-License-Identifier: Apache-2.0
// The compact text in which routes travel.
#pragma once

#include <Orvane/Platform/CLLocation.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/SharedText.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

/// Why a text is no list of coordinates.
struct ORVANE_EXPORT PolylineError {
  /// What is wrong with the text.
  enum class Case : std::uint8_t {
    truncated,  ///< It ends within a value, or with a latitude that has no longitude.
    overflow,   ///< A coordinate does not fit in 64 bits.
  };

  Case kind = Case::truncated;  ///< What is wrong with it.

  [[nodiscard]] std::string message() const;
  friend bool operator==(const PolylineError&, const PolylineError&) = default;
};

/// A route as an encoded polyline (the Encoded Polyline Algorithm Format, but with six decimal
/// places instead of the usual five). Holds the text as it came, which copies share; it is decoded
/// anew by each call.
class ORVANE_EXPORT Polyline {
 public:
  /// Holds `encodedString`, whatever it says. Absent when the text is not ASCII.
  [[nodiscard]] static std::optional<Polyline> make(std::string_view encodedString);

  /// The polyline of a list of coordinates, each rounded to six decimal places. Absent when one is
  /// not finite, or beyond 2 x 10^12 degrees.
  [[nodiscard]] static std::optional<Polyline> encode(
      std::span<const CLLocationCoordinate2D> coordinates);

  /// The text as it came; valid as long as this polyline or a copy of it.
  [[nodiscard]] std::string_view encodedString() const noexcept { return text_.view(); }
  /// The same as bytes in ASCII.
  [[nodiscard]] std::string_view encodedData() const noexcept { return text_.view(); }

  /// The coordinates. A text that is none of a list of coordinates is a programming fault that
  /// stops the process: see `decodeChecked` for texts from elsewhere.
  [[nodiscard]] std::vector<CLLocationCoordinate2D> decode() const;

  /// The coordinates. Fails with a `PolylineError`.
  [[nodiscard]] Result<std::vector<CLLocationCoordinate2D>> decodeChecked() const;

  friend bool operator==(const Polyline&, const Polyline&) = default;

 private:
  friend struct EncodedPolyline;
  explicit Polyline(SharedText text) noexcept : text_(std::move(text)) {}

  SharedText text_;
};

}  // namespace orvane
