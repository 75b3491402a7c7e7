// SPDX-License-Identifier: Apache-2.0
//
// Weeks of believable trips for everyone who drives.
#pragma once

#include "Time.h"
#include "store/Database.h"

namespace orvane::sandbox {

/// People and vehicles must have been laid.
void layTrips(DatabaseConnection& database, Milliseconds now, int weeks);

}  // namespace orvane::sandbox
