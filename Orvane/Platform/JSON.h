// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Parsed JSON texts.
#pragma once

#include <Orvane/Platform/JSONWriter.h>

#include <simdjson.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::json {

using Element = simdjson::dom::element;
using Array = simdjson::dom::array;
using Object = simdjson::dom::object;
using Type = simdjson::dom::element_type;

/// What stands in the text, in words for an error: "the text \"abc\"", "the number 3.5", "null".
[[nodiscard]] std::string describe(Element element);

/// So many arrays and objects may stand in one another. Nothing is done by recursion here, so that
/// what counts is memory: some ten bytes of the parser's for each.
inline constexpr std::size_t deepestNesting = 1000;

/// A JSON text that has been parsed as a whole, and the memory behind it. The parser comes from the
/// calling thread's stock and goes back there, so that a thread that decodes often does not
/// allocate; after a large text it is let go of.
class Document {
 public:
  /// Parses `text` (RFC 8259, a byte order mark allowed) in place: its capacity is raised to hold
  /// the parser's padding where the owner has not reserved it. A number may have any length but
  /// must lie in a double's range; an integer beyond 64 bits is a double.
  explicit Document(std::string& text);
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  ~Document();

  /// True when the text is one valid JSON value.
  [[nodiscard]] bool isValid() const noexcept { return failure_ == nullptr; }
  /// Why it is not valid.
  [[nodiscard]] std::string_view failure() const noexcept { return failure_; }
  /// The value; the text must be valid. Texts inside live as long as the document.
  [[nodiscard]] Element root() const noexcept { return root_; }

  /// True when the text holds an integer below the least one of 64 bits whose nearest double is
  /// that one, -2^63: a double of this value need not be the integer then.
  [[nodiscard]] bool roundsToLeastInteger() const noexcept { return roundsToLeastInteger_; }

  /// Bytes that must be readable behind a text; whoever reserves them spares a copy.
  static constexpr std::size_t padding = simdjson::SIMDJSON_PADDING;

 private:
  simdjson::error_code parse(std::string_view text);

  std::unique_ptr<simdjson::dom::parser> parser_;
  Element root_;
  const char* failure_ = nullptr;
  bool roundsToLeastInteger_ = false;
};

/// A copy of a text, with room for the padding.
[[nodiscard]] std::string paddedCopy(std::string_view text);

}  // namespace orvane::json
