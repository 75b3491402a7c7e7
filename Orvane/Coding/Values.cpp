// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Values.h>

namespace orvane {

bool decodeInexactInteger(json::Element element, std::int64_t& value, Decoder& decoder) {
  double number = 0;
  if (element.get(number) != simdjson::SUCCESS || number < -0x1p63 || number >= 0x1p63) {
    return decoder.typeMismatch("an integer", element);
  }
  value = static_cast<std::int64_t>(number);
  return static_cast<double>(value) == number || decoder.typeMismatch("an integer", element);
}

bool appearsAgain(json::Object::iterator position, json::Object::iterator end) {
  const std::string_view key = position.key();
  for (++position; position != end; ++position) {
    if (position.key() == key) return true;
  }
  return false;
}

}  // namespace orvane
