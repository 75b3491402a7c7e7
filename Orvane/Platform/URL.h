// SPDX-License-Identifier: Apache-2.0
// A URL: a text that is known to be well-formed, and the two operations by which requests are
// built.
#pragma once

#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Hash.h>
#include <Orvane/Platform/TextStream.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {

/// A URI reference (RFC 3986), kept as the text it was made from.
class ORVANE_EXPORT URL {
 public:
  /// Reads a URL. Absent for the empty text and for any text that RFC 3986 does not allow: blanks,
  /// characters outside ASCII, stray percent signs.
  [[nodiscard]] static std::optional<URL> parse(std::string_view text);

  /// The URL of a file or folder (RFC 8089). Absent when `path` is not absolute or not UTF-8.
  [[nodiscard]] static std::optional<URL> fromFilePath(std::string_view path);

  /// The whole URL.
  [[nodiscard]] const std::string& absoluteString() const noexcept { return text_; }

  /// The scheme in lower case; empty for a relative reference.
  [[nodiscard]] std::string scheme() const;
  /// The host, percent-decoded, an IPv6 address without its brackets; empty when there is none.
  [[nodiscard]] std::string host() const;
  /// True when there are a scheme and a host: a request needs both to be sent.
  [[nodiscard]] bool hasHost() const;
  /// The path as it stands, percent-encoded.
  [[nodiscard]] std::string path() const;
  /// The query as it stands, percent-encoded, without the question mark; absent when there is none.
  [[nodiscard]] std::optional<std::string> query() const;
  /// The path of the file or folder, percent-decoded; absent when it is not the URL of one on this
  /// machine.
  [[nodiscard]] std::optional<std::string> filePath() const;

  /// This URL with `component` below its path. Exactly one slash stands between the two; slashes
  /// inside the component separate segments, a trailing one is kept, dot segments stay as they are,
  /// and what a path may not contain ("?", "#", "%", blanks, non-ASCII) is percent-encoded. A query
  /// stays where it is. Absent when `component` is not UTF-8.
  [[nodiscard]] std::optional<URL> appendingPathComponent(std::string_view component) const;

  /// This URL with another query, or none. "&", "=", "+", "/" and "?" stay as they are; what a
  /// query may not contain, the percent sign included, is percent-encoded. Absent when `query` is
  /// not UTF-8, and when nothing but the former query was there and none takes its place.
  [[nodiscard]] std::optional<URL> settingQuery(std::optional<std::string_view> query) const;

  [[nodiscard]] HashValue hashValue() const { return hashOf(text_); }
  friend bool operator==(const URL&, const URL&) = default;

 private:
  explicit URL(std::string text) : text_(std::move(text)) {}

  std::string text_;
};

/// Prints the text.
template <TextStream Stream>
Stream& operator<<(Stream& stream, const URL& url) {
  stream << url.absoluteString();
  return stream;
}

}  // namespace orvane
