// SPDX-License-Identifier: Apache-2.0
// Where the firmware for the in-car device is published.
#pragma once

#include <Orvane/Platform/Export.h>

#include <string>

namespace orvane {

/// The host from which firmware is downloaded, for the container. Where a host application
/// registers none, the one below serves, at which nothing is to be found (RFC 2606).
struct ORVANE_EXPORT FirmwareHost {
  /// Scheme and host, with a path where there is one: "https://firmware.example".
  std::string url = "https://firmware.example";

  friend bool operator==(const FirmwareHost&, const FirmwareHost&) = default;
};

}  // namespace orvane
