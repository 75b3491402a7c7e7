// SPDX-License-Identifier: Apache-2.0
#include "Trace.h"

#include "Text.h"

#include <cstdio>

namespace orvane::cli {

void traceExchange(const Exchange& exchange) {
  std::string text;
  const auto add = [&](const char* mark, const std::string& line) {
    text.append(mark).append(visible(line)).append("\n");
  };
  add("> ", std::string(wireText(exchange.verb)) + " " + exchange.url);
  for (const auto& [name, value] : exchange.requestHeaders) add("> ", name + ": " + value);
  if (exchange.requestSize > 0) add("> ", std::to_string(exchange.requestSize) + " bytes");
  const std::string duration = decimal(exchange.duration.count() * 1000.0, 1) + " ms";
  if (exchange.statusCode) {
    add("< ", std::to_string(*exchange.statusCode) + ", " + duration);
    for (const auto& [name, value] : exchange.responseHeaders) add("< ", name + ": " + value);
    add("< ", std::to_string(exchange.responseSize) + " bytes");
  }
  if (!exchange.statusCode && exchange.error) {
    add("< ", exchange.error->message() + ", " + duration);
  }
  // In one piece: the exchanges of several requests do not mix.
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace orvane::cli
