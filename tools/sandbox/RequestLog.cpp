// SPDX-License-Identifier: Apache-2.0
#include "RequestLog.h"

#include "JsonWriter.h"

namespace orvane::sandbox {

namespace {

/// What a JSON answer can carry.
std::string_view readable(std::string_view text) { return isUtf8(text) ? text : "<not UTF-8>"; }

std::string_view safeValue(std::string_view name, std::string_view value) {
  if (!equalIgnoringCase(name, "Authorization")) return readable(value);
  return value.starts_with("Bearer ") ? "Bearer <hidden>" : "<hidden>";
}

}  // namespace

void RequestLog::add(const Request& request, const Reply& reply, Milliseconds time,
                     Duration duration) {
  Entry entry{.method = request.method,
              .path = request.path,
              .query = request.query,
              .headers = request.headers,
              .bodySize = request.body.size(),
              .body = request.body.substr(0, longestBody),
              .status = reply.drop ? 0 : reply.status,
              .answerSize = reply.body.size(),
              .answer = reply.body.substr(0, longestBody),
              .reason = reply.reason,
              .time = time,
              .duration = duration};
  const std::lock_guard lock{mutex_};
  if (entries_.size() == capacity) entries_.pop_front();
  entries_.push_back(std::move(entry));
}

void RequestLog::clear() {
  const std::lock_guard lock{mutex_};
  entries_.clear();
}

std::string RequestLog::json(bool withBodies) const {
  JsonWriter json;
  json.beginArray();
  const std::lock_guard lock{mutex_};
  for (const Entry& entry : entries_) {
    json.beginObject()
        .member("time", formatTime(entry.time))
        .member("durationMs", entry.duration.count())
        .member("method", entry.method)
        .member("path", readable(entry.path))
        .member("query", readable(entry.query))
        .member("status", entry.status)
        .member("bodySize", entry.bodySize)
        .member("answerSize", entry.answerSize);
    if (!entry.reason.empty()) json.member("reason", readable(entry.reason));
    if (withBodies) {
      json.member("body", readable(entry.body)).member("answer", readable(entry.answer));
    }
    json.key("headers").beginArray();
    for (const auto& [name, value] : entry.headers) {
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
