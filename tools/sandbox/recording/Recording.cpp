// SPDX-License-Identifier: Apache-2.0
#include "recording/Recording.h"

#include "JsonWriter.h"
#include "recording/StandIns.h"
#include "security/Tokens.h"

#include <algorithm>
#include <array>

namespace orvane::sandbox {

namespace {

/// Of the connection, not of the exchange, or written anew when it is replayed.
bool isLeftOut(std::string_view name) {
  constexpr auto names = std::to_array<std::string_view>(
      {"Connection", "Content-Length", "Transfer-Encoding", "Keep-Alive", "Date", "Vary"});
  constexpr std::string_view crossOrigin = "Access-Control-";
  return std::ranges::any_of(
             names, [&](std::string_view each) { return equalIgnoringCase(each, name); }) ||
         equalIgnoringCase(name.substr(0, crossOrigin.size()), crossOrigin);
}

std::string safeHeader(std::string_view name, std::string_view value, StandIns& standIns) {
  constexpr std::string_view bearer = "Bearer ";
  if (equalIgnoringCase(name, "Authorization")) {
    if (!value.starts_with(bearer)) return standIns.forToken(value);
    return std::string{bearer} + standIns.forToken(value.substr(bearer.size()));
  }
  if (equalIgnoringCase(name, "Cookie") || equalIgnoringCase(name, "Set-Cookie") ||
      equalIgnoringCase(name, "X-Sandbox-Admin-Key")) {
    return standIns.forToken(value);
  }
  return standIns.in(value);
}

/// Writes texts as the file has them.
class Writer {
 public:
  Writer(JsonWriter& json, StandIns* standIns) : json_(json), standIns_(standIns) {}

  void query(std::string_view query) {
    json_.member("query", standIns_ != nullptr ? standIns_->inQuery(query) : std::string{query});
  }

  void headers(std::string_view name, const HeaderList& headers) {
    json_.key(name).beginArray();
    for (const auto& [header, value] : headers) {
      if (isLeftOut(header) || !isUtf8(header) || !isUtf8(value)) continue;
      json_.beginArray()
          .value(header)
          .value(standIns_ != nullptr ? safeHeader(header, value, *standIns_) : value)
          .endArray();
    }
    json_.endArray();
  }

  void body(std::string_view name, std::string_view body) {
    if (!isUtf8(body)) {
      json_.member(std::string{name} + "Base64url", base64url(body));
    } else {
      json_.member(name, standIns_ != nullptr ? standIns_->in(body) : std::string{body});
    }
  }

 private:
  JsonWriter& json_;
  StandIns* standIns_;  // null: with secrets
};

std::size_t sizeOf(const HeaderList& headers) {
  std::size_t size = 0;
  for (const auto& [name, value] : headers) size += name.size() + value.size() + 64;
  return size;
}

}  // namespace

void Recording::start(bool withSecrets) {
  const std::lock_guard lock{mutex_};
  state_ = {.isOn = true};
  withSecrets_ = withSecrets;
  since_ = ServerClock::machineTime();
  bytes_ = 0;
  exchanges_.clear();
}

void Recording::stop() {
  const std::lock_guard lock{mutex_};
  state_.isOn = false;
}

Recording::State Recording::state() const {
  const std::lock_guard lock{mutex_};
  return state_;
}

bool Recording::add(const Request& request, const Reply& reply, Duration duration) {
  const std::lock_guard lock{mutex_};
  if (!state_.isOn) return false;
  bytes_ += request.path.size() + request.query.size() + request.body.size() + reply.body.size() +
            sizeOf(request.headers) + sizeOf(reply.headers) + sizeof(Exchange);
  if (bytes_ > mostBytes) {
    state_.isOn = false;
    state_.isFull = true;
    return true;
  }
  HeaderList headers = reply.headers;
  if (!reply.body.empty()) headers.emplace(headers.begin(), "Content-Type", reply.contentType);
  exchanges_.push_back({.request = request,
                        .status = reply.drop ? 0 : reply.status,
                        .headers = std::move(headers),
                        .body = reply.body,
                        .cutAfterBytes = reply.cutAfterBytes,
                        .milliseconds = duration.count()});
  state_.count = exchanges_.size();
  return true;
}

std::string Recording::file() const {
  StandIns standIns;
  JsonWriter json;
  const std::lock_guard lock{mutex_};
  Writer writer{json, withSecrets_ ? nullptr : &standIns};
  json.beginObject()
      .member("version", version)
      .member("when", formatTime(since_))
      .member("withSecrets", withSecrets_)
      .key("requests")
      .beginArray();
  for (const Exchange& exchange : exchanges_) {
    json.beginObject().member("method",
                              isUtf8(exchange.request.method) ? exchange.request.method : "?");
    writer.body("path", exchange.request.path);
    writer.query(isUtf8(exchange.request.query) ? exchange.request.query : "");
    writer.headers("headers", exchange.request.headers);
    writer.body("body", exchange.request.body);
    json.member("status", exchange.status);
    writer.headers("responseHeaders", exchange.headers);
    writer.body("responseBody", exchange.body);
    if (exchange.cutAfterBytes) json.member("cutAfterBytes", *exchange.cutAfterBytes);
    json.member("duration", exchange.milliseconds).endObject();
  }
  return json.endArray().endObject().take();
}

}  // namespace orvane::sandbox
