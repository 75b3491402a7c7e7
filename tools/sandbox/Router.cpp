// SPDX-License-Identifier: Apache-2.0
#include "Router.h"

#include "Backend.h"

#include <algorithm>

namespace orvane::sandbox {

namespace {

bool isCapture(std::string_view segment) { return segment.starts_with('{'); }

bool matches(const std::vector<std::string_view>& pattern, const std::vector<std::string>& path) {
  return std::ranges::equal(pattern, path, [](std::string_view expected, const std::string& found) {
    return isCapture(expected) ? !found.empty() : expected == found;
  });
}

/// The method whose route answers: HEAD is GET without the body.
std::string_view effectiveMethod(const Request& request) {
  return request.method == "HEAD" ? std::string_view{"GET"} : request.method;
}

bool hasMediaType(const Request& request, std::string_view type) {
  const auto header = request.header("Content-Type");
  return header && equalIgnoringCase(header->substr(0, header->find(';')), type);
}

void checkBody(const Endpoint& route, const Request& request) {
  if (route.body == Body::none && !request.body.empty()) {
    throw badRequest("this resource takes no body");
  }
  const bool json = route.body == Body::json;
  if (route.body != Body::none &&
      !hasMediaType(request, json ? "application/json" : "multipart/form-data")) {
    throw Problem{
        415, "unsupported_media_type",
        json ? "the body must be application/json" : "the body must be multipart/form-data"};
  }
  if (json && request.header("X-Requested-With") != "XMLHttpRequest") {
    throw badRequest("the header X-Requested-With is missing");
  }
}

}  // namespace

void Router::add(Endpoint route) {
  auto segments = split(route.path, '/');
  entries_.push_back({std::move(route), std::move(segments)});
}

const Router::Entry* Router::find(const Request& request, std::string_view path,
                                  std::vector<std::string>& captures) const {
  std::vector<std::string> segments;
  for (const std::string_view segment : split(path, '/')) {
    segments.push_back(percentDecode(segment));
  }
  std::string allowed;
  for (const Entry& entry : entries_) {
    if (!matches(entry.segments, segments)) continue;
    if (entry.route.method != effectiveMethod(request)) {
      allowed.append(allowed.empty() ? "" : ", ").append(entry.route.method);
      continue;
    }
    for (std::size_t i = 0; i < segments.size(); ++i) {
      if (isCapture(entry.segments[i])) captures.push_back(std::move(segments[i]));
    }
    return &entry;
  }
  if (allowed.empty()) return nullptr;
  throw Problem{
      405, "method_not_allowed", "this resource answers " + allowed, {{"Allow", allowed}}};
}

Reply Router::dispatch(Backend& backend, const Request& request, std::string_view path,
                       std::string& callerId) const {
  const auto lease = backend.database().lease();
  std::vector<std::string> captures;
  std::optional<Problem> unroutable;
  const Entry* entry = nullptr;
  try {
    entry = find(request, path, captures);
  } catch (const Problem& problem) {
    unroutable = problem;
  }
  // Strangers are not told which resources there are.
  const bool open = entry != nullptr && entry->route.access == Access::anyone;
  callerId = backend.authenticate(*lease, request, open);
  if (unroutable) throw Problem{*unroutable};
  if (entry == nullptr) throw notFound("there is no such resource");

  checkBody(entry->route, request);
  Call call{
      backend,  *lease, request, Query{request.query, entry->route.query}, std::move(captures),
      callerId, {}};
  if (entry->route.body == Body::form) {
    call.form = parseMultipart(*request.header("Content-Type"), request.body);
  }
  return entry->route.handle(call);
}

}  // namespace orvane::sandbox
