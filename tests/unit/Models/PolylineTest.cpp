// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Values.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Polyline.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace orvane {

inline void PrintTo(const CLLocationCoordinate2D& coordinate, std::ostream* out) {
  *out << '(' << coordinate.latitude << ", " << coordinate.longitude << ')';
}

namespace {

using Coordinates = std::vector<CLLocationCoordinate2D>;
using Case = PolylineError::Case;

// A coordinate by its wire units, scaled as the format says.
CLLocationCoordinate2D units(std::int64_t latitude, std::int64_t longitude) {
  return {static_cast<double>(latitude) * 1e-6, static_cast<double>(longitude) * 1e-6};
}

// A value of 64 bits that are all set: -2^63.
const std::string smallestValue = std::string(12, '~') + "N";
// All but the lowest: 2^63 - 1.
const std::string largestValue = "}" + std::string(11, '~') + "N";

TEST(PolylineTest, isDecoded) {
  const std::pair<std::string, Coordinates> rows[] = {
      {"", {}},
      {"??", {{0, 0}}},
      // Zigzag: 0, -1, 1, -2, 2; every coordinate is a difference.
      {"?@AB", {units(0, -1), units(1, -3)}},
      {"C?", {units(2, 0)}},
      // Six decimal places, not the five with which the same text stands for (38.5, -120.2).
      {"_p~iF~ps|U", {units(3850000, -12020000)}},
      {"_p~iF~ps|U_ulLnnqC_mqNvxq`@",
       {units(3850000, -12020000), units(4070000, -12095000), units(4325200, -12645300)}},
      // The largest chunk that ends a value, and the same after one that goes on with nothing.
      {"^_^", {units(-16, 496)}},
      // Bytes that no encoder writes are folded into five bits.
      {" !", {units(-1, 1)}},
      {std::string(1, '\0') + "\x1F", {units(-1, 0)}},
      {"\x7F?\x7F@", {units(0, 16)}},
      // Bits beyond the 64th are dropped, those of the chunk across the border and whole chunks.
      {smallestValue + "?", {units(least, 0)}},
      {std::string(12, '~') + "^?", {units(least, 0)}},
      {std::string(30, '~') + "^?", {units(least, 0)}},
      {"?" + largestValue, {units(0, most)}},
      {std::string(40, '_') + "?A", {units(0, 1)}},
      // Up to the border and back.
      {largestValue + "?" + smallestValue + "?", {units(most, 0), units(-1, 0)}},
  };
  for (const auto& [text, coordinates] : rows) {
    const auto polyline = Polyline::make(text);
    ASSERT_TRUE(polyline) << text;
    EXPECT_EQ(polyline->decode(), coordinates) << text;
    EXPECT_EQ(polyline->decodeChecked(), coordinates) << text;
    EXPECT_EQ(polyline->encodedString(), text);
    EXPECT_EQ(polyline->encodedData(), text);
  }
}

TEST(PolylineTest, isNoneUnlessItIsASCII) {
  for (const char* text : {"é", "_p~iF~ps|Ué", "??\x80", "\xFF"}) {
    EXPECT_EQ(Polyline::make(text), std::nullopt) << text;
  }
}

TEST(PolylineTest, tellsWhyItIsNoListOfCoordinates) {
  const std::pair<std::string, Case> rows[] = {
      {"?", Case::truncated},
      {"_", Case::truncated},
      {"_?", Case::truncated},
      {"???", Case::truncated},
      {"??_", Case::truncated},
      {"???_", Case::truncated},
      {"???\x7F", Case::truncated},
      {largestValue + "?A?", Case::overflow},
      {smallestValue + "?@?", Case::overflow},
      {"?" + largestValue + "?A", Case::overflow},
      {"?" + smallestValue + "?" + smallestValue, Case::overflow},
      // Back again, but it has been out.
      {largestValue + "?A?@?", Case::overflow},
  };
  for (const auto& [text, why] : rows) {
    EXPECT_EQ(Polyline::make(text)->decodeChecked(), PolylineError{why}) << text;
  }
}

class PolylineDeathTest : public DeathTest {};

TEST_F(PolylineDeathTest, stopsTheProcessWhereItIsTrusted) {
  const auto decode = [](const std::string& text) { (void)Polyline::make(text)->decode(); };
  EXPECT_DEATH(decode("??_"), "Fatal error: a polyline ends within a coordinate");
  EXPECT_DEATH(decode("?"), "Fatal error: a polyline ends within a coordinate");
  EXPECT_DEATH(decode(largestValue + "?A?"), "Fatal error: .* does not fit in 64 bits");
}

TEST(PolylineTest, isEncodedWithSixDecimalPlaces) {
  const std::pair<Coordinates, std::string> rows[] = {
      {{}, ""},
      {{{3.85, -12.02}, {4.07, -12.095}, {4.3252, -12.6453}}, "_p~iF~ps|U_ulLnnqC_mqNvxq`@"},
      {{{0.0000004, -0.0000004}}, "??"},
      {{{0.0000006, -0.0000006}}, "A@"},
  };
  for (const auto& [coordinates, text] : rows) {
    EXPECT_EQ(Polyline::encode(coordinates), Polyline::make(text));
  }
  for (const Coordinates& none : std::vector<Coordinates>{
           {{notANumber, 0}}, {{0, infinity}}, {{1, 1}, {-infinity, 0}}, {{3e12, 0}}}) {
    EXPECT_EQ(Polyline::encode(none), std::nullopt);
  }
}

TEST(PolylineTest, encodesWhatItDecodesToTheSameCoordinates) {
  std::mt19937_64 random(20240229);
  std::uniform_int_distribution<std::int64_t> anywhere(-180'000'000, 180'000'000);
  std::uniform_int_distribution<std::int64_t> nearby(-400, 400);
  std::uniform_int_distribution<std::size_t> length(0, 300);
  for (int route = 0; route < 300; ++route) {
    Coordinates coordinates(length(random));
    std::int64_t latitude = anywhere(random);
    std::int64_t longitude = anywhere(random);
    for (CLLocationCoordinate2D& coordinate : coordinates) {
      const bool jumps = random() % 16 == 0;
      latitude = jumps ? anywhere(random) : latitude + nearby(random);
      longitude = jumps ? anywhere(random) : longitude + nearby(random);
      coordinate = units(latitude, longitude);
    }
    const auto polyline = Polyline::encode(coordinates);
    ASSERT_TRUE(polyline);
    ASSERT_EQ(polyline->decode(), coordinates);
    ASSERT_EQ(Polyline::encode(polyline->decode()), polyline);
  }
  const Coordinates farthest{{2.3e12, -2.3e12}, {-2.3e12, 2.3e12}};
  EXPECT_EQ(Polyline::encode(farthest)->decode(), farthest);
}

TEST(PolylineTest, decodesAnyASCIIOrTellsWhyNot) {
  std::mt19937_64 random(7);
  std::uniform_int_distribution<int> byte(0, 127);
  for (int i = 0; i < 20'000; ++i) {
    std::string text(static_cast<std::size_t>(random() % 24), '\0');
    for (char& c : text) c = static_cast<char>(byte(random));
    const auto polyline = Polyline::make(text);
    ASSERT_TRUE(polyline);
    const auto coordinates = polyline->decodeChecked();
    ASSERT_TRUE(coordinates || coordinates.error());
    if (coordinates) {
      ASSERT_LE(coordinates.value()->size() * 2, text.size());
    }
  }
}

}  // namespace
}  // namespace orvane
