// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
#pragma once

#include <Orvane/Platform/Export.h>

#include <string>

namespace orvane {

/// A fresh random UUID (RFC 4122, version 4) in its standard text form, lower case. Any thread.
[[nodiscard]] ORVANE_EXPORT std::string randomUUID();

}  // namespace orvane
