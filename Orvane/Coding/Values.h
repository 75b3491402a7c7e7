// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// How plain values, lists and enumerations are read and written. Records add overloads of these two
// functions (see Models/Coders.h); everything finds them by argument-dependent lookup.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Coding/Decoder.h>
#include <Orvane/Platform/ClosedRange.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Indirect.h>
#include <Orvane/Platform/JSON.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Each reads one value; on failure it notes why in `decoder` and answers false, `value` being then
/// unspecified. Booleans are not numbers nor the reverse; an integer is any number whose value is
/// exactly an integer in range.
inline bool decodeValue(json::Element element, bool& value, Decoder& decoder) {
  return element.get(value) == simdjson::SUCCESS || decoder.typeMismatch("true or false", element);
}

inline bool decodeValue(json::Element element, double& value, Decoder& decoder) {
  return element.get(value) == simdjson::SUCCESS || decoder.typeMismatch("a number", element);
}

/// The rest of reading an integer: a number that is written as a fraction, or no number.
bool decodeInexactInteger(json::Element element, std::int64_t& value, Decoder& decoder);

inline bool decodeValue(json::Element element, std::int64_t& value, Decoder& decoder) {
  return element.get(value) == simdjson::SUCCESS || decodeInexactInteger(element, value, decoder);
}

/// Reads an integer of any size; in place of one that 64 bits don't hold, the nearest one that they
/// do.
bool decodeNearestInteger(json::Element element, std::int64_t& value, Decoder& decoder);

/// The text stays valid as long as the document it stands in.
inline bool decodeValue(json::Element element, std::string_view& value, Decoder& decoder) {
  return element.get(value) == simdjson::SUCCESS || decoder.typeMismatch("a text", element);
}

inline bool decodeValue(json::Element element, std::string& value, Decoder& decoder) {
  std::string_view text;
  if (!decodeValue(element, text, decoder)) return false;
  value = text;
  return true;
}

inline void encodeValue(bool value, json::Writer& writer) { writer.value(value); }
inline void encodeValue(double value, json::Writer& writer) { writer.value(value); }
inline void encodeValue(std::int64_t value, json::Writer& writer) { writer.value(value); }
inline void encodeValue(std::string_view value, json::Writer& writer) { writer.value(value); }
inline void encodeValue(const std::string& value, json::Writer& writer) {
  writer.value(std::string_view(value));
}

/// Whether the key at `position` appears once more before `end`: then the later one counts, and a
/// failure of this one does not matter.
[[nodiscard]] bool appearsAgain(json::Object::iterator position, json::Object::iterator end);

/// An enumeration is one text.
template <TextEnumeration E>
bool decodeValue(json::Element element, E& value, Decoder& decoder) {
  std::string_view text;
  if (!decodeValue(element, text, decoder)) return false;
  auto read = readWireText<E>(text);
  if (!read) return decoder.unknownText(reportedName<E>(), text);
  value = *std::move(read);
  return true;
}

template <TextEnumeration E>
void encodeValue(const E& value, json::Writer& writer) {
  writer.value(textOnTheWire(value));
}

/// Up to so many bytes memory is taken for the elements of a list before they have been read: a
/// short text may hold a great many that are none.
inline constexpr std::size_t mostReservedBytes = std::size_t{4} << 20U;

template <class T>
bool decodeValue(json::Element element, std::vector<T>& values, Decoder& decoder) {
  json::Array array;
  if (element.get(array) != simdjson::SUCCESS) return decoder.typeMismatch("an array", element);
  values.clear();
  values.reserve(std::min(array.size(), mostReservedBytes / sizeof(T) + 1));
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

/// A closed range is the array of its two bounds, the lower one first.
template <class T>
bool decodeValue(json::Element element, ClosedRange<T>& range, Decoder& decoder) {
  std::vector<T> bounds;
  if (!decodeValue(element, bounds, decoder)) return false;
  if (bounds.size() != 2) return decoder.dataCorrupted("a range has two bounds");
  const auto ordered = ClosedRange<T>::make(bounds[0], bounds[1]);
  if (!ordered) return decoder.dataCorrupted("the lower bound exceeds the upper bound");
  range = *ordered;
  return true;
}

template <class T>
void encodeValue(const ClosedRange<T>& range, json::Writer& writer) {
  writer.beginArray();
  encodeValue(range.lowerBound(), writer);
  encodeValue(range.upperBound(), writer);
  writer.endArray();
}

/// Calls `visit` with the key and the value of every entry of an object, whatever its keys; it
/// reads the value and answers false where that fails. Of duplicate keys the last one counts.
template <class Visit>
bool decodeEntries(json::Element element, Decoder& decoder, Visit visit) {
  json::Object object;
  if (element.get(object) != simdjson::SUCCESS) return decoder.typeMismatch("an object", element);
  const auto end = object.end();
  for (auto entry = object.begin(); entry != end; ++entry) {
    if (!visit(entry.key(), entry.value()) && !appearsAgain(entry, end)) {
      return decoder.failedAt(entry.key());
    }
  }
  return true;
}

/// An object whose keys are texts of any kind.
template <class T>
void encodeValue(const std::map<std::string_view, T>& entries, json::Writer& writer) {
  writer.beginObject();
  for (const auto& [key, value] : entries) {
    writer.key(key);
    encodeValue(value, writer);
  }
  writer.endObject();
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
