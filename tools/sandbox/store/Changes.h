// SPDX-License-Identifier: Apache-2.0
//
// What differs from the data as it was laid. Triggers keep each row as it was before its first
// change, so that only what has changed costs anything, and copies of the file carry it along.
#pragma once

#include "store/Database.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>

namespace orvane::sandbox {

/// Keeps rows of every table from now on.
void watchChanges(DatabaseConnection& database);

/// Ends that, before data is laid; what has been kept goes with the tables' rows.
void forgetChanges(DatabaseConnection& database);

/// The object of "changes", at most so many, and whether there are "more". Each has "table", "key",
/// "kind" (added, changed or removed), and the row "before" and "after", null where there is none.
/// Values of secrets are left out.
[[nodiscard]] nlohmann::json changesIn(DatabaseConnection& database, std::size_t most);

}  // namespace orvane::sandbox
