// SPDX-License-Identifier: Apache-2.0
#include "data/Seed.h"

#include "data/Papers.h"
#include "data/People.h"
#include "data/Trips.h"
#include "data/Vehicles.h"

namespace orvane::sandbox {

void layData(DatabaseConnection& database, Milliseconds now, int weeks,
             const LayingProgress& progress) {
  layPeople(database, now);
  layVehicles(database, now);
  layPapers(database, now);
  layTrips(database, now, weeks, progress);
}

}  // namespace orvane::sandbox
