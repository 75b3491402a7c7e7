// SPDX-License-Identifier: Apache-2.0
// Any bytes as an answer, as far as it is read here and not by libcurl: status line and headers,
// the values of those that are looked into, the compression of the body, and the words of a
// refusal.
#include "fuzz/Bytes.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Runtime/AnswerHead.h>
#include <Orvane/Runtime/ContentDecoder.h>
#include <Orvane/Runtime/ContentRange.h>
#include <Orvane/Runtime/HTTPDate.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

using namespace orvane;

constexpr std::size_t longestBody = std::size_t{1} << 20U;

// The preferred form of RFC 9110, section 5.6.7.
std::string dateText(Date date) {
  static constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const std::chrono::sys_seconds moment{
      std::chrono::seconds(static_cast<std::int64_t>(secondsSince1970(date)))};
  const auto midnight = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day day(midnight);
  const std::chrono::hh_mm_ss time(moment - midnight);
  char text[64];
  std::snprintf(text, sizeof text, "Mon, %02u %s %04d %02d:%02d:%02d GMT", unsigned{day.day()},
                months.at(unsigned{day.month()} - 1), int{day.year()},
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text;
}

void readValue(std::string_view value) {
  const Date now = dateFromSeconds(1'700'000'000);
  if (const auto date = dateFromHTTP(value, now)) {
    // A leap second may lead past the last year that the text has room for.
    const bool isWritable = secondsSince1970(*date) < 253'402'300'800;
    require(!isWritable || dateFromHTTP(dateText(*date), now) == date);
  }
  const auto pause = pauseFromHTTP(value, now);
  require(!pause || (pause->count() >= 0 && pause->count() <= 31'536'000));
  const auto range = contentRange(value);
  require(!range || (range->first >= 0 && range->total >= 0));
}

AnswerHead readHead(std::string_view& text) {
  AnswerHead head;
  while (!text.empty() && !head.isComplete()) {
    std::string_view line = takeUntil(text, '\n');
    if (const std::size_t colon = line.find(": "); colon != std::string_view::npos) {
      readValue(line.substr(colon + 2));
    }
    if (!head.take(std::string(line) + '\n')) break;
  }
  require(head.status() >= 0 && head.status() <= 999);
  require(!head.length() || *head.length() >= 0);
  require(!head.isComplete() || head.status() >= 200);
  return head;
}

struct Body {
  std::string text;
  ContentDecoder::Outcome outcome = ContentDecoder::Outcome::ok;
  bool isWhole = false;

  friend bool operator==(const Body&, const Body&) = default;
};

// The body, coming in pieces of some size.
Body decoded(const std::string& coding, std::string_view bytes, std::size_t pieceSize) {
  Body body;
  const auto decoder = ContentDecoder::make(coding);
  if (!decoder) return body;
  while (!bytes.empty() && body.outcome == ContentDecoder::Outcome::ok) {
    body.outcome =
        decoder->decode(bytes.substr(0, pieceSize), [&body](const char* piece, std::size_t count) {
          body.text.append(piece, count);
          return body.text.size() <= longestBody;
        });
    bytes.remove_prefix(std::min(pieceSize, bytes.size()));
  }
  body.isWhole = decoder->isWhole();
  return body;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest = textOf(data, size);
  const AnswerHead head = readHead(rest);
  if (!head.isComplete()) return 0;

  const Body body = decoded(head.coding(), rest, rest.size());
  if (body.outcome == ContentDecoder::Outcome::ok) {
    require(decoded(head.coding(), rest, 7) == body);
  }
  for (const std::string_view text : {rest, std::string_view(body.text)}) {
    const std::string reason = reasonIn(text);
    require(isUTF8(reason) && reason.size() <= std::size_t{4} * 500 &&
            reason.find('\n') == std::string::npos);
  }
  return 0;
}
