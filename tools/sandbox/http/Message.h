// SPDX-License-Identifier: Apache-2.0
//
// A request as the resources see it, the reply they give, and the refusal they throw.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::sandbox {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

/// The value of the first header of that name, whatever its case.
[[nodiscard]] std::optional<std::string_view> findHeader(const HeaderList& headers,
                                                         std::string_view name);

[[nodiscard]] bool equalIgnoringCase(std::string_view left, std::string_view right);

struct Request {
  std::string method;
  std::string path;   // as sent, percent-encoded, without the query
  std::string query;  // as sent, without the question mark
  HeaderList headers;
  std::string body;

  [[nodiscard]] std::optional<std::string_view> header(std::string_view name) const {
    return findHeader(headers, name);
  }
};

/// Hands out the next piece of a streamed body; an empty piece ends it. Must not wait.
using BodyStream = std::function<std::string_view()>;

/// Someone who stays for what happens: the far end of server-sent events (WHATWG HTML,
/// section 9.2). May be kept, and asked, for longer than the connection and the listener last.
class Viewer {
 public:
  Viewer() = default;
  virtual ~Viewer() = default;
  Viewer(const Viewer&) = delete;
  Viewer& operator=(const Viewer&) = delete;

  /// Hands on text as it is; never waits. Any thread. A viewer for which more than 1 MiB waits
  /// already is let go of.
  virtual void send(std::string text) = 0;
  /// True while some of what it was sent waits for the connection. Whoever has much to say, and can
  /// say it later, waits for that. Any thread.
  [[nodiscard]] virtual bool isBehind() const = 0;
  /// True once nobody is there any more. Any thread.
  [[nodiscard]] virtual bool isGone() const = 0;
};

struct Reply {
  int status = 200;
  std::string contentType = "application/json";
  std::string body;
  HeaderList headers;
  BodyStream stream;  // when set, sent chunked instead of the body
  /// When set, sent headers are followed by what the viewer is sent; the connection lasts until the
  /// viewer leaves or the sandbox stops. Called on one of the threads that requests are answered
  /// on.
  std::function<void(std::shared_ptr<Viewer>)> stay;
  std::optional<std::size_t> cutAfterBytes;  // of the body, whose full length was announced
  std::size_t bytesPerSecond = 0;            // the whole answer no faster than that; 0: at once
  std::string reason;                        // of a refusal, for who looks at the log
  bool drop = false;                         // close the connection without a word
  bool sendDate = true;
  bool compressible = true;
};

/// A refusal: the status and the members "error" and "message" of the answer.
class Problem : public std::runtime_error {
 public:
  Problem(int status, std::string error, const std::string& message, HeaderList headers = {})
      : std::runtime_error(message),
        status_(status),
        error_(std::move(error)),
        headers_(std::move(headers)) {}

  [[nodiscard]] int status() const { return status_; }
  [[nodiscard]] Reply reply() const;

 private:
  int status_;
  std::string error_;
  HeaderList headers_;
};

[[nodiscard]] Reply jsonReply(std::string body, int status = 200);
[[nodiscard]] Reply errorReply(int status, std::string_view error, std::string_view message);

[[nodiscard]] inline Problem badRequest(const std::string& message) {
  return {400, "bad_request", message};
}
[[nodiscard]] inline Problem forbidden(const std::string& message) {
  return {403, "forbidden", message};
}
[[nodiscard]] inline Problem notFound(const std::string& message) {
  return {404, "not_found", message};
}
[[nodiscard]] inline Problem conflict(const std::string& message) {
  return {409, "conflict", message};
}

/// Decodes percent escapes and nothing else: "+" stays a plus (RFC 3986). Throws a 400 for a broken
/// escape and for bytes that are not UTF-8.
[[nodiscard]] std::string percentDecode(std::string_view text);

[[nodiscard]] bool isUtf8(std::string_view text);

}  // namespace orvane::sandbox
