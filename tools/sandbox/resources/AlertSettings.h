// SPDX-License-Identifier: Apache-2.0
//
// The alerts that a user's trips raise under the user's settings.
#pragma once

#include "JsonWriter.h"
#include "store/Database.h"

#include <string_view>

namespace orvane::sandbox {

/// An array with the alerts among a trip's events, which are given as the trip's JSON.
void writeAlerts(JsonWriter& json, DatabaseConnection& database, std::string_view userId,
                 std::string_view events);

}  // namespace orvane::sandbox
