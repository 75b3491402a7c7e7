// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Coding/EnumerationCoding.h>

namespace orvane::detail {
namespace {

bool decodeText(json::Element element, const TextReader& reader, Decoder& decoder) {
  std::string_view text;
  if (!decodeValue(element, text, decoder)) return false;
  return reader.take(reader.target, text) || decoder.unknownText(reader.reportedName, text);
}

bool decodeTexts(json::Element element, const TextReader& reader, Decoder& decoder) {
  json::Array array;
  if (element.get(array) != simdjson::SUCCESS) return decoder.typeMismatch("an array", element);
  std::size_t index = 0;
  for (const json::Element entry : array) {
    if (!decodeText(entry, reader, decoder)) return decoder.failedAt(index);
    ++index;
  }
  return true;
}

}  // namespace

std::optional<Error> readText(std::string_view json, const TextReader& reader) {
  std::string text = json::paddedCopy(json);
  return readInPlace(text, [&](json::Element root, Decoder& decoder) {
    return decodeText(root, reader, decoder);
  });
}

std::optional<Error> readTexts(std::string_view json, const TextReader& reader) {
  std::string text = json::paddedCopy(json);
  return readInPlace(text, [&](json::Element root, Decoder& decoder) {
    return decodeTexts(root, reader, decoder);
  });
}

Result<std::string> writeText(std::string_view text) { return encodeWith(json::Writer(), text); }

Result<std::string> writeTexts(std::span<const std::string_view> texts) {
  json::Writer writer;
  writer.beginArray();
  for (const std::string_view text : texts) writer.value(text);
  writer.endArray();
  return takeText(std::move(writer));
}

}  // namespace orvane::detail
