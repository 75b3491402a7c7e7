// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Decompresses the bodies of answers.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace orvane {

/// Takes a body compressed by "gzip" or "deflate" (RFC 9110, section 8.4.1) piece by piece. libcurl
/// could do this, but takes a text without its end for a whole one.
class ContentDecoder {
 public:
  enum class Outcome : std::uint8_t { ok, broken, stopped };

  /// A decoder for `coding` (in lower case); null for one that is not known, and without memory.
  [[nodiscard]] static std::unique_ptr<ContentDecoder> make(std::string_view coding);
  ContentDecoder(const ContentDecoder&) = delete;
  ContentDecoder& operator=(const ContentDecoder&) = delete;
  ~ContentDecoder();

  /// Hands on what `bytes` hold, as `bool sink(const char* bytes, std::size_t count)`, until that
  /// answers false.
  template <class Sink>
  [[nodiscard]] Outcome decode(std::string_view bytes, Sink&& sink) {
    setInput(bytes);
    char piece[16384];
    while (hasInput()) {
      const auto count = next(piece, sizeof piece);
      if (count < 0) return Outcome::broken;
      if (count > 0 && !sink(piece, static_cast<std::size_t>(count))) return Outcome::stopped;
    }
    return Outcome::ok;
  }

  /// Nothing lacks: the compressed text has come to its end, or has not begun.
  [[nodiscard]] bool isWhole() const noexcept { return isWhole_; }

 private:
  ContentDecoder() = default;

  void setInput(std::string_view bytes) noexcept;
  [[nodiscard]] bool hasInput() const noexcept { return stream_.avail_in > 0 || isFull_; }
  /// Writes what comes next into `piece`; answers how many bytes, or -1 for what can't be read.
  [[nodiscard]] std::ptrdiff_t next(char* piece, std::size_t size) noexcept;

  z_stream stream_{};
  bool isWhole_ = true;
  bool isFull_ = false;  // there may be more to come without any more input
};

}  // namespace orvane
