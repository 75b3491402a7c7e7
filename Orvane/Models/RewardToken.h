// SPDX-License-Identifier: Apache-2.0
// The key to the programme's rewards.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Export.h>

#include <optional>
#include <string>

namespace orvane {

/// A JSON Web Token (RFC 7519) that opens the rewards for the current user. It is handed on as it
/// came; nothing here looks inside. As JSON the record is one text, the token, and no object.
struct ORVANE_EXPORT RewardToken {
  std::optional<std::string> token{};  ///< The token, as it came.

  ORVANE_EXPORT bool operator==(const RewardToken& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<RewardToken> = true;

}  // namespace orvane
