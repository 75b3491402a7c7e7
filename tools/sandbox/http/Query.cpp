// SPDX-License-Identifier: Apache-2.0
#include "http/Query.h"

#include "http/Message.h"

#include <algorithm>
#include <charconv>

namespace orvane::sandbox {

namespace {

constexpr std::string_view expand = "expand";

std::string inQuotes(std::string_view name) { return "\"" + std::string{name} + "\""; }

}  // namespace

std::optional<std::int64_t> parseInteger(std::string_view text) {
  std::int64_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc{} || result.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  while (!text.empty()) {
    const auto end = std::min(text.find(separator), text.size());
    pieces.push_back(text.substr(0, end));
    if (end == text.size()) break;
    text.remove_prefix(end + 1);
    if (text.empty()) pieces.push_back(text);
  }
  return pieces;
}

Query::Query(std::string_view text, const std::vector<std::string_view>& allowed) {
  for (const std::string_view item : split(text, '&')) {
    if (item.empty()) continue;
    const auto equals = item.find('=');
    if (equals == std::string_view::npos) {
      throw badRequest("the query item " + inQuotes(percentDecode(item)) + " has no value");
    }
    std::string name = percentDecode(item.substr(0, equals));
    if (std::ranges::find(allowed, name) == allowed.end()) {
      throw badRequest("the parameter " + inQuotes(name) + " is unknown here");
    }
    if (name != expand && this->text(name)) {
      throw badRequest("the parameter " + inQuotes(name) + " is given twice");
    }
    items_.emplace_back(std::move(name), percentDecode(item.substr(equals + 1)));
  }
}

std::optional<std::string> Query::text(std::string_view name) const {
  const auto found = std::ranges::find(items_, name, &std::pair<std::string, std::string>::first);
  return found != items_.end() ? std::optional{found->second} : std::nullopt;
}

std::string Query::requiredText(std::string_view name) const {
  auto value = text(name);
  if (!value || value->empty()) throw badRequest("the parameter " + inQuotes(name) + " is missing");
  return *std::move(value);
}

std::optional<std::int64_t> Query::integer(std::string_view name, std::int64_t least,
                                           std::int64_t most) const {
  const auto value = text(name);
  if (!value) return std::nullopt;
  const auto number = parseInteger(*value);
  if (!number) throw badRequest(inQuotes(name) + " is not a number");
  if (*number < least || *number > most) {
    throw badRequest(inQuotes(name) + " is not between " + std::to_string(least) + " and " +
                     std::to_string(most));
  }
  return number;
}

std::optional<bool> Query::boolean(std::string_view name) const {
  const auto value = oneOf(name, {"true", "false"});
  return value ? std::optional{*value == "true"} : std::nullopt;
}

std::optional<Day> Query::day(std::string_view name) const {
  const auto value = text(name);
  if (!value) return std::nullopt;
  const auto day = parseDay(*value);
  if (!day) throw badRequest(inQuotes(name) + " is not a day written yyyy-MM-dd in digits");
  return day;
}

std::optional<std::string> Query::oneOf(std::string_view name,
                                        std::initializer_list<std::string_view> choices) const {
  auto value = text(name);
  if (value && std::ranges::find(choices, *value) == choices.end()) {
    throw badRequest(inQuotes(name) + " has an unknown value");
  }
  return value;
}

Period Query::period() const {
  const Period period{day("startDate"), day("endDate")};
  if (period.first && period.last && *period.first > *period.last) {
    throw badRequest("\"startDate\" lies after \"endDate\"");
  }
  return period;
}

std::set<std::string> Query::expansions(std::initializer_list<std::string_view> known) const {
  std::set<std::string> found;
  for (const auto& [name, value] : items_) {
    if (name != expand) continue;
    for (const std::string_view expansion : split(value, ',')) {
      if (std::ranges::find(known, expansion) == known.end()) {
        throw badRequest("the expansion " + inQuotes(expansion) + " is unknown here");
      }
      found.emplace(expansion);
    }
  }
  return found;
}

}  // namespace orvane::sandbox
