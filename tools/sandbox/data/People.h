// SPDX-License-Identifier: Apache-2.0
//
// Who lives in the sandbox.
#pragma once

#include "Time.h"
#include "store/Database.h"

#include <span>

namespace orvane::sandbox {

struct Person {
  const char* userId;
  const char* externalReferenceId;
  const char* accountId;
  const char* firstName;
  const char* lastName;
  const char* gender;
  const char* displayName;
  const char* dateOfBirth;
  const char* street;
  const char* postalCode;
  const char* city;
  const char* subdivision;      // the canton, state or department
  const char* subdivisionCode;  // ISO 3166-2
  const char* country;
  const char* countryCode;
  const char* driverType;
  const char* enrollmentModelType;
  const char* accountRole;
  const char* roleNames;
  const char* note;  // what the person is good for in a test
  double tripsPerDay;
  double care;    // 0: drives as if chased, 1: never brakes hard
  bool isSample;  // an identity of the ready file; the others only fill the leaderboard
  bool activated;
};

/// The sample identities first.
[[nodiscard]] std::span<const Person> people();

void layPeople(DatabaseConnection& database, Milliseconds now);

}  // namespace orvane::sandbox
