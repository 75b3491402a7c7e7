// SPDX-License-Identifier: Apache-2.0
// Encoding 1,000 users.
#include "benchmarks/EncodedPage.h"
#include "benchmarks/UsersPage.h"

namespace {

const EncodedPage<orvane::User>& users() {
  static const EncodedPage<orvane::User> users(page());
  return users;
}

void encodeUsers(benchmark::State& state) { encodeRecords(state, users()); }
BENCHMARK(encodeUsers);

void writeUsersWithRapidJSON(benchmark::State& state) { writeWithRapidJSON(state, users()); }
BENCHMARK(writeUsersWithRapidJSON);

void writeUsersWithNlohmann(benchmark::State& state) { writeWithNlohmann(state, users()); }
BENCHMARK(writeUsersWithNlohmann);

}  // namespace
