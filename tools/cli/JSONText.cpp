// SPDX-License-Identifier: Apache-2.0
#include "JSONText.h"

#include <algorithm>

namespace orvane::cli {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const std::size_t start = text.find_first_not_of(whiteSpace);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(whiteSpace) - start + 1);
}

// Where the text literal that begins at `start` is over.
std::size_t endOfLiteral(std::string_view json, std::size_t start) {
  std::size_t at = start + 1;
  while (at < json.size() && json[at] != '"') at += json[at] == '\\' ? 2U : 1U;
  return std::min(at + 1, json.size());
}

// What stands between the outermost commas of an array or object.
std::vector<std::string_view> partsOf(std::string_view json, char opening) {
  std::vector<std::string_view> parts;
  json = trimmed(json);
  if (json.size() < 2 || json.front() != opening) return parts;
  const std::string_view inner = json.substr(1, json.size() - 2);
  std::size_t start = 0;
  std::size_t depth = 0;
  for (std::size_t at = 0; at < inner.size(); ++at) {
    const char character = inner[at];
    if (character == '"') at = endOfLiteral(inner, at) - 1;
    if (character == '{' || character == '[') ++depth;
    if ((character == '}' || character == ']') && depth > 0) --depth;
    if (character != ',' || depth > 0) continue;
    parts.push_back(trimmed(inner.substr(start, at - start)));
    start = at + 1;
  }
  const std::string_view last = trimmed(inner.substr(std::min(start, inner.size())));
  if (!last.empty()) parts.push_back(last);
  return parts;
}

}  // namespace

std::string jsonText(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string json = "\"";
  for (const char character : text) {
    const auto value = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
      json.append(1, '\\').append(1, character);
    } else if (value < 0x20) {
      json.append("\\u00").append(1, digits[value / 16U]).append(1, digits[value % 16U]);
    } else {
      json += character;
    }
  }
  return json + '"';
}

std::string compactJSON(std::string_view json) {
  std::string text;
  for (std::size_t at = 0; at < json.size();) {
    const std::size_t end = json[at] == '"' ? endOfLiteral(json, at) : at + 1;
    if (whiteSpace.find(json[at]) == std::string_view::npos) text += json.substr(at, end - at);
    at = end;
  }
  return text;
}

std::string indentedJSON(std::string_view json) {
  const std::string compact = compactJSON(json);
  std::string text;
  std::size_t depth = 0;
  const auto newLine = [&] { text.append(1, '\n').append(2 * depth, ' '); };
  for (std::size_t at = 0; at < compact.size(); ++at) {
    const char character = compact[at];
    const char next = at + 1 < compact.size() ? compact[at + 1] : '\0';
    if (character == '"') {
      const std::size_t end = endOfLiteral(compact, at);
      text.append(compact, at, end - at);
      at = end - 1;
      continue;
    }
    const bool isOpening = character == '{' || character == '[';
    const bool isClosing = character == '}' || character == ']';
    if (isClosing && depth > 0) --depth;
    const bool wasEmpty = at > 0 && (compact[at - 1] == '{' || compact[at - 1] == '[');
    if (isClosing && !wasEmpty) newLine();
    text += character;
    if (character == ':') text += ' ';
    if (isOpening) ++depth;
    const bool isEmpty = next == '}' || next == ']';
    if (character == ',' || (isOpening && !isEmpty)) newLine();
  }
  return text;
}

std::vector<std::string_view> elementsOf(std::string_view json) { return partsOf(json, '['); }

std::string_view memberOf(std::string_view json, std::string_view name) {
  const std::string key = jsonText(name);
  std::string_view value;
  for (const std::string_view member : partsOf(json, '{')) {
    if (!member.starts_with(key)) continue;
    const std::string_view rest = trimmed(member.substr(key.size()));
    if (rest.starts_with(':')) value = trimmed(rest.substr(1));
  }
  return value;
}

std::string arrayOf(const std::vector<std::string_view>& elements) {
  std::string json = "[";
  for (const std::string_view element : elements) {
    json.append(json.size() > 1 ? "," : "").append(element);
  }
  return json + "]";
}

}  // namespace orvane::cli
