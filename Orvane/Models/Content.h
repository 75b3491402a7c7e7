// SPDX-License-Identifier: Apache-2.0
// Texts that the backend keeps for the application to show.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Export.h>

#include <optional>
#include <string>

namespace orvane {

/// One localised text.
struct ORVANE_EXPORT Content {
  std::optional<std::string> body{};  ///< The text, in the form in which the backend keeps it.

  ORVANE_EXPORT bool operator==(const Content& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<Content> = true;

}  // namespace orvane
