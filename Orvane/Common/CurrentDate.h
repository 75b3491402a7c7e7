// SPDX-License-Identifier: Apache-2.0
// The current date, corrected for a device clock that is wrong.
#pragma once

#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Export.h>

namespace orvane {

/// The current date as the host has corrected it: the device clock plus the offset set below. Any
/// thread.
[[nodiscard]] ORVANE_EXPORT Date currentDate() noexcept;

/// What the device clock lacks, in seconds: positive when it is behind. Zero until the application
/// sets it; the offset that the resolver finds out for a token is another one. Any thread.
ORVANE_EXPORT void setCurrentDateOffset(Seconds offset) noexcept;

}  // namespace orvane
