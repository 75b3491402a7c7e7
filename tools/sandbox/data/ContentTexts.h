// SPDX-License-Identifier: Apache-2.0
//
// The texts that an application shows to its users, in three languages.
#pragma once

#include <span>
#include <string_view>

namespace orvane::sandbox {

struct ContentText {
  std::string_view key;
  std::string_view english;
  std::string_view german;
  std::string_view french;
};

[[nodiscard]] std::span<const ContentText> contentTexts();

}  // namespace orvane::sandbox
