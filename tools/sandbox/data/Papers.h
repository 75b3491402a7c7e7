// SPDX-License-Identifier: Apache-2.0
//
// The paperwork of the sandbox: invitations, activation codes, phones, contracts, named drivers.
#pragma once

#include "Time.h"
#include "store/Database.h"

namespace orvane::sandbox {

/// People and vehicles must have been laid.
void layPapers(DatabaseConnection& database, Milliseconds now);

}  // namespace orvane::sandbox
