// SPDX-License-Identifier: Apache-2.0
//
// A reply as it goes over the wire (RFC 9112).
#pragma once

#include "http/Message.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace orvane::sandbox {

/// What a reply's form depends on besides itself.
struct AnswerForm {
  bool isHead = false;       // headers alone were asked for
  bool isVersion10 = false;  // the client knows no chunks
  bool keepsOpen = false;    // the client's wish, and there is room
  bool mayPack = false;      // the client takes gzip
  std::string date = {};
};

struct Answer {
  /// What becomes of the connection.
  enum class End {
    none,     // it stays open
    goodbye,  // it ends in order
    drain,    // so it does, once what the peer is still sending is swallowed
    abrupt    // it ends with nothing more said
  };
  std::string bytes = {};  // head and body, or as much of them as is to be sent
  BodyStream stream = {};  // what follows of the body
  std::function<void(std::shared_ptr<Viewer>)> stay = {};
  bool isChunked = false;          // what follows goes in chunks
  std::size_t bytesPerSecond = 0;  // 0: at once
  End end = End::goodbye;
};

[[nodiscard]] Answer makeAnswer(Reply reply, const AnswerForm& form);

[[nodiscard]] std::string makeChunk(std::string_view piece);
inline constexpr std::string_view lastChunk = "0\r\n\r\n";

}  // namespace orvane::sandbox
