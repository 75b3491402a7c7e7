// SPDX-License-Identifier: Apache-2.0
//
// Requests of the log: in a line, whole, and as commands that make them again.
#include "data/People.h"
#include "http/Multipart.h"
#include "inspector/Views.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace orvane::sandbox {

namespace {

/// The names that people had when the data was laid.
const std::map<std::string_view, std::string>& names() {
  static const auto names = [] {
    std::map<std::string_view, std::string> map;
    for (const Person& person : people()) {
      map.emplace(person.userId, std::string{person.firstName} + " " + person.lastName);
    }
    return map;
  }();
  return names;
}

/// Beginning and end of a secret, where enough of it remains unknown.
std::string shortened(std::string_view secret) {
  constexpr std::size_t shortest = 16;
  constexpr std::size_t beginning = 9;
  constexpr std::size_t end = 2;
  if (secret.size() < shortest) return "…";
  return std::string{secret.substr(0, beginning)} + "…" +
         std::string{secret.substr(secret.size() - end)};
}

std::string safeValue(std::string_view name, std::string_view value) {
  constexpr std::string_view bearer = "Bearer ";
  if (equalIgnoringCase(name, "Cookie") || equalIgnoringCase(name, "X-Sandbox-Admin-Key")) {
    return "…";
  }
  if (!equalIgnoringCase(name, "Authorization")) return asUtf8(value);
  if (!value.starts_with(bearer)) return asUtf8(shortened(value));
  return asUtf8(std::string{bearer} + shortened(value.substr(bearer.size())));
}

void writeHeaders(JsonWriter& json, std::string_view name, const HeaderList& headers) {
  json.key(name).beginArray();
  for (const auto& [header, value] : headers) {
    json.beginArray().value(asUtf8(header)).value(safeValue(header, value)).endArray();
  }
  json.endArray();
}

void writeBody(JsonWriter& json, const std::string& name, const std::string* body,
               std::size_t size) {
  json.key(name);
  // What had to go was cut off at its beginning.
  const std::string_view text = body != nullptr ? std::string_view{*body} : std::string_view{};
  isUtf8(text) ? json.value(text) : json.null();
  json.member(name + "Cut", text.size() < size);
}

bool isForm(const LoggedRequest& request) {
  const auto type = findHeader(request.requestHeaders, "Content-Type");
  return type && equalIgnoringCase(type->substr(0, type->find(';')), "multipart/form-data");
}

void writeForm(JsonWriter& json, const LoggedRequest& request, const std::string& body) {
  std::vector<FormPart> parts;
  try {
    parts = parseMultipart(*findHeader(request.requestHeaders, "Content-Type"), body);
  } catch (const Problem&) {
    json.key("form").null();
    return;
  }
  json.key("form").beginArray();
  for (const FormPart& part : parts) {
    json.beginObject()
        .member("name", asUtf8(part.name))
        .member("filename", asUtf8(part.filename))
        .member("contentType", asUtf8(part.contentType))
        .key("value");
    isUtf8(part.value) ? json.value(part.value) : json.null();
    json.endObject();
  }
  json.endArray();
}

/// Headers that the command makes by itself.
bool isOwn(std::string_view name) {
  constexpr auto own = std::to_array<std::string_view>(
      {"Host", "User-Agent", "Accept", "Accept-Encoding", "Content-Length", "Connection",
       "Authorization", "Expect", "Transfer-Encoding", "Cookie", "X-Sandbox-Admin-Key"});
  return std::ranges::any_of(own,
                             [&](std::string_view each) { return equalIgnoringCase(each, name); });
}

/// A body that fits on the command line, or none.
bool canBePasted(const LoggedRequest& request, const std::string& body) {
  return body.size() == request.requestSize && isUtf8(body) && body.find('\0') == std::string::npos;
}

std::string curlLine(const Backend& backend, const LoggedRequest& request,
                     const std::string& body) {
  const Address address = backend.address();
  std::string line = "curl --globoff --path-as-is";
  if (!address.certificateAuthority.empty()) {
    line += " --cacert " + shellWord(address.certificateAuthority.string());
  }
  if (request.method == "HEAD") {
    line += " --head";
  } else if (request.method != "GET") {
    line += " -X " + shellWord(asUtf8(request.method));
  }
  if (findHeader(request.requestHeaders, "Authorization")) {
    line += " -H \"Authorization: Bearer $ORVANE_TOKEN\"";
  }
  for (const auto& [name, value] : request.requestHeaders) {
    if (isOwn(name)) continue;
    line.append(" -H ").append(shellWord(asUtf8(std::string{name}.append(": ").append(value))));
  }
  if (request.requestSize > 0) {
    line += canBePasted(request, body) ? " --data-raw " + shellWord(body) : " --data-binary @BODY";
  }
  const std::string query = request.query.empty() ? "" : "?" + request.query;
  return line + " " + shellWord(asUtf8(address.baseUrl + request.path + query));
}

/// Empty for a request that the command-line client can't make.
std::string clientLine(const LoggedRequest& request, const std::string& body) {
  constexpr std::array<std::string_view, 4> methods{"GET", "POST", "PUT", "DELETE"};
  if (std::ranges::find(methods, request.method) == methods.end()) return {};
  if (!request.path.starts_with(apiRoot)) return {};
  std::string line =
      "orvane api " + request.method + " " + shellWord(asUtf8(request.path.substr(apiRoot.size())));
  try {
    for (const std::string_view item : split(request.query, '&')) {
      if (item.find('=') == std::string_view::npos || item.starts_with('=')) return {};
      line += " --query " + shellWord(percentDecode(item));
    }
  } catch (const Problem&) {
    return {};
  }
  for (const std::string_view name : {"Content-Type", "Accept-Language"}) {
    const auto value = findHeader(request.requestHeaders, name);
    if (!value || *value == "application/json") continue;
    line += " --header " + shellWord(asUtf8(std::string{name} + ": " + std::string{*value}));
  }
  if (request.requestSize == 0) return line;
  if (!canBePasted(request, body)) return line + " --data BODY";
  return "printf %s " + shellWord(body) + " | " + line + " --data -";
}

void writeSummaryMembers(JsonWriter& json, const LoggedRequest& request) {
  json.member("id", request.id)
      .member("time", formatTime(request.time))
      .member("method", asUtf8(request.method))
      .member("path", asUtf8(request.path))
      .member("query", asUtf8(request.query))
      .member("status", request.status)
      .member("duration", std::round(request.duration * 1000) / 1000)
      .member("requestSize", request.requestSize)
      .member("responseSize", request.responseSize);
  const auto name = names().find(request.user);
  json.key("user");
  request.user.empty() ? json.null() : json.value(request.user);
  json.key("name");
  name == names().end() ? json.null() : json.value(name->second);
  json.member("reason", asUtf8(request.reason)).key("fault");
  request.fault.empty() ? json.null() : json.value(request.fault);
}

}  // namespace

std::string asUtf8(std::string_view text) {
  if (isUtf8(text)) return std::string{text};
  std::string whole;
  while (!text.empty()) {
    std::size_t length = std::min<std::size_t>(text.size(), 4);
    while (length > 0 && !isUtf8(text.substr(0, length))) --length;
    whole.append(length > 0 ? text.substr(0, length) : "\xEF\xBF\xBD");
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return whole;
}

void writeSummary(JsonWriter& json, const LoggedRequest& request) {
  json.beginObject();
  writeSummaryMembers(json, request);
  json.endObject();
}

std::string detailsAsJson(const Backend& backend, const RequestLog::Kept& kept) {
  const LoggedRequest& request = *kept.request;
  const std::string body = kept.bodies ? kept.bodies->request : "";
  JsonWriter json;
  json.beginObject();
  writeSummaryMembers(json, request);
  writeHeaders(json, "requestHeaders", request.requestHeaders);
  writeBody(json, "requestBody", kept.bodies ? &kept.bodies->request : nullptr,
            request.requestSize);
  writeHeaders(json, "responseHeaders", request.responseHeaders);
  writeBody(json, "responseBody", kept.bodies ? &kept.bodies->response : nullptr,
            request.responseSize);
  if (isForm(request) && body.size() == request.requestSize) {
    writeForm(json, request, body);
  } else {
    json.key("form").null();
  }
  return json.member("curl", curlLine(backend, request, body))
      .member("orvane", clientLine(request, body))
      .endObject()
      .take();
}

}  // namespace orvane::sandbox
