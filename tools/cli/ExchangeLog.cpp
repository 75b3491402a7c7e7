// SPDX-License-Identifier: Apache-2.0
#include "ExchangeLog.h"

#include "Arguments.h"
#include "Text.h"

#include <algorithm>
#include <cstdio>

namespace orvane::cli {
namespace {

constexpr const char* blanked = "…";

std::string headerLine(const std::string& name, const std::string& value) {
  constexpr std::string_view secrets[] = {"authorization", "proxy-authorization", "cookie",
                                          "set-cookie"};
  const auto isIt = [&](std::string_view secret) { return sameChoice(secret, name); };
  if (std::ranges::any_of(secrets, isIt)) return name + ": " + blanked;
  const bool isURL = sameChoice(name, "location") || sameChoice(name, "content-location");
  return name + ": " + (isURL ? withoutValues(value) : value);
}

// In one piece: the exchanges of several requests do not mix.
void show(const Exchange& exchange, bool withBodies) {
  std::string text;
  const auto add = [&](const char* mark, const std::string& line) {
    text.append(mark).append(visible(line)).append("\n");
  };
  const auto addBody = [&](const char* mark, const std::string& body, std::size_t size) {
    if (withBodies && !body.empty()) {
      std::string_view rest = body;
      while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        // The line ends of forms.
        const bool isReturn = end > 0 && rest[end - 1] == '\r';
        add(mark, std::string(rest.substr(0, isReturn ? end - 1 : end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
      }
    } else {
      add(mark, std::to_string(size) + " bytes");
    }
  };
  add("> ", std::string(wireText(exchange.verb)) + " " + withoutValues(exchange.url));
  for (const auto& [name, value] : exchange.requestHeaders) add("> ", headerLine(name, value));
  if (exchange.requestSize > 0) addBody("> ", exchange.requestBody, exchange.requestSize);
  const std::string duration = decimal(exchange.duration.count() * 1000.0, 1) + " ms";
  if (exchange.statusCode) {
    add("< ", std::to_string(*exchange.statusCode) + ", " + duration);
    for (const auto& [name, value] : exchange.responseHeaders) add("< ", headerLine(name, value));
    addBody("< ", exchange.responseBody, exchange.responseSize);
  }
  if (!exchange.statusCode && exchange.error) {
    add("< ", exchange.error->message() + ", " + duration);
  }
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace

void ExchangeLog::note(const Exchange& exchange) {
  if (shown_ != Shown::nothing) show(exchange, shown_ == Shown::bodies);
  const std::scoped_lock lock(mutex_);
  exchanges_.push_back(exchange);
}

std::vector<Exchange> ExchangeLog::exchanges() const {
  const std::scoped_lock lock(mutex_);
  return exchanges_;
}

std::vector<std::string> ExchangeLog::answers() const {
  std::vector<std::string> bodies;
  for (Exchange& exchange : exchanges()) {
    const bool isLookup = exchange.url.ends_with("/kavra/api/sdk/identity");
    if (!exchange.error && !isLookup) bodies.push_back(std::move(exchange.responseBody));
  }
  return bodies;
}

std::string ExchangeLog::lastAnswer() const {
  const std::scoped_lock lock(mutex_);
  return exchanges_.empty() ? std::string() : exchanges_.back().responseBody;
}

std::string ExchangeLog::lastRequest() const {
  const std::scoped_lock lock(mutex_);
  if (exchanges_.empty()) return {};
  const Exchange& last = exchanges_.back();
  return std::string(wireText(last.verb)) + " " + withoutValues(last.url);
}

std::string withoutValues(std::string_view url) {
  url = url.substr(0, url.find('#'));
  const std::size_t query = std::min(url.find('?'), url.size());
  std::string text(url.substr(0, query));
  for (std::string_view rest = url.substr(query); !rest.empty();) {
    // With the mark before it.
    const std::string_view item = rest.substr(0, rest.find('&', 1));
    // What has no name may be a value.
    const std::size_t equals = item.find('=');
    text.append(item.substr(0, equals == std::string_view::npos ? 1 : equals + 1)).append(blanked);
    rest.remove_prefix(item.size());
  }
  return text;
}

}  // namespace orvane::cli
