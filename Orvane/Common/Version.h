// SPDX-License-Identifier: Apache-2.0
// The comparison of version texts.
#pragma once

#include <Orvane/Platform/Export.h>

#include <string_view>

namespace orvane {

/// True when `version` is strictly higher than `greaterThan`. Versions are compared component by
/// component ("2.10" is higher than "2.9"), components being digits of any length without regard to
/// leading zeros; a missing component, and any that does not start with a digit, counts as 0.
[[nodiscard]] ORVANE_EXPORT bool isVersion(std::string_view version, std::string_view greaterThan);

}  // namespace orvane
