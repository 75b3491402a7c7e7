// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Models/Polyline.h>
#include <Orvane/Platform/Fatal.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace orvane {
namespace {

constexpr double degreesPerUnit = 1e-6;
constexpr double unitsPerDegree = 1e6;

constexpr unsigned bitsPerChunk = 5;
constexpr unsigned char chunkMask = 0x1F;
constexpr unsigned char offset = 63;
// The first byte that says that its value goes on: `offset` and the continuation bit 0x20.
constexpr unsigned char firstContinuation = 0x5F;

// Coordinates up to here keep the difference of any two within 64 bits.
constexpr double largestUnits = 0x1p61;

constexpr bool endsValue(char byte) noexcept {
  return static_cast<unsigned char>(byte) < firstContinuation;
}

// Reads one value, the end of which the text must hold, and moves on behind it.
std::uint64_t readValue(const char*& position) noexcept {
  std::uint64_t result = 0;
  std::size_t shift = 0;
  for (;;) {
    const auto byte = static_cast<unsigned char>(*position++);
    // What lies beyond 64 bits is dropped.
    if (shift < 64) result |= std::uint64_t{(byte + 1U) & chunkMask} << shift;
    if (byte < firstContinuation) break;
    shift += bitsPerChunk;
  }
  // Zigzag: the lowest bit is the sign.
  return (result >> 1U) ^ (0 - (result & 1U));
}

// A sum of differences that remembers whether it ever left 64 bits.
class Accumulator {
 public:
  void add(std::uint64_t difference) noexcept {
    const std::uint64_t sum = sum_ + difference;
    // Both terms have the same sign, and the sum has another.
    overflow_ |= (sum ^ sum_) & (sum ^ difference);
    sum_ = sum;
  }
  [[nodiscard]] double degrees() const noexcept {
    return static_cast<double>(static_cast<std::int64_t>(sum_)) * degreesPerUnit;
  }
  [[nodiscard]] bool hasOverflowed() const noexcept { return (overflow_ >> 63U) != 0; }

 private:
  std::uint64_t sum_ = 0;
  std::uint64_t overflow_ = 0;
};

std::optional<PolylineError> decodeInto(std::vector<CLLocationCoordinate2D>& coordinates,
                                        std::string_view text) {
  // Every value has one byte that ends it. With an even number of them, and one at the end, nothing
  // is cut off, and no read below can go past the end.
  const auto values = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), endsValue));
  if (values % 2 != 0 || (!text.empty() && !endsValue(text.back()))) {
    return PolylineError{PolylineError::Case::truncated};
  }
  coordinates.resize(values / 2);

  Accumulator latitude;
  Accumulator longitude;
  const char* position = text.data();
  for (CLLocationCoordinate2D& coordinate : coordinates) {
    latitude.add(readValue(position));
    longitude.add(readValue(position));
    coordinate = {latitude.degrees(), longitude.degrees()};
  }
  if (latitude.hasOverflowed() || longitude.hasOverflowed()) {
    return PolylineError{PolylineError::Case::overflow};
  }
  return std::nullopt;
}

void appendValue(std::string& text, std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  std::uint64_t rest = (bits << 1U) ^ (0 - (bits >> 63U));
  for (; rest > chunkMask; rest >>= bitsPerChunk) {
    text += static_cast<char>((rest & chunkMask) + firstContinuation);
  }
  text += static_cast<char>(rest + offset);
}

}  // namespace

std::string PolylineError::message() const {
  switch (kind) {
    case Case::truncated:
      return "a polyline ends within a coordinate";
    case Case::overflow:
      return "a polyline's coordinate does not fit in 64 bits";
  }
  return {};
}

std::optional<Polyline> Polyline::make(std::string encodedString) {
  // All bits at once: without a way out in between, the loop is vectorised.
  unsigned bits = 0;
  for (const char c : encodedString) bits |= static_cast<unsigned char>(c);
  if (bits >= 0x80) return std::nullopt;
  return Polyline(std::move(encodedString));
}

std::optional<Polyline> Polyline::encode(std::span<const CLLocationCoordinate2D> coordinates) {
  std::string text;
  std::int64_t latitude = 0;
  std::int64_t longitude = 0;
  const auto append = [&text](double degrees, std::int64_t& previous) {
    const double units = std::round(degrees * unitsPerDegree);
    // Written so that a NaN does not pass.
    if (!(std::abs(units) <= largestUnits)) return false;
    const auto current = static_cast<std::int64_t>(units);
    appendValue(text, current - previous);
    previous = current;
    return true;
  };
  for (const CLLocationCoordinate2D& coordinate : coordinates) {
    if (!append(coordinate.latitude, latitude) || !append(coordinate.longitude, longitude)) {
      return std::nullopt;
    }
  }
  return Polyline(std::move(text));
}

std::vector<CLLocationCoordinate2D> Polyline::decode() const {
  std::vector<CLLocationCoordinate2D> coordinates;
  if (const auto error = decodeInto(coordinates, text_)) fatal(error->message());
  return coordinates;
}

Result<std::vector<CLLocationCoordinate2D>> Polyline::decodeChecked() const {
  std::vector<CLLocationCoordinate2D> coordinates;
  if (const auto error = decodeInto(coordinates, text_)) return *error;
  return coordinates;
}

}  // namespace orvane
