// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Values.h>

#include <cmath>
#include <limits>

namespace orvane {

bool decodeInexactInteger(json::Element element, std::int64_t& value, Decoder& decoder) {
  double number = 0;
  if (element.get(number) != simdjson::SUCCESS || number < -0x1p63 || number >= 0x1p63 ||
      (number == -0x1p63 && decoder.roundsToLeastInteger())) {
    return decoder.typeMismatch("an integer", element);
  }
  value = static_cast<std::int64_t>(number);
  return static_cast<double>(value) == number || decoder.typeMismatch("an integer", element);
}

bool decodeNearestInteger(json::Element element, std::int64_t& value, Decoder& decoder) {
  if (element.get(value) == simdjson::SUCCESS) return true;
  double number = 0;
  // Every double of this size is an integer.
  if (element.get(number) != simdjson::SUCCESS || std::abs(number) < 0x1p63) {
    return decodeInexactInteger(element, value, decoder);
  }
  using Limits = std::numeric_limits<std::int64_t>;
  value = number < 0 ? Limits::min() : Limits::max();
  return true;
}

bool appearsAgain(json::Object::iterator position, json::Object::iterator end) {
  const std::string_view key = position.key();
  for (++position; position != end; ++position) {
    if (position.key() == key) return true;
  }
  return false;
}

}  // namespace orvane
