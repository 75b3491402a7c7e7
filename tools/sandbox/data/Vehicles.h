// SPDX-License-Identifier: Apache-2.0
//
// The vehicles of the sandbox and who may drive them.
#pragma once

#include "Time.h"
#include "store/Database.h"

namespace orvane::sandbox {

void layVehicles(DatabaseConnection& database, Milliseconds now);

/// The vehicle that a user drives, or null for someone who has none.
[[nodiscard]] const char* vehicleOf(std::string_view userId);

}  // namespace orvane::sandbox
