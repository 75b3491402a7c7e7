// SPDX-License-Identifier: Apache-2.0
#include "tests/support/RequestRows.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Services/NamedDriver/NamedDriverService.h>

namespace orvane {
namespace {

TEST(NamedDriverServiceTest, sendsTheseRequests) {
  expectRequests<NamedDriverService>({
      // The list does not stand below a user.
      {"GET namedDrivers", [](auto& drivers) { drivers.fetch(nullptr); }},
      {"PUT namedDrivers/42?namedDriverEmail=ann@example.com&namedDriverPhone=+41%2044",
       [](auto& drivers) { drivers.updateNamedDriver(42, "ann@example.com", "+41 44", nullptr); }},
      {"PUT namedDrivers/-1?namedDriverEmail=&namedDriverPhone=",
       [](auto& drivers) { drivers.updateNamedDriver(-1, "", "", nullptr); }},
  });
}

}  // namespace
}  // namespace orvane
