// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Platform/JSON.h>
#include <Orvane/Platform/JSONIntegers.h>
#include <Orvane/Platform/OfThisThread.h>

#include <utility>

namespace orvane::json {
namespace {

// simdjson counts the place below the innermost array or object, too.
constexpr std::size_t deepestPlace = deepestNesting + 1;

// A parser's memory is several times its text and never shrinks; one that has seen a text larger
// than this is not kept.
constexpr std::size_t largestKeptCapacity = std::size_t{4} << 20U;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::unique_ptr<simdjson::dom::parser>& stock() {
  return ofThisThread<std::unique_ptr<simdjson::dom::parser>>();
}

std::unique_ptr<simdjson::dom::parser> takeParser() {
  if (auto parser = std::move(stock())) return parser;
  return std::make_unique<simdjson::dom::parser>();
}

// Enough of a text to recognise it by: forty bytes, less where they would cut a character.
std::string_view beginning(std::string_view text) {
  const auto continuesCharacter = [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
  };
  std::size_t end = 40;
  if (text.size() <= end) return text;
  while (continuesCharacter(text[end])) --end;
  return text.substr(0, end);
}

}  // namespace

std::string describe(Element element) {
  switch (element.type()) {
    case Type::ARRAY:
      return "an array";
    case Type::OBJECT:
      return "an object";
    case Type::STRING: {
      const std::string_view text = element.get_string().value_unsafe();
      std::string description = "the text \"";
      description += beginning(text);
      description += text.size() > beginning(text).size() ? "…\"" : "\"";
      return description;
    }
    case Type::INT64:
    case Type::UINT64:
    case Type::DOUBLE:
      return "the number " + simdjson::minify(element);
    case Type::BOOL:
      return element.get_bool().value_unsafe() ? "true" : "false";
    case Type::NULL_VALUE:
      return "null";
  }
  return "nothing";
}

Document::Document(std::string& text) : parser_(takeParser()) {
  if (text.capacity() - text.size() < padding) text.reserve(text.size() + padding);
  std::string_view body = text;
  if (body.starts_with(byteOrderMark)) body.remove_prefix(byteOrderMark.size());
  // Newer versions of simdjson would pass over another one.
  if (body.starts_with(byteOrderMark)) {
    failure_ = "the text begins with two byte order marks";
    return;
  }

  simdjson::error_code error = parse(body);
  if (error == simdjson::SUCCESS) return;
  // Which error stands for an integer beyond 64 bits depends on simdjson's version, and another one
  // may stand in front of it: the text itself is asked.
  if (const auto widened = widenIntegers(body, padding)) {
    error = parse(widened->text);
    roundsToLeastInteger_ = widened->roundToLeast;
  }
  if (error != simdjson::SUCCESS) failure_ = simdjson::error_message(error);
}

// The text may go once it has been parsed: the parser has copied the texts inside.
simdjson::error_code Document::parse(std::string_view text) {
  if (parser_->max_depth() != deepestPlace || parser_->capacity() < text.size()) {
    if (const auto error = parser_->allocate(text.size(), deepestPlace)) return error;
  }
  return parser_->parse(text.data(), text.size(), false).get(root_);
}

Document::~Document() {
  if (parser_->capacity() <= largestKeptCapacity) stock() = std::move(parser_);
}

std::string paddedCopy(std::string_view text) {
  std::string copy;
  copy.reserve(text.size() + Document::padding);
  copy = text;
  return copy;
}

}  // namespace orvane::json
