// SPDX-License-Identifier: Apache-2.0
// The further drivers that an insurance policy names.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Platform/Export.h>

#include <cstdint>
#include <optional>
#include <string>

namespace orvane {

/// A driver named on the policy besides its holder. The members that are not optional must be there
/// when decoding; one driver without them fails a whole list.
struct ORVANE_EXPORT NamedDriver {
  std::string firstName;               ///< Given name.
  std::string lastName;                ///< Family name.
  std::optional<std::string> email{};  ///< E-mail address.
  std::optional<std::string> phone{};  ///< Phone number.
  bool activated = false;              ///< Whether the driver takes part in the programme by now.
  std::optional<double> activatedDate{};  ///< Milliseconds since 1970-01-01 UTC.
  std::string userProfileId;              ///< The identifier of the driver's profile.
  std::int64_t userId = 0;                ///< What `NamedDriverService::updateNamedDriver` takes.

  ORVANE_EXPORT bool operator==(const NamedDriver& other) const noexcept;
};

template <>
inline constexpr bool hasCoding<NamedDriver> = true;

}  // namespace orvane
