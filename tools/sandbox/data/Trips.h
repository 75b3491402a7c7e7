// SPDX-License-Identifier: Apache-2.0
//
// Weeks of believable trips for everyone who drives.
#pragma once

#include "Time.h"
#include "store/Database.h"

#include <functional>

namespace orvane::sandbox {

/// Told how many days of people's lives have been laid; may throw to end it.
using LayingProgress = std::function<void(int done, int all)>;

/// People and vehicles must have been laid.
void layTrips(DatabaseConnection& database, Milliseconds now, int weeks,
              const LayingProgress& progress);

}  // namespace orvane::sandbox
