// SPDX-License-Identifier: Apache-2.0
//
// The parameters of a request. Whatever is malformed is refused here, so that resources only see
// values that make sense.
#pragma once

#include "Time.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane::sandbox {

/// The days of a period, both included; an absent bound is open.
struct Period {
  std::optional<Day> first;
  std::optional<Day> last;
};

/// So many days, of which `last` is the last.
[[nodiscard]] inline Period daysUpTo(Day last, std::int64_t count) {
  return {last - std::chrono::days{count - 1}, last};
}

class Query {
 public:
  /// Throws a 400 for an item without "=", a broken escape, a name that is not among `allowed`, and
  /// a name that comes twice. "expand" may come as often as it likes. Empty items are ignored.
  Query(std::string_view text, const std::vector<std::string_view>& allowed);

  [[nodiscard]] std::optional<std::string> text(std::string_view name) const;
  [[nodiscard]] std::string requiredText(std::string_view name) const;
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view name, std::int64_t least,
                                                    std::int64_t most) const;
  [[nodiscard]] std::optional<bool> boolean(std::string_view name) const;
  [[nodiscard]] std::optional<Day> day(std::string_view name) const;
  /// The text, which must be one of `choices`.
  [[nodiscard]] std::optional<std::string> oneOf(
      std::string_view name, std::initializer_list<std::string_view> choices) const;
  /// "startDate" and "endDate"; a start after its end is refused.
  [[nodiscard]] Period period() const;

  /// Every "expand" item; each must be among `known`. Several may stand in one item with commas.
  [[nodiscard]] std::set<std::string> expansions(
      std::initializer_list<std::string_view> known) const;

 private:
  std::vector<std::pair<std::string, std::string>> items_;
};

/// A decimal integer of ASCII digits, with a minus sign or without.
[[nodiscard]] std::optional<std::int64_t> parseInteger(std::string_view text);

/// The pieces between the separators; an empty text has none.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);

}  // namespace orvane::sandbox
