// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/AnswerHead.h>
#include <Orvane/Runtime/OutgoingRequest.h>

#include <algorithm>
#include <charconv>

namespace orvane {
namespace {

// Far beyond what honest servers send, and below libcurl's own limits, whose errors say less.
constexpr std::size_t longestLine = std::size_t{64} << 10U;
constexpr std::size_t mostBytes = std::size_t{256} << 10U;
constexpr std::size_t mostLines = 1000;

std::string_view trimmed(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  });
  return lower;
}

}  // namespace

bool AnswerHead::take(std::string_view line) {
  checkSize(line.size());
  if (problem_) return false;
  if (isComplete_) return true;
  const std::string_view content = trimmed(line);
  if (content.starts_with("HTTP/")) {
    takeStatusLine(content);
  } else if (content.empty()) {
    isComplete_ = status_ >= 200;
    if (isComplete_ && isSuccess() && hasBadLength_ && !isChunked_) {
      fail(TransportError::Kind::protocol, "its length is no number, or two that differ");
    }
  } else if (const std::size_t colon = content.find(':'); colon != std::string_view::npos) {
    takeHeader(content.substr(0, colon), trimmed(content.substr(colon + 1)));
  }
  return !problem_;
}

void AnswerHead::takeStatusLine(std::string_view line) {
  isMultiplexed_ = line.starts_with("HTTP/2") || line.starts_with("HTTP/3");
  isChunked_ = false;
  hasBadLength_ = false;
  length_.reset();
  coding_.clear();
  unsigned status = 0;  // unsigned: a sign is no digit
  const std::string_view digits =
      line.substr(std::min(line.find(' '), line.size() - 1) + 1).substr(0, 3);
  std::from_chars(digits.data(), digits.data() + digits.size(), status);
  status_ = static_cast<int>(status);
}

void AnswerHead::takeHeader(std::string_view name, std::string_view value) {
  if (isHeader(name, "content-length")) return takeLength(value);
  if (isHeader(name, "transfer-encoding")) isChunked_ = lowerCase(value).ends_with("chunked");
  if (isHeader(name, "content-encoding")) {
    if (!coding_.empty()) coding_ += ", ";
    if (!isHeader(value, "identity")) coding_ += lowerCase(value);
  }
}

// RFC 9110, section 8.6: where lengths differ, none can be relied on.
void AnswerHead::takeLength(std::string_view value) {
  std::int64_t length = 0;
  const char* end = value.data() + value.size();
  const auto [rest, failure] = std::from_chars(value.data(), end, length);
  const bool isNumber = failure == std::errc() && rest == end && value.front() != '-';
  if (!isNumber || (length_ && *length_ != length)) hasBadLength_ = true;
  if (isNumber) length_ = length;
}

void AnswerHead::checkSize(std::size_t lineSize) {
  ++lineCount_;
  size_ += lineSize;
  if (lineSize > longestLine) {
    fail(TransportError::Kind::tooLarge, "a header of more than 65536 bytes");
  } else if (lineCount_ > mostLines || size_ > mostBytes) {
    fail(TransportError::Kind::protocol, "its headers do not end");
  }
}

void AnswerHead::fail(TransportError::Kind kind, const char* details) {
  if (!problem_) problem_ = TransportError(kind, details);
}

}  // namespace orvane
