// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// Regular expressions in ICU's dialect. A pattern that is malformed, or a group that it does not
// name, is a programming fault that stops the process.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// True when `pattern` matches anywhere in `text`.
[[nodiscard]] bool isFound(std::string_view pattern, std::string_view text);

/// What the groups of these names have captured, in the order of `names`, where `pattern` first
/// matches in `text`; absent when it matches nowhere.
[[nodiscard]] std::optional<std::vector<std::string>> findGroups(
    std::string_view pattern, std::string_view text, std::initializer_list<std::string_view> names);

}  // namespace orvane
