// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
#pragma once

#include <string>

namespace orvane {

/// A fresh random UUID (RFC 4122, version 4) in its standard text form, lower case. Any thread.
[[nodiscard]] std::string randomUUID();

}  // namespace orvane
