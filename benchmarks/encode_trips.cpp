// SPDX-License-Identifier: Apache-2.0
// Encoding 100 trips with their events and routes.
#include "benchmarks/EncodedPage.h"
#include "benchmarks/TripsPage.h"

namespace {

const EncodedPage<orvane::Trip>& trips() {
  static const EncodedPage<orvane::Trip> trips(page());
  return trips;
}

void encodeTrips(benchmark::State& state) { encodeRecords(state, trips()); }
BENCHMARK(encodeTrips);

void writeTripsWithRapidJSON(benchmark::State& state) { writeWithRapidJSON(state, trips()); }
BENCHMARK(writeTripsWithRapidJSON);

void writeTripsWithNlohmann(benchmark::State& state) { writeWithNlohmann(state, trips()); }
BENCHMARK(writeTripsWithNlohmann);

}  // namespace
