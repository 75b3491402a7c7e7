// SPDX-License-Identifier: Apache-2.0
//
// Reads one request off a connection, strictly: what two readers could understand differently is
// refused, since a proxy before the sandbox might be the other one (RFC 9112, section 11.2).
#pragma once

#include "http/Message.h"

#include <boost/beast/http/basic_parser.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orvane::sandbox {

class RequestParser : public boost::beast::http::basic_parser<true> {
 public:
  RequestParser();

  /// Reads on at the beginning of what has been received, and tells how much of that is done with:
  /// 0 when more is needed first. Throws a `Problem`, after which nobody knows where the next
  /// request begins.
  [[nodiscard]] std::size_t take(std::string_view received);

  /// Whether the client holds its body back until it is asked for it (RFC 9110, section 10.1.1).
  [[nodiscard]] bool awaitsContinue() const;
  [[nodiscard]] bool isVersion10() const { return version_ == 10; }

  /// What has been read. The names of headers are as sent, and in their order.
  Request request;

 private:
  using Error = boost::system::error_code;
  using Text = boost::beast::string_view;
  using Field = boost::beast::http::field;
  using Verb = boost::beast::http::verb;

  [[nodiscard]] bool holdsHead(std::string_view received);
  void checkHead() const;

  void on_request_impl(Verb, Text method, Text target, int version, Error&) override;
  void on_response_impl(int, Text, int, Error&) override {}
  void on_field_impl(Field, Text name, Text value, Error&) override;
  /// Asked for since Boost 1.90; before that trailers come as any other field.
  virtual void on_trailer_field_impl(Field, Text, Text, Error&) {}
  void on_header_impl(Error&) override {}
  void on_body_init_impl(const boost::optional<std::uint64_t>&, Error&) override {}
  std::size_t on_body_impl(Text piece, Error&) override;
  void on_chunk_header_impl(std::uint64_t, Text, Error&) override {}
  std::size_t on_chunk_body_impl(std::uint64_t, Text piece, Error&) override;
  void on_finish_impl(Error&) override {}

  std::size_t scanned_ = 0;
  int version_ = 11;
  std::size_t targetSize_ = 0;
};

}  // namespace orvane::sandbox
