// SPDX-License-Identifier: Apache-2.0
#include "RequestLog.h"

#include "JsonWriter.h"

#include <algorithm>

namespace orvane::sandbox {

namespace {

constexpr std::size_t shownRequests = 512;
constexpr std::size_t shownBody = 16'384;

/// What a JSON answer can carry.
std::string_view readable(std::string_view text) { return isUtf8(text) ? text : "<not UTF-8>"; }

std::string_view safeValue(std::string_view name, std::string_view value) {
  if (!equalIgnoringCase(name, "Authorization")) return readable(value);
  return value.starts_with("Bearer ") ? "Bearer <hidden>" : "<hidden>";
}

std::size_t sizeOf(const HeaderList& headers) {
  std::size_t size = 0;
  for (const auto& [name, value] : headers) {
    size += sizeof(HeaderList::value_type) + name.size() + value.size();
  }
  return size;
}

std::size_t sizeOf(const LoggedRequest& request) {
  return sizeof request + request.method.size() + request.path.size() + request.query.size() +
         request.reason.size() + request.user.size() + request.fault.size() +
         sizeOf(request.requestHeaders) + sizeOf(request.responseHeaders);
}

std::size_t sizeOf(const LoggedBodies& bodies) {
  return sizeof bodies + bodies.request.size() + bodies.response.size();
}

HeaderList headersOf(const Reply& reply) {
  HeaderList headers;
  headers.reserve(reply.headers.size() + 1);
  if (!reply.body.empty() || reply.stream) headers.emplace_back("Content-Type", reply.contentType);
  headers.insert(headers.end(), reply.headers.begin(), reply.headers.end());
  return headers;
}

}  // namespace

std::string_view beginningOf(std::string_view text, std::size_t size) {
  if (text.size() <= size) return text;
  constexpr unsigned continuation = 0x80;
  constexpr unsigned leadBits = 0xC0;
  const auto continues = [&](std::size_t at) {
    return (static_cast<unsigned char>(text[at]) & leadBits) == continuation;
  };
  for (int steps = 0; steps < 3 && size > 0 && continues(size); ++steps) --size;
  return text.substr(0, size);
}

void RequestLog::add(const Request& request, const Reply& reply, const Trace& trace,
                     Milliseconds time, Duration duration) {
  const auto entry =
      std::make_shared<LoggedRequest>(LoggedRequest{.time = time,
                                                    .duration = duration.count(),
                                                    .method = request.method,
                                                    .path = request.path,
                                                    .query = request.query,
                                                    .requestHeaders = request.headers,
                                                    .requestSize = request.body.size(),
                                                    .status = reply.drop ? 0 : reply.status,
                                                    .responseHeaders = headersOf(reply),
                                                    .responseSize = reply.body.size(),
                                                    .reason = reply.reason,
                                                    .user = trace.user,
                                                    .fault = trace.fault});
  auto bodies = std::make_shared<const LoggedBodies>(
      LoggedBodies{.request = std::string{beginningOf(request.body, longestBody)},
                   .response = std::string{beginningOf(reply.body, longestBody)}});
  const std::lock_guard lock{mutex_};
  entry->id = ++lastId_;
  requestBytes_ += sizeOf(*entry);
  bodyBytes_ += sizeOf(*bodies);
  entries_.push_back({entry, std::move(bodies)});
  shrink();
  if (observer_) observer_(entry);
}

void RequestLog::shrink() {
  // Bodies go first, but the requests themselves never take the room of the latest bodies.
  while (entries_.size() > limits_.requests || requestBytes_ > limits_.bytes / 2) {
    const Kept& oldest = entries_.front();
    requestBytes_ -= sizeOf(*oldest.request);
    if (oldest.bodies) bodyBytes_ -= sizeOf(*oldest.bodies);
    withoutBodies_ -= std::min<std::size_t>(withoutBodies_, 1);
    entries_.pop_front();
    ++dropped_;
  }
  while (requestBytes_ + bodyBytes_ > limits_.bytes && withoutBodies_ < entries_.size()) {
    auto& bodies = entries_[withoutBodies_++].bodies;
    bodyBytes_ -= sizeOf(*bodies);
    bodies.reset();
  }
}

void RequestLog::clear() {
  const std::lock_guard lock{mutex_};
  entries_.clear();
  requestBytes_ = 0;
  bodyBytes_ = 0;
  withoutBodies_ = 0;
  dropped_ = 0;
}

RequestLog::Newest RequestLog::newest(std::size_t count) const {
  Newest newest;
  const std::lock_guard lock{mutex_};
  newest.dropped = dropped_;
  const std::size_t first = entries_.size() - std::min(count, entries_.size());
  newest.requests.reserve(entries_.size() - first);
  for (std::size_t i = first; i < entries_.size(); ++i) {
    newest.requests.push_back(entries_[i].request);
  }
  return newest;
}

std::optional<RequestLog::Kept> RequestLog::find(std::int64_t id) const {
  const std::lock_guard lock{mutex_};
  if (entries_.empty() || id < entries_.front().request->id || id > lastId_) return std::nullopt;
  return entries_[static_cast<std::size_t>(id - entries_.front().request->id)];
}

std::string RequestLog::json(bool withBodies) const {
  std::vector<Kept> shown;
  {
    const std::lock_guard lock{mutex_};
    const auto count = static_cast<std::ptrdiff_t>(std::min(entries_.size(), shownRequests));
    shown.assign(entries_.end() - count, entries_.end());
  }
  JsonWriter json;
  json.beginArray();
  for (const auto& [entry, bodies] : shown) {
    json.beginObject()
        .member("time", formatTime(entry->time))
        .member("durationMs", entry->duration)
        .member("method", readable(entry->method))
        .member("path", readable(entry->path))
        .member("query", readable(entry->query))
        .member("status", entry->status)
        .member("bodySize", entry->requestSize)
        .member("answerSize", entry->responseSize);
    if (!entry->reason.empty()) json.member("reason", readable(entry->reason));
    if (withBodies && bodies) {
      json.member("body", readable(beginningOf(bodies->request, shownBody)))
          .member("answer", readable(beginningOf(bodies->response, shownBody)));
    }
    json.key("headers").beginArray();
    for (const auto& [name, value] : entry->requestHeaders) {
      json.beginObject()
          .member("name", readable(name))
          .member("value", safeValue(name, value))
          .endObject();
    }
    json.endArray().endObject();
  }
  return json.endArray().take();
}

}  // namespace orvane::sandbox
