// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Printing.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/Models/NamedDriver.h>

#include <gtest/gtest.h>

#include <string>

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

TEST(NamedDriverTest, isReadAndWrittenWhole) {
  const std::string json =
      R"({"firstName":"Ann","lastName":"Lee","email":"ann@example.com","phone":"+41",)"
      R"("activated":false,"activatedDate":1700000000000.5,"userProfileId":"p1","userId":42})";
  NamedDriver expected = annLee();
  expected.email = "ann@example.com";
  expected.phone = "+41";
  expected.activated = false;
  expected.activatedDate = 1700000000000.5;
  EXPECT_EQ(decode<NamedDriver>(json), expected);
  EXPECT_EQ(encode(expected), json);
  EXPECT_EQ(encode(annLee()), ann);
}

TEST(NamedDriverTest, needsItsRequiredMembers) {
  const std::pair<const char*, const char*> members[] = {{"firstName", R"("Ann")"},
                                                         {"lastName", R"("Lee")"},
                                                         {"activated", "true"},
                                                         {"userProfileId", R"("p1")"},
                                                         {"userId", "42"}};
  // The driver with `replaced` as the value of `key`, or without it.
  const auto driver = [&](std::string_view key, const char* replaced) {
    std::string json = "{";
    for (const auto& [name, value] : members) {
      const char* written = name == key ? replaced : value;
      if (written == nullptr) continue;
      if (json.size() > 1) json += ',';
      json += '"' + std::string(name) + "\":" + written;
    }
    return decode<NamedDriver>(json + "}");
  };
  ASSERT_EQ(driver("", nullptr), annLee());
  for (const auto& member : members) {
    SCOPED_TRACE(member.first);
    const auto missing = driver(member.first, nullptr);
    ASSERT_TRUE(missing.error() && missing.error()->as<DecodingError>());
    EXPECT_EQ(missing.error()->as<DecodingError>()->kind, DecodingError::Kind::keyNotFound);
    EXPECT_FALSE(driver(member.first, "null").value());
  }
  EXPECT_FALSE(driver("userId", R"("42")").value());
  EXPECT_FALSE(driver("activated", "1").value());
}

}  // namespace
}  // namespace orvane
