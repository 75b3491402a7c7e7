// SPDX-License-Identifier: Apache-2.0
// Why a JSON text did not become a record, or a record no JSON text.
#pragma once

#include <Orvane/Platform/Export.h>

#include <string>
#include <vector>

namespace orvane {

/// What was expected at which place of a JSON text, and what stood there.
struct ORVANE_EXPORT DecodingError {
  /// What is wrong with a text.
  enum class Kind {
    malformedText,  ///< The text is not JSON, nests too deep, or holds a number beyond a double's
                    ///< range.
    typeMismatch,   ///< A value of another JSON type.
    valueNotFound,  ///< null where a value is required.
    keyNotFound,    ///< A required member is missing.
    dataCorrupted,  ///< A value of the right type with a content that stands for nothing.
  };

  Kind kind = Kind::malformedText;  ///< What is wrong with it.
  /// What went wrong, in one sentence, without the place.
  std::string description;
  /// The keys and indexes (as "[3]") from the root to the place. Empty for some unknown enumeration
  /// texts, which tell no path.
  std::vector<std::string> codingPath;
  /// The place as one text, always there below the root: "[17].events.speeding[2].timeStamp".
  std::string location;

  [[nodiscard]] std::string message() const;
  friend bool operator==(const DecodingError&, const DecodingError&) = default;
};

/// A record holds something that JSON can't: a number that is not finite, a text that is not UTF-8.
struct ORVANE_EXPORT EncodingError {
  std::string description;  ///< What it is, in one sentence.

  [[nodiscard]] std::string message() const { return description; }
  friend bool operator==(const EncodingError&, const EncodingError&) = default;
};

}  // namespace orvane
