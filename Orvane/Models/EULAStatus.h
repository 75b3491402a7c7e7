// SPDX-License-Identifier: Apache-2.0
// Whether a user accepted the programme's terms.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Export.h>

#include <optional>

namespace orvane {

/// What the backend knows of a user's acceptance of the programme's terms.
struct ORVANE_EXPORT EULAStatus {
  std::optional<bool> acceptedTerms{};  ///< Whether the terms have been accepted.

  ORVANE_EXPORT bool operator==(const EULAStatus& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<EULAStatus> = true;

}  // namespace orvane
