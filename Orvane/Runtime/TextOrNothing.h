// SPDX-License-Identifier: Apache-2.0
// Texts of options that may come from the environment.
#pragma once

#include <string>
#include <type_traits>
#include <utility>

namespace orvane {

/// The text; an empty one for a null pointer.
template <class Text>
[[nodiscard]] std::string textOrNothing(Text&& text) {
  if constexpr (std::is_pointer_v<std::remove_cvref_t<Text>>) {
    if (text == nullptr) return {};
  }
  return std::string(std::forward<Text>(text));
}

}  // namespace orvane
