// SPDX-License-Identifier: Apache-2.0
#include "http/Message.h"

#include "JsonWriter.h"

#include <algorithm>

namespace orvane::sandbox {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char letter = lower(c);
  return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

/// How many bytes the sequence has that a lead byte opens; 0 for a byte that can't lead.
std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

/// The second byte's range excludes overlong forms, surrogates and what lies beyond U+10FFFF.
bool isSecondByte(unsigned char lead, unsigned char byte) {
  if (lead == 0xE0) return byte >= 0xA0 && byte <= 0xBF;
  if (lead == 0xED) return byte >= 0x80 && byte <= 0x9F;
  if (lead == 0xF0) return byte >= 0x90 && byte <= 0xBF;
  if (lead == 0xF4) return byte >= 0x80 && byte <= 0x8F;
  return byte >= 0x80 && byte <= 0xBF;
}

}  // namespace

bool equalIgnoringCase(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, {}, lower, lower);
}

std::optional<std::string_view> findHeader(const HeaderList& headers, std::string_view name) {
  for (const auto& [key, value] : headers) {
    if (equalIgnoringCase(key, name)) return value;
  }
  return std::nullopt;
}

bool isUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const std::size_t length = sequenceLength(lead);
    if (length == 0 || length > text.size() - i) return false;
    if (length > 1 && !isSecondByte(lead, static_cast<unsigned char>(text[i + 1]))) return false;
    for (std::size_t k = 2; k < length; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) & 0xC0U) != 0x80U) return false;
    }
    i += length;
  }
  return true;
}

std::string percentDecode(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded.push_back(text[i]);
      continue;
    }
    const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
    const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
    if (high < 0 || low < 0) throw badRequest("a percent escape is incomplete");
    decoded.push_back(static_cast<char>(high * 16 + low));
    i += 2;
  }
  if (!isUtf8(decoded)) throw badRequest("the address holds bytes that are not UTF-8");
  return decoded;
}

Reply jsonReply(std::string body, int status) {
  Reply reply;
  reply.status = status;
  reply.body = std::move(body);
  return reply;
}

Reply errorReply(int status, std::string_view error, std::string_view message) {
  JsonWriter json;
  json.beginObject().member("error", error).member("message", message).endObject();
  Reply reply = jsonReply(json.take(), status);
  reply.reason = message;
  return reply;
}

Reply Problem::reply() const {
  Reply reply = errorReply(status_, error_, what());
  reply.headers = headers_;
  return reply;
}

}  // namespace orvane::sandbox
