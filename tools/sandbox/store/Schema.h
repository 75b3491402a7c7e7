// SPDX-License-Identifier: Apache-2.0
//
// The tables of the sandbox's one file.
#pragma once

#include "store/Database.h"

#include <string>
#include <vector>

namespace orvane::sandbox {

/// Makes the tables unless the file has them in this version. True when they are new and empty.
bool createSchema(DatabaseConnection& database);

/// Every table of the file.
[[nodiscard]] std::vector<std::string> tableNames(DatabaseConnection& database);

/// Empties every table.
void clearTables(DatabaseConnection& database);

}  // namespace orvane::sandbox
