// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The templates of Coding.h, defined for the records' own files to instantiate:
// `template struct RecordCoding<User>;` and the same for a list of them.
#pragma once

#include <Orvane/Coding/Coding.h>
#include <Orvane/Coding/Values.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// Hands the value in a text that may be changed (the parser's padding goes into its capacity) to
/// `read`, which answers false where it has noted why it can't be read. Answers why it was not.
template <class Read>
std::optional<DecodingError> readInPlace(std::string& text, Read read) {
  const json::Document document(text);
  Decoder decoder(document);
  if (!document.isValid()) {
    decoder.malformedText(document.failure());
  } else if (read(document.root(), decoder)) {
    return std::nullopt;
  }
  return std::move(decoder).takeError();
}

/// Reads a `T` from a text that may be changed.
template <class T>
Result<T> decodeInPlace(std::string& text) {
  T value{};
  auto error = readInPlace(text, [&value](json::Element root, Decoder& decoder) {
    return decodeValue(root, value, decoder);
  });
  if (error) return *std::move(error);
  return value;
}

/// What has been written, or why it could not be.
inline Result<std::string> takeText(json::Writer writer) {
  if (!writer.failure().empty()) return EncodingError{writer.failure()};
  return std::move(writer).take();
}

/// Writes a `T`, faults of the program being treated as `writer` was told.
template <class T>
Result<std::string> encodeWith(json::Writer writer, const T& value) {
  encodeValue(value, writer);
  return takeText(std::move(writer));
}

template <class T>
Result<T> RecordCoding<T>::decode(std::string_view json) {
  std::string text = json::paddedCopy(json);
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

template <class T>
std::string RecordCoding<T>::print(const T& value) {
  json::Writer writer(json::Writer::Faults::areFailures);
  encodeValue(value, writer);
  const std::string failure = writer.failure();
  std::string text = std::move(writer).take();
  if (!failure.empty()) text.append(" (").append(failure).append(")");
  return text;
}

}  // namespace orvane
