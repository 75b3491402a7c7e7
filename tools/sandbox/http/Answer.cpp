// SPDX-License-Identifier: Apache-2.0
#include "http/Answer.h"

#include <boost/beast/http/status.hpp>
#include <zlib.h>

#include <array>
#include <charconv>
#include <ostream>
#include <stdexcept>

namespace orvane::sandbox {

namespace {

constexpr std::size_t smallestCompressed = 1024;

std::string gzip(const std::string& plain) {
  z_stream stream{};
  constexpr int gzipWindow = 15 + 16;
  if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("gzip can't be initialised");
  }
  std::string packed(deflateBound(&stream, plain.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(plain.data()));
  stream.avail_in = static_cast<uInt>(plain.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

std::string_view reasonOf(int status) {
  namespace http = boost::beast::http;
  const auto known = http::int_to_status(static_cast<unsigned>(status));
  if (known == http::status::unknown) return {};
  return http::obsolete_reason(known);
}

void addHeader(std::string& head, std::string_view name, std::string_view value) {
  head.append(name).append(": ").append(value).append("\r\n");
}

void addConnection(std::string& head, const AnswerForm& form, bool staysOpen) {
  if (!staysOpen) return addHeader(head, "Connection", "close");
  if (form.isVersion10) addHeader(head, "Connection", "keep-alive");
  addHeader(head, "Keep-Alive", "timeout=60");
}

std::string makeHead(const Reply& reply, const AnswerForm& form, bool staysOpen) {
  // These end with their head, and 204 tells no length (RFC 9110, sections 6.4.1 and 8.6).
  const bool isBare = reply.status == 204 || reply.status == 304;
  const bool isOpenEnded = reply.stream || reply.stay;
  std::string head = "HTTP/1.1 " + std::to_string(reply.status) + " ";
  head.reserve(512 + reply.body.size());
  head.append(reasonOf(reply.status)).append("\r\n");
  if (!isBare && !isOpenEnded) {
    addHeader(head, "Content-Length", std::to_string(reply.body.size()));
  }
  if (!isBare && (isOpenEnded || !reply.body.empty())) {
    addHeader(head, "Content-Type", reply.contentType);
  }
  if (isOpenEnded && !form.isVersion10) addHeader(head, "Transfer-Encoding", "chunked");
  for (const auto& [name, value] : reply.headers) addHeader(head, name, value);
  if (reply.sendDate) addHeader(head, "Date", form.date);
  addConnection(head, form, staysOpen);
  return head.append("\r\n");
}

}  // namespace

Answer makeAnswer(Reply reply, const AnswerForm& form) {
  using End = Answer::End;
  if (reply.drop) return {.end = End::abrupt};
  const bool isOpenEnded = reply.stream || reply.stay;
  if (form.mayPack && reply.compressible && !isOpenEnded &&
      reply.body.size() >= smallestCompressed) {
    reply.body = gzip(reply.body);
    reply.headers.emplace_back("Content-Encoding", "gzip");
  }
  const bool staysOpen = form.keepsOpen && !(isOpenEnded && form.isVersion10);
  Answer answer{.bytes = makeHead(reply, form, staysOpen),
                .isChunked = !form.isVersion10,
                .bytesPerSecond = reply.bytesPerSecond,
                .end = staysOpen ? End::none : End::goodbye};
  if (form.isHead || reply.status == 204 || reply.status == 304) return answer;
  answer.stream = std::move(reply.stream);
  answer.stay = std::move(reply.stay);
  if (isOpenEnded) return answer;
  const bool isCut = reply.cutAfterBytes && *reply.cutAfterBytes < reply.body.size();
  if (isCut) answer.end = End::abrupt;
  answer.bytes.append(reply.body, 0, isCut ? *reply.cutAfterBytes : reply.body.size());
  return answer;
}

std::string makeChunk(std::string_view piece) {
  std::array<char, 16> size{};
  const auto end = std::to_chars(size.data(), size.data() + size.size(), piece.size(), 16).ptr;
  std::string chunk(size.data(), end);
  chunk.reserve(chunk.size() + piece.size() + 4);
  return chunk.append("\r\n").append(piece).append("\r\n");
}

}  // namespace orvane::sandbox
