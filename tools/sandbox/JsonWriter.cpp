// SPDX-License-Identifier: Apache-2.0
#include "JsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>

namespace orvane::sandbox {

void JsonWriter::separate() {
  // A bracket or a colon stands last only where a first value is due: quoted text ends in a quote.
  if (out_.empty()) return;
  const char last = out_.back();
  if (last != '{' && last != '[' && last != ':') out_.push_back(',');
}

JsonWriter& JsonWriter::open(char bracket) {
  separate();
  out_.push_back(bracket);
  return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
  out_.push_back(bracket);
  return *this;
}

void JsonWriter::quote(std::string_view text) {
  constexpr std::string_view hexDigits = "0123456789abcdef";
  out_.push_back('"');
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out_.push_back('\\');
      out_.push_back(c);
    } else if (byte < 0x20) {
      out_.append("\\u00");
      out_.push_back(hexDigits[byte >> 4U]);
      out_.push_back(hexDigits[byte & 0xFU]);
    } else {
      out_.push_back(c);
    }
  }
  out_.push_back('"');
}

JsonWriter& JsonWriter::key(std::string_view name) {
  separate();
  quote(name);
  out_.push_back(':');
  return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
  separate();
  quote(text);
  return *this;
}

JsonWriter& JsonWriter::integer(std::int64_t number) {
  std::array<char, 24> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
  return raw({text.data(), static_cast<std::size_t>(result.ptr - text.data())});
}

JsonWriter& JsonWriter::value(double number) {
  if (!std::isfinite(number)) return null();
  std::array<char, 40> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
  return raw({text.data(), static_cast<std::size_t>(result.ptr - text.data())});
}

JsonWriter& JsonWriter::raw(std::string_view json) {
  separate();
  out_.append(json);
  return *this;
}

}  // namespace orvane::sandbox
