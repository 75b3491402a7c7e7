// SPDX-License-Identifier: Apache-2.0
//
// The user record: who sees whom, what expansions add, which updates are taken.
#include "Fixture.h"

#include <gmock/gmock.h>

namespace orvane::sandbox::test {
namespace {

class Users : public SandboxTest {
 protected:
  Answer update(const std::string& name, const std::string& value) {
    return postForm("users/1001", {{name, value, "", ""}});
  }
};

TEST_F(Users, ExpansionsAddTheirMemberAndNoOther) {
  const json plain = read("users/1001");
  EXPECT_EQ(plain["userId"], "1001");
  EXPECT_EQ(plain["postalcode"], "4055");
  const std::pair<const char*, const char*> rows[] = {{"associatedUsers", "associatedUsers"},
                                                      {"sharedInformation", "sharedInformation"},
                                                      {"associatedAccount", "account"},
                                                      {"customFields", "customFields"},
                                                      {"role", "userRole"}};
  for (const auto& [expansion, member] : rows) {
    json expanded = read(std::string{"users/1001?expand="} + expansion);
    EXPECT_FALSE(plain.contains(member)) << expansion;
    ASSERT_EQ(expanded.erase(member), 1U) << expansion;
    EXPECT_EQ(expanded, plain) << expansion;
  }
  EXPECT_EQ(read("users/1001?expand=associatedUsers")["associatedUsers"].size(), 2U);
}

TEST_F(Users, UpdatesAreCheckedPartByPart) {
  using Part = std::pair<const char*, const char*>;
  constexpr Part taken[] = {
      {"gender", "genderfluid"},
      {"dateOfBirth", "1987-04-13"},
      {"driverType", "WEEKEND_DRIVER"},
      {"dataCollectionType", "OBD"},
      {"enrollmentModelType", "MOBILE_FLEXIBLE"},
      {"countryCode", "FR"},
  };
  for (const auto& [part, value] : taken) {
    EXPECT_EQ(update(part, value).parsed()[part], value);
  }
  const json before = read("users/1001");
  constexpr Part refused[] = {
      {"dateOfBirth", "2567-04-13"},  // the Buddhist calendar's 2024
      {"dateOfBirth", "1987-02-29"},    {"dateOfBirth", "13/04/1987"},
      {"dateOfBirth", "٢٠٠١-٠١-٠١"},    {"gender", ""},
      {"driverType", "weekend_driver"}, {"scoringType", "ABC"},
      {"shareUserProfile", "yes"},      {"email", "anna"},
      {"countryCode", "France"},        {"displayName", "Ann"},
      {"postalCode", "4055"},
  };
  for (const auto& [part, value] : refused) {
    EXPECT_EQ(update(part, value).status, 400) << part << '=' << value;
    EXPECT_EQ(postForm("users/1001", {{"city", "Bern", "", ""}, {part, value, "", ""}}).status,
              400);
  }
  EXPECT_EQ(postForm("users/1001", {{"city", "A", "", ""}, {"city", "B", "", ""}}).status, 400);
  EXPECT_EQ(read("users/1001"), before) << "a refused update changes nothing";

  EXPECT_EQ(postForm("users/1002", {{"city", "Bern", "", ""}}).status, 403);
  EXPECT_EQ(postForm("users/777", {{"city", "Bern", "", ""}}).status, 404);
}

TEST_F(Users, FormsAreReadToTheLetter) {
  const auto send = [this](const std::string& body) {
    return post("users/1001", body, "multipart/form-data; boundary=b0").status;
  };
  const std::string part = "--b0\r\nContent-Disposition: form-data; name=\"city\"\r\n\r\nA--b0\r\n";
  EXPECT_EQ(send("--b0--"), 200) << "no parts at all";
  EXPECT_EQ(send(part + "--b0--"), 200) << "no line break after the end";
  EXPECT_EQ(read("users/1001")["city"], "A--b0");
  EXPECT_EQ(send(part), 400);
  EXPECT_EQ(send(""), 400);
  EXPECT_EQ(send("--b1--"), 400);
  EXPECT_EQ(send("--b0\nContent-Disposition: form-data; name=\"city\"\n\nA\n--b0--"), 400);
  EXPECT_EQ(post("users/1001", "--b0--", "multipart/form-data").status, 400);
}

}  // namespace
}  // namespace orvane::sandbox::test
