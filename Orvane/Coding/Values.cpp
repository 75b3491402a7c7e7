// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Values.h>

namespace orvane {

bool decodeValue(json::Element element, bool& value, Decoder& decoder) {
  return element.get(value) == simdjson::SUCCESS || decoder.typeMismatch("true or false", element);
}

bool decodeValue(json::Element element, double& value, Decoder& decoder) {
  return element.get(value) == simdjson::SUCCESS || decoder.typeMismatch("a number", element);
}

bool decodeValue(json::Element element, std::int64_t& value, Decoder& decoder) {
  if (element.get(value) == simdjson::SUCCESS) return true;
  double number = 0;
  if (element.get(number) != simdjson::SUCCESS || number < -0x1p63 || number >= 0x1p63) {
    return decoder.typeMismatch("an integer", element);
  }
  value = static_cast<std::int64_t>(number);
  return static_cast<double>(value) == number || decoder.typeMismatch("an integer", element);
}

bool decodeValue(json::Element element, std::string_view& value, Decoder& decoder) {
  return element.get(value) == simdjson::SUCCESS || decoder.typeMismatch("a text", element);
}

bool decodeValue(json::Element element, std::string& value, Decoder& decoder) {
  std::string_view text;
  if (!decodeValue(element, text, decoder)) return false;
  value = text;
  return true;
}

bool appearsAgain(const json::Object& object, json::Object::iterator position) {
  const std::string_view key = position.key();
  for (++position; position != object.end(); ++position) {
    if (position.key() == key) return true;
  }
  return false;
}

}  // namespace orvane
