// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Decoder.h>
#include <Orvane/Platform/Text.h>

#include <algorithm>

namespace orvane {
namespace {

// Reading them recurses, with less than a kilobyte of stack for each. Backends nest a handful.
constexpr int deepestRecord = 64;

constexpr std::string_view wasExpected = " was expected, found ";

}  // namespace

bool Decoder::note(DecodingError::Kind kind, std::string description) {
  error_.kind = kind;
  error_.description = std::move(description);
  innermostFirst_.clear();
  tellsPath_ = true;
  return false;
}

bool Decoder::enterRecord() {
  return ++recordsEntered_ <= deepestRecord || malformedText("records nest too deep");
}

bool Decoder::typeMismatch(std::string_view expected, json::Element found) {
  if (found.is_null()) return valueNotFound(expected);
  return note(DecodingError::Kind::typeMismatch,
              concatenated({expected, wasExpected, json::describe(found)}));
}

bool Decoder::valueNotFound(std::string_view expected) {
  return note(DecodingError::Kind::valueNotFound, concatenated({expected, wasExpected, "null"}));
}

bool Decoder::keyNotFound(std::string_view key) {
  note(DecodingError::Kind::keyNotFound, "a required member is missing");
  return failedAt(key);
}

bool Decoder::dataCorrupted(std::string description) {
  return note(DecodingError::Kind::dataCorrupted, std::move(description));
}

bool Decoder::dataCorruptedWithoutPath(std::string description) {
  note(DecodingError::Kind::dataCorrupted, std::move(description));
  tellsPath_ = false;
  return false;
}

bool Decoder::unknownText(std::string_view reportedName, std::string_view text) {
  if (reportedName.empty()) {
    return dataCorrupted("no case has the wire text \"" + std::string(text) + '"');
  }
  return dataCorruptedWithoutPath("Unknown value found when decoding " + std::string(reportedName));
}

bool Decoder::malformedText(std::string_view description) {
  return note(DecodingError::Kind::malformedText, std::string(description));
}

bool Decoder::failedAt(std::string_view key) {
  innermostFirst_.emplace_back(key);
  return false;
}

bool Decoder::failedAt(std::size_t index) {
  innermostFirst_.push_back('[' + std::to_string(index) + ']');
  return false;
}

DecodingError Decoder::takeError() && {
  std::reverse(innermostFirst_.begin(), innermostFirst_.end());
  for (const std::string& step : innermostFirst_) {
    if (!error_.location.empty() && !step.starts_with('[')) error_.location += '.';
    error_.location += step;
  }
  if (tellsPath_) error_.codingPath = std::move(innermostFirst_);
  return std::move(error_);
}

}  // namespace orvane
