// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Outcome.h"
#include "tests/support/RequestRows.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Services/NamedDriver/NamedDriverService.h>
#include <Orvane/Testing/ScopedFoundation.h>

#include <gtest/gtest.h>

namespace orvane {
namespace {

const std::string ann =
    R"({"firstName":"Ann","lastName":"Lee","activated":true,"userProfileId":"p1","userId":42})";

NamedDriver annLee() {
  return {.firstName = "Ann",
          .lastName = "Lee",
          .activated = true,
          .userProfileId = "p1",
          .userId = 42};
}

TEST(NamedDriverServiceTest, sendsTheseRequests) {
  expectRequests({
      {"the list does not stand below a user",
       [](const Identity& identity) { NamedDriverService(identity).fetch(nullptr); },
       "GET namedDrivers"},
      {"both values travel in the query",
       [](const Identity& identity) {
         NamedDriverService(identity).updateNamedDriver(42, "ann@example.com", "+41 44", nullptr);
       },
       "PUT namedDrivers/42?namedDriverEmail=ann@example.com&namedDriverPhone=+41%2044"},
      {"empty ones are sent, too",
       [](const Identity& identity) {
         NamedDriverService(identity).updateNamedDriver(-1, "", "", nullptr);
       },
       "PUT namedDrivers/-1?namedDriverEmail=&namedDriverPhone="},
  });
}

TEST(NamedDriverServiceTest, decodesDrivers) {
  const ScopedFoundation foundation;
  const NamedDriverService service(freshIdentity());

  foundation.requestManager->answer(ann);
  const Outcome<NamedDriver> updated;
  service.updateNamedDriver(42, "", "", updated.handler());
  EXPECT_EQ(updated.result(), annLee());

  foundation.requestManager->answer("[" + ann + "]");
  const Outcome<std::vector<NamedDriver>> list;
  service.fetch(list.handler());
  EXPECT_EQ(list.result(), std::vector{annLee()});

  foundation.requestManager->answer("[" + ann + R"(,{"firstName":"Bert"}])");
  const Outcome<std::vector<NamedDriver>> incomplete;
  service.fetch(incomplete.handler());
  EXPECT_EQ(incomplete.result(), NetworkError::invalidResponseData);
}

}  // namespace
}  // namespace orvane
