// SPDX-License-Identifier: Apache-2.0
//
// The phones of a user, for the resources that make them known.
#pragma once

#include "store/Database.h"

#include <string>

namespace orvane::sandbox {

/// Makes the device the one that collects the user's driving data; new devices are added.
void activateDevice(DatabaseConnection& database, const std::string& userId,
                    const std::string& identifier);

}  // namespace orvane::sandbox
