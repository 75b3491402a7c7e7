// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Remembers why decoding failed and where.
#pragma once

#include <Orvane/Coding/DecodingError.h>
#include <Orvane/Coding/TextPool.h>
#include <Orvane/Platform/JSON.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// Nothing is noted on the way down. When a value fails it says why, and each level that the
/// failure passes on its way up puts its key or index in front of the place.
class Decoder {
 public:
  /// For the values of a document.
  explicit Decoder(const json::Document& document)
      : roundsToLeastInteger_(document.roundsToLeastInteger()) {}

  /// Whether a double of -2^63 may stand for an integer below it (see `json::Document`).
  [[nodiscard]] bool roundsToLeastInteger() const noexcept { return roundsToLeastInteger_; }

  /// To be called before and after a record's members are read. Answers false, having noted it,
  /// where so many records stand in one another that the stack of a small thread might end.
  bool enterRecord();
  void leaveRecord() noexcept { --recordsEntered_; }

  /// Each of these notes a failure and answers false, so that a decoding step can return it.
  bool typeMismatch(std::string_view expected, json::Element found);
  bool valueNotFound(std::string_view expected);
  bool keyNotFound(std::string_view key);
  bool dataCorrupted(std::string description);
  /// A failure that tells no coding path (its location is told all the same).
  bool dataCorruptedWithoutPath(std::string description);
  /// No case of an enumeration has the text. Where the enumeration has a name that errors report,
  /// they tell no coding path.
  bool unknownText(std::string_view reportedName, std::string_view text);
  bool malformedText(std::string_view description);

  /// Puts the key, or the index, under which the failed value stands in front of its place.
  bool failedAt(std::string_view key);
  bool failedAt(std::size_t index);

  /// A copy of a text of the document, for a value that shares its memory with others.
  SharedText keep(std::string_view text) { return texts_.keep(text); }

  /// The failure, places in order from the root.
  [[nodiscard]] DecodingError takeError() &&;

 private:
  bool note(DecodingError::Kind kind, std::string description);

  DecodingError error_;
  std::vector<std::string> innermostFirst_;
  bool tellsPath_ = true;
  bool roundsToLeastInteger_;
  int recordsEntered_ = 0;
  TextPool texts_;
};

}  // namespace orvane
