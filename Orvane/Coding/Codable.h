// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The two public templates of Coding.h, defined for the records' own files to instantiate.
#pragma once

#include <Orvane/Coding/Coding.h>
#include <Orvane/Coding/Values.h>

#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// Reads a `T` from a text that may be changed: the parser's padding goes into its capacity.
template <class T>
Result<T> decodeInPlace(std::string& text) {
  const json::Document document(text);
  Decoder decoder;
  if (document.isValid()) {
    T value{};
    if (decodeValue(document.root(), value, decoder)) return value;
  } else {
    decoder.malformedText(document.failure());
  }
  return std::move(decoder).takeError();
}

template <class T>
Result<T> decode(std::string_view json) {
  std::string text;
  text.reserve(json.size() + json::Document::padding);
  text = json;
  return decodeInPlace<T>(text);
}

template <class T>
Result<std::string> encode(const T& value) {
  json::Writer writer;
  encodeValue(value, writer);
  if (!writer.failure().empty()) return EncodingError{std::string(writer.failure())};
  return std::move(writer).take();
}

}  // namespace orvane
