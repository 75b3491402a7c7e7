// SPDX-License-Identifier: Apache-2.0
// JSON texts as texts: laid out, taken apart and put together without changing a number in them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

/// `text`, which is UTF-8, as a JSON text, quotes included.
[[nodiscard]] std::string jsonText(std::string_view text);

// All of these expect a JSON text that a parser has accepted; what they are given else comes back
// in some form, but nothing breaks.

/// The same without white space between its parts.
[[nodiscard]] std::string compactJSON(std::string_view json);
/// The same on lines indented by two blanks per level.
[[nodiscard]] std::string indentedJSON(std::string_view json);

/// The elements of an array, each as it stands; none of anything else.
[[nodiscard]] std::vector<std::string_view> elementsOf(std::string_view json);
/// The value of an object's member, the last of that name; empty where there is none.
[[nodiscard]] std::string_view memberOf(std::string_view json, std::string_view name);
/// The array of these elements.
[[nodiscard]] std::string arrayOf(const std::vector<std::string_view>& elements);

}  // namespace orvane::cli
