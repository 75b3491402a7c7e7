// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// URLs of hosts, as an application writes them into its options.
#pragma once

#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>

#include <string>
#include <string_view>

namespace orvane {

/// The URL that `text` is, or the `ConfigurationError` that tells what keeps `option` from being
/// the beginning of URLs: it must be https or http and have a host, and neither a query, a user nor
/// a port that does not exist.
[[nodiscard]] Result<URL> configuredURL(std::string_view option, const std::string& text);

}  // namespace orvane
