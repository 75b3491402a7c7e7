// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The proxy of the options.
#pragma once

#include <Orvane/Runtime/ConfigurationError.h>
#include <Orvane/Runtime/CurlRequestManager.h>

#include <optional>

namespace orvane {

/// Checks the proxy of `options`, and moves the user's name and password out of its URL to where
/// they can be given apart, so that no message shows them. Answers what can't work; absent when all
/// can.
[[nodiscard]] std::optional<ConfigurationError> separateProxyCredentials(TransportOptions& options);

}  // namespace orvane
