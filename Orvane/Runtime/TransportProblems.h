// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// What can be wrong with the options of a transport.
#pragma once

#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/CurlRequestManager.h>

#include <optional>

namespace orvane {

/// Which option can't work; absent when all can.
[[nodiscard]] std::optional<ConfigurationError> problemWith(const TransportOptions& options);

}  // namespace orvane
