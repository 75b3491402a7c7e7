// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Models/Polyline.h>
#include <Orvane/Platform/Fatal.h>
#include <Orvane/Platform/Text.h>

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
  for (unsigned shift = 0;; shift += bitsPerChunk) {
    const auto byte = static_cast<unsigned char>(*position++);
    // What lies beyond 64 bits is dropped.
    if (shift < 64) result |= std::uint64_t{(byte + 1U) & chunkMask} << shift;
    if (byte < firstContinuation) return result;
  }
}

// The number that a value stands for. Zigzag: the lowest bit is the sign.
constexpr std::uint64_t differenceOf(std::uint64_t value) noexcept {
  return (value >> 1U) ^ (0 - (value & 1U));
}

// A sum of differences that remembers whether it ever left 64 bits.
class ExactSum {
 public:
  void add(std::uint64_t value) noexcept {
    const std::uint64_t difference = differenceOf(value);
    const std::uint64_t sum = sum_ + difference;
    // Both terms have the same sign, and the sum has another.
    overflow_ |= (sum ^ sum_) & (sum ^ difference);
    sum_ = sum;
  }
  [[nodiscard]] std::int64_t units() const noexcept { return static_cast<std::int64_t>(sum_); }
  [[nodiscard]] bool isReliable() const noexcept { return (overflow_ >> 63U) == 0; }

 private:
  std::uint64_t sum_ = 0;
  std::uint64_t overflow_ = 0;
};

// The same, knowing less: it vouches only for differences of less than 32 bits, of which a text
// can't hold enough to leave 64. Those of roads have some ten.
class QuickSum {
 public:
  void add(std::uint64_t value) noexcept {
    sum_ += differenceOf(value);
    bits_ |= value;
  }
  [[nodiscard]] std::int64_t units() const noexcept { return static_cast<std::int64_t>(sum_); }
  [[nodiscard]] bool isReliable() const noexcept { return (bits_ >> 32U) == 0; }

 private:
  std::uint64_t sum_ = 0;
  std::uint64_t bits_ = 0;
};

template <class Sum>
bool decodeValues(std::vector<CLLocationCoordinate2D>& coordinates, const char* position) noexcept {
  Sum latitude;
  Sum longitude;
  for (CLLocationCoordinate2D& coordinate : coordinates) {
    latitude.add(readValue(position));
    longitude.add(readValue(position));
    coordinate = {static_cast<double>(latitude.units()) * degreesPerUnit,
                  static_cast<double>(longitude.units()) * degreesPerUnit};
  }
  return latitude.isReliable() && longitude.isReliable();
}

std::optional<PolylineError> decodeInto(std::vector<CLLocationCoordinate2D>& coordinates,
                                        std::string_view text) {
  // Every value has one byte that ends it. With an even number of them, and one at the end, nothing
  // is cut off, and no read below can go past the end.
  const auto values = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), endsValue));
  if (values % 2 != 0 || (!text.empty() && !endsValue(text.back()))) {
    return PolylineError{PolylineError::Case::truncated};
  }
  coordinates.resize(values / 2);
  if (decodeValues<QuickSum>(coordinates, text.data()) ||
      decodeValues<ExactSum>(coordinates, text.data())) {
    return std::nullopt;
  }
  return PolylineError{PolylineError::Case::overflow};
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

std::optional<Polyline> Polyline::make(std::string_view encodedString) {
  if (!isASCII(encodedString)) return std::nullopt;
  return Polyline(SharedText(encodedString));
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
  return Polyline(SharedText(text));
}

std::vector<CLLocationCoordinate2D> Polyline::decode() const {
  std::vector<CLLocationCoordinate2D> coordinates;
  if (const auto error = decodeInto(coordinates, encodedString())) fatal(error->message());
  return coordinates;
}

Result<std::vector<CLLocationCoordinate2D>> Polyline::decodeChecked() const {
  std::vector<CLLocationCoordinate2D> coordinates;
  if (const auto error = decodeInto(coordinates, encodedString())) return *error;
  return coordinates;
}

}  // namespace orvane
