// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The templates of Coding.h, defined for the records' own files to instantiate:
// `template struct RecordCoding<User>;` and the same for a list of them.
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
  Decoder decoder(document);
  if (document.isValid()) {
    T value{};
    if (decodeValue(document.root(), value, decoder)) return value;
  } else {
    decoder.malformedText(document.failure());
  }
  return std::move(decoder).takeError();
}

/// Writes a `T`, faults of the program being treated as `writer` was told.
template <class T>
Result<std::string> encodeWith(json::Writer writer, const T& value) {
  encodeValue(value, writer);
  if (!writer.failure().empty()) return EncodingError{writer.failure()};
  return std::move(writer).take();
}

template <class T>
Result<T> RecordCoding<T>::decode(std::string_view json) {
  std::string text;
  text.reserve(json.size() + json::Document::padding);
  text = json;
  return decodeInPlace<T>(text);
}

template <class T>
Result<std::string> RecordCoding<T>::encode(const T& value) {
  return encodeWith(json::Writer(json::Writer::Faults::stopTheProcess), value);
}

template <class T>
Result<std::string> RecordCoding<T>::encodeChecked(const T& value) {
  return encodeWith(json::Writer(json::Writer::Faults::areFailures), value);
}

}  // namespace orvane
