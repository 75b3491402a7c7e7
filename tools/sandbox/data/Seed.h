// SPDX-License-Identifier: Apache-2.0
//
// The data that a new sandbox starts with.
#pragma once

#include "Time.h"
#include "data/Trips.h"
#include "store/Database.h"

namespace orvane::sandbox {

/// Fills empty tables. The same time and weeks give the same data.
void layData(DatabaseConnection& database, Milliseconds now, int weeks,
             const LayingProgress& progress);

}  // namespace orvane::sandbox
