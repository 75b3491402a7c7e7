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

/// A trip's profile holds the seconds since its start and the metres per second of each position,
/// in the encoding of polylines: so that a tenth is the smallest step.
inline constexpr double profileScale = 1e-5;

/// People and vehicles must have been laid.
void layTrips(DatabaseConnection& database, Milliseconds now, int weeks,
              const LayingProgress& progress);

}  // namespace orvane::sandbox
