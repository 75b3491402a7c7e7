// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// How plain values, lists and enumerations are read and written. Records add overloads of these two
// functions (see Models/Coders.h); everything finds them by argument-dependent lookup.
#pragma once

#include <Orvane/Coding/Decoder.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Indirect.h>
#include <Orvane/Platform/JSON.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Each reads one value; on failure it notes why in `decoder` and answers false, `value` being then
/// unspecified. Booleans are not numbers nor the reverse; an integer is any number whose value is
/// exactly an integer in range.
bool decodeValue(json::Element element, bool& value, Decoder& decoder);
bool decodeValue(json::Element element, double& value, Decoder& decoder);
bool decodeValue(json::Element element, std::int64_t& value, Decoder& decoder);
bool decodeValue(json::Element element, std::string& value, Decoder& decoder);
/// The text stays valid as long as the document it stands in.
bool decodeValue(json::Element element, std::string_view& value, Decoder& decoder);

inline void encodeValue(bool value, json::Writer& writer) { writer.value(value); }
inline void encodeValue(double value, json::Writer& writer) { writer.value(value); }
inline void encodeValue(std::int64_t value, json::Writer& writer) { writer.value(value); }
inline void encodeValue(std::string_view value, json::Writer& writer) { writer.value(value); }
inline void encodeValue(const std::string& value, json::Writer& writer) {
  writer.value(std::string_view(value));
}

/// An enumeration is a text of its table. What happens with another text the table says too: a
/// member `fallback` is taken instead, a member `reportedName` names the type in the error.
template <Enumeration E>
bool decodeValue(json::Element element, E& value, Decoder& decoder) {
  std::string_view text;
  if (!decodeValue(element, text, decoder)) return false;
  if (const auto known = fromWireText<E>(text)) {
    value = *known;
    return true;
  }
  if constexpr (requires { EnumerationTable<E>::fallback; }) {
    value = EnumerationTable<E>::fallback;
    return true;
  } else if constexpr (requires { EnumerationTable<E>::reportedName; }) {
    return decoder.dataCorruptedWithoutPath("Unknown value found when decoding " +
                                            std::string(EnumerationTable<E>::reportedName));
  } else {
    return decoder.dataCorrupted("no case has the wire text \"" + std::string(text) + '"');
  }
}

template <Enumeration E>
void encodeValue(E value, json::Writer& writer) {
  writer.value(wireText(value));
}

template <class T>
bool decodeValue(json::Element element, std::vector<T>& values, Decoder& decoder) {
  json::Array array;
  if (element.get(array) != simdjson::SUCCESS) return decoder.typeMismatch("an array", element);
  values.clear();
  values.reserve(array.size());
  for (const json::Element entry : array) {
    if (!decodeValue(entry, values.emplace_back(), decoder)) {
      return decoder.failedAt(values.size() - 1);
    }
  }
  return true;
}

template <class T>
void encodeValue(const std::vector<T>& values, json::Writer& writer) {
  writer.beginArray();
  for (const T& value : values) encodeValue(value, writer);
  writer.endArray();
}

/// Null leaves an optional absent; everything else is the value's own business.
template <class T>
bool decodeValue(json::Element element, std::optional<T>& value, Decoder& decoder) {
  if (element.is_null()) {
    value.reset();
    return true;
  }
  return decodeValue(element, value.emplace(), decoder);
}

template <class T>
bool decodeValue(json::Element element, Indirect<T>& value, Decoder& decoder) {
  if (element.is_null()) {
    value.reset();
    return true;
  }
  return decodeValue(element, value.emplace(), decoder);
}

}  // namespace orvane
