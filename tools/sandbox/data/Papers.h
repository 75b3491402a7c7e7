// SPDX-License-Identifier: Apache-2.0
//
// The paperwork of the sandbox: invitations, activation codes, phones, contracts, named drivers.
#pragma once

#include "Time.h"
#include "store/Database.h"

#include <span>

namespace orvane::sandbox {

struct ActivationCode {
  const char* activationId;
  const char* code;
  const char* userId;  // null: anybody's
  bool used;
};

[[nodiscard]] std::span<const ActivationCode> activationCodes();

/// People and vehicles must have been laid.
void layPapers(DatabaseConnection& database, Milliseconds now);

}  // namespace orvane::sandbox
