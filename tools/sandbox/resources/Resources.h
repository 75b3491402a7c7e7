// SPDX-License-Identifier: Apache-2.0
//
// The backend's resources, each in a file of its own.
#pragma once

#include "Router.h"

#include <string_view>

namespace orvane::sandbox {

/// Adds every resource below the API root.
void addResources(Router& router);

void addAlertSettings(Router& router);
void addDriving(Router& router);
void addLeaderboards(Router& router);
void addRewards(Router& router);
void addScores(Router& router);
void addTrips(Router& router);
void addUsers(Router& router);
void addVehicles(Router& router);

inline constexpr std::string_view kDownloads = "/downloads/";

/// Firmware packages; they stand outside the API and need no token.
[[nodiscard]] Reply answerDownload(Backend& backend, const Request& request);

}  // namespace orvane::sandbox
