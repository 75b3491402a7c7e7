// SPDX-License-Identifier: Apache-2.0
//
// Vehicles as their own resource, trips and invitations write them.
#pragma once

#include "JsonWriter.h"
#include "Router.h"
#include "store/Database.h"

#include <set>
#include <string>
#include <string_view>

namespace orvane::sandbox {

/// The columns that the writer reads, from the first column on.
extern const std::string vehicleColumns;

/// A whole object. Expansions: usersByRole, health, devices.
void writeVehicle(JsonWriter& json, DatabaseConnection& database, const Rows& vehicle,
                  const std::set<std::string>& expansions);

/// The same for one vehicle by its id; false, and nothing written, when there is none.
bool writeVehicle(JsonWriter& json, DatabaseConnection& database, std::string_view vehicleId,
                  const std::set<std::string>& expansions);

/// "OWNER", "OPERATOR", or empty when the user has nothing to do with the vehicle.
[[nodiscard]] std::string vehicleRole(DatabaseConnection& database, std::string_view vehicleId,
                                      std::string_view userId);

/// Throws a 404 for an unknown vehicle, and a 403 unless the caller owns or drives it.
void requireVehicle(Call& call, std::string_view vehicleId);

}  // namespace orvane::sandbox
