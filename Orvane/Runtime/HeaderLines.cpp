// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Runtime/HeaderLines.h>
#include <Orvane/Runtime/OutgoingRequest.h>

#include <algorithm>

namespace orvane {
namespace {

// A line of its own for each name (in lower case) that a request does not give: what it accepts;
// and what libcurl would add, which a name alone keeps it from.
struct Addition {
  std::string_view given;
  std::string_view name;
  std::string_view value;
};
constexpr Addition additions[] = {{"accept", "Accept", ""},
                                  {"accept-encoding", "Accept-Encoding", "gzip"},
                                  {"content-type", "Content-Type", ""},
                                  {"expect", "Expect", ""}};

constexpr std::string_view separator = ": ";
constexpr std::string_view none = ":";
// libcurl drops a header whose value is blank, unless it is written this way.
constexpr std::string_view blank = ";";

bool isBlank(std::string_view value) {
  return value.find_first_not_of(" \t") == std::string_view::npos;
}

bool isGiven(const Headers& headers, std::string_view name) {
  return std::any_of(headers.begin(), headers.end(),
                     [&](const auto& header) { return isHeader(header.first, name); });
}

}  // namespace

HeaderLines::HeaderLines(const Headers& headers) {
  std::size_t size = 0;
  for (const auto& [name, value] : headers)
    size += name.size() + separator.size() + value.size() + 1;
  for (const auto& [given, name, value] : additions) {
    size += name.size() + separator.size() + value.size() + 1;
  }
  // The lines are pointed to: neither may move.
  text_.reserve(size);
  lines_.reserve(headers.size() + std::size(additions));

  for (const auto& [name, value] : headers) {
    isBlank(value) ? add(name, blank, {}) : add(name, separator, value);
  }
  for (const auto& [given, name, value] : additions) {
    if (!isGiven(headers, given)) add(name, value.empty() ? none : separator, value);
  }
}

void HeaderLines::add(std::string_view name, std::string_view between, std::string_view value) {
  char* line = text_.data() + text_.size();
  text_.append(name).append(between).append(value).push_back('\0');
  lines_.push_back({line, nullptr});
  if (lines_.size() > 1) lines_[lines_.size() - 2].next = &lines_.back();
}

}  // namespace orvane
