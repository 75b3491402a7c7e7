// SPDX-License-Identifier: Apache-2.0
#include "http/RequestParser.h"

#include <boost/beast/http/error.hpp>

#include <algorithm>
#include <string>

namespace orvane::sandbox {

namespace {

namespace http = boost::beast::http;

constexpr std::size_t longestTarget = 8192;
constexpr std::size_t longestHead = 65'536;  // of a request or a chunk, and with trailers
constexpr std::uint64_t largestBody = 1 << 20;

Problem unreadable(const std::string& why) {
  return badRequest("the request can't be read: " + why);
}

Problem targetTooLong() { return {414, "uri_too_long", "the address is too long"}; }

Problem headTooLarge(std::string_view received) {
  const bool isFirstLine = received.substr(0, longestHead).find('\n') == std::string_view::npos;
  if (isFirstLine) return targetTooLong();
  return {431, "request_header_fields_too_large", "the headers are too large"};
}

Problem problemFor(const boost::system::error_code& error) {
  if (error != http::error::body_limit) return unreadable(error.message());
  return {413, "content_too_large", "the body is too large"};
}

bool hasBody(const Request& request) {
  return request.method == "POST" || request.method == "PUT" || request.method == "DELETE";
}

std::ptrdiff_t countHeaders(const Request& request, std::string_view name) {
  return std::ranges::count_if(request.headers, [name](const auto& header) {
    return equalIgnoringCase(header.first, name);
  });
}

}  // namespace

RequestParser::RequestParser() {
  header_limit(longestHead);
  body_limit(largestBody);
}

std::size_t RequestParser::take(std::string_view received) {
  const bool isHead = !is_header_done();
  if (isHead && !holdsHead(received)) return 0;
  Error error;
  const std::size_t used = put({received.data(), received.size()}, error);
  if (error && error != http::error::need_more) throw problemFor(error);
  if (isHead) checkHead();
  if (used == 0 && received.size() > longestHead) throw unreadable("a chunk's head is too large");
  return used;
}

/// The library would wait for the end of a head whose lines end otherwise, and unfold lines.
bool RequestParser::holdsHead(std::string_view received) {
  constexpr std::string_view end = "\r\n\r\n";
  for (; (scanned_ = received.find('\n', scanned_)) != std::string_view::npos; ++scanned_) {
    const std::string_view head = received.substr(0, scanned_ + 1);
    if (!head.ends_with("\r\n")) throw unreadable("a line ends without a carriage return");
    if (head.size() > longestHead) throw headTooLarge(received);
    if (!head.ends_with(end)) continue;
    const bool isFolded =
        head.find("\n ") != std::string_view::npos || head.find("\n\t") != std::string_view::npos;
    if (isFolded) throw unreadable("a header is folded");
    return true;
  }
  scanned_ = received.size();
  if (received.size() > longestHead) throw headTooLarge(received);
  return false;
}

void RequestParser::checkHead() const {
  if (targetSize_ > longestTarget) throw targetTooLong();
  const auto hosts = countHeaders(request, "Host");
  if (hosts > 1 || (hosts == 0 && !isVersion10())) {
    throw unreadable("there is not exactly one Host");  // RFC 9112, section 3.2
  }
  if (countHeaders(request, "Content-Length") > 1 ||
      request.header("Content-Length").value_or("").find(',') != std::string_view::npos) {
    throw unreadable("there is more than one Content-Length");
  }
  const auto coding = request.header("Transfer-Encoding");
  if (!coding) return;
  if (!chunked() || isVersion10()) throw unreadable("nothing tells where the body ends");
  if (!equalIgnoringCase(*coding, "chunked")) {
    throw Problem{501, "not_implemented", "there is no transfer coding but \"chunked\" here"};
  }
}

bool RequestParser::awaitsContinue() const {
  return !is_done() && !isVersion10() &&
         equalIgnoringCase(request.header("Expect").value_or(""), "100-continue");
}

void RequestParser::on_request_impl(Verb, Text method, Text target, int version, Error&) {
  version_ = version;
  targetSize_ = target.size();
  const std::string_view all = target;
  const auto questionMark = all.find('?');
  request.method = method;
  request.path = all.substr(0, questionMark);
  if (questionMark != std::string_view::npos) request.query = all.substr(questionMark + 1);
}

void RequestParser::on_field_impl(Field, Text name, Text value, Error&) {
  // Those after a body have passed no check.
  if (!is_header_done()) request.headers.emplace_back(name, value);
}

/// Other methods give a body no meaning (RFC 9110, section 9.3): it is read and forgotten.
std::size_t RequestParser::on_body_impl(Text piece, Error&) {
  if (hasBody(request)) request.body.append(piece.data(), piece.size());
  return piece.size();
}

std::size_t RequestParser::on_chunk_body_impl(std::uint64_t, Text piece, Error& error) {
  return on_body_impl(piece, error);
}

}  // namespace orvane::sandbox
