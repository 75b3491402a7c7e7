// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Status line and headers of an answer, as far as they decide how its body is read.
#pragma once

#include <Orvane/Runtime/TransportError.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// Reads the lines that stand before a body, and says what is wrong with them. Headers of interim
/// answers (1xx) are forgotten with the next status line, trailers are passed over.
class AnswerHead {
 public:
  /// Takes the next line, with what ends it. False: the answer can't be used, see `problem`.
  [[nodiscard]] bool take(std::string_view line);

  /// The empty line behind the headers has come, and the answer is not an interim one.
  [[nodiscard]] bool isComplete() const noexcept { return isComplete_; }
  /// The status (RFC 9110, section 15); 0 before the status line.
  [[nodiscard]] int status() const noexcept { return status_; }
  [[nodiscard]] bool isSuccess() const noexcept { return status_ >= 200 && status_ < 300; }
  /// Several requests may share the connection that the answer came on (HTTP/2 and later).
  [[nodiscard]] bool isMultiplexed() const noexcept { return isMultiplexed_; }

  /// The bytes that the body has on its way; absent when they are not announced.
  [[nodiscard]] std::optional<std::int64_t> length() const noexcept {
    return isChunked_ ? std::nullopt : length_;
  }
  /// The body has an end of its own, so that one that was cut can be told from a whole one.
  [[nodiscard]] bool tellsItsEnd() const noexcept {
    return length_ || isChunked_ || isMultiplexed_ || status_ == 204 || status_ == 205;
  }
  /// How the body is compressed, in lower case; empty for not at all.
  [[nodiscard]] const std::string& coding() const noexcept { return coding_; }

  /// Why the answer can't be used; absent when it can.
  [[nodiscard]] const std::optional<TransportError>& problem() const noexcept { return problem_; }

 private:
  void takeStatusLine(std::string_view line);
  void takeHeader(std::string_view name, std::string_view value);
  void takeLength(std::string_view value);
  void checkSize(std::size_t lineSize);
  void fail(TransportError::Kind kind, const char* details);

  int status_ = 0;
  bool isComplete_ = false;
  bool isMultiplexed_ = false;
  bool isChunked_ = false;
  bool hasBadLength_ = false;
  std::optional<std::int64_t> length_;
  std::string coding_;
  std::size_t lineCount_ = 0;
  std::size_t size_ = 0;
  std::optional<TransportError> problem_;
};

}  // namespace orvane
