// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Records.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/NamedDriver.h>

#include <string>

namespace orvane {
namespace {

TEST(NamedDriverTest, isReadAndWrittenWhole) {
  expectMirrored(
      R"({"firstName":"Ann","lastName":"Lee","email":"ann@example.com","phone":"+41",)"
      R"("activated":false,"activatedDate":1700000000000.5,"userProfileId":"p1","userId":42})",
      NamedDriver{.firstName = "Ann",
                  .lastName = "Lee",
                  .email = "ann@example.com",
                  .phone = "+41",
                  .activated = false,
                  .activatedDate = 1700000000000.5,
                  .userProfileId = "p1",
                  .userId = 42});
}

TEST(NamedDriverTest, needsItsRequiredMembers) {
  const std::string ann =
      R"({"firstName":"Ann","lastName":"Lee","activated":true,"userProfileId":"p1","userId":42})";
  const NamedDriver driver{.firstName = "Ann",
                           .lastName = "Lee",
                           .activated = true,
                           .userProfileId = "p1",
                           .userId = 42};
  expectMirrored(ann, driver);
  expectNeeds<NamedDriver>(ann, {"firstName", "lastName", "activated", "userProfileId", "userId"});
}

}  // namespace
}  // namespace orvane
