// SPDX-License-Identifier: Apache-2.0
// Enumerations as whole JSON texts, and lists of them; and which types have no coding.
#include "tests/support/Records.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Orvane.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {
namespace {

struct Anything {};

static_assert(!Codable<int> && !Codable<std::string> && !Codable<Anything> && !Codable<Polyline>);
static_assert(!Codable<std::vector<double>> && !Codable<std::optional<User>>);
static_assert(!Codable<std::vector<std::vector<User>>> && !Codable<TripService::Filter>);
static_assert(!Codable<Verb> && !Codable<TripService::Expansion> &&
              !Codable<DrivingEventSeverity> && !Codable<Event::KnownEventType> &&
              !Codable<std::vector<ContentService::Key>>);
static_assert(Codable<std::vector<User>> && Codable<Event::EventType> && Codable<User::Gender>);

template <class E>
void expectEveryCase(std::string_view otherText, const Result<E>& other) {
  std::vector<E> all;
  std::string list;
  for (const auto& [value, text] : allCases<E>()) {
    const std::string json = '"' + std::string(text) + '"';
    expectMirrored(json, value);
    list.append(list.empty() ? "[" : ",").append(json);
    all.push_back(value);
  }
  expectMirrored(list + ']', all);
  EXPECT_EQ(encodeChecked(all), Result<std::string>(list + ']'));

  EXPECT_EQ(decode<E>('"' + std::string(otherText) + '"'), other);
  EXPECT_EQ(failure<E>("1"), "typeMismatch");
  EXPECT_EQ(failure<E>("null"), "valueNotFound");
  EXPECT_EQ(failure<E>("\"\" x"), "malformedText");
  EXPECT_EQ(failure<std::vector<E>>(list + ",1]"),
            "typeMismatch [" + std::to_string(all.size()) + ']');
  EXPECT_EQ(failure<std::vector<E>>(list), "malformedText");
  EXPECT_EQ(failure<std::vector<E>>("{}"), "typeMismatch");
}

DecodingError unknown(const std::string& description) {
  return {DecodingError::Kind::dataCorrupted, description, {}, {}};
}

TEST(EnumerationCodingTest, aTextStandsAlone) {
  const auto unknownOf = [](const std::string& name) {
    return unknown("Unknown value found when decoding " + name);
  };
  expectEveryCase<User::DriverType>("commuter", unknownOf("DriverType"));
  expectEveryCase<User::DataCollectionType>("", unknownOf("DataCollectionType"));
  expectEveryCase<User::ScoringType>("IMS ", unknownOf("ScoringType"));
  expectEveryCase<User::EnrollmentModelType>("MOBILE", unknownOf("EnrollmentModelType"));
  expectEveryCase<User::AccountRole>("ROLE_OWNER", unknownOf("AccountRole"));
  expectEveryCase<UserRole::RoleName>("ROLE_SUPERVISOR", unknownOf("UserRole"));
  expectEveryCase<TransportMode>("UNKNOWN", TransportMode::unknown);
  expectEveryCase<Trip::Purpose>("COMMUTE", Trip::Purpose::unknown);
  expectEveryCase<Trip::Status>("", Trip::Status::unknown);
  const DecodingError noCase = unknown("no case has the wire text \"x\"");
  expectEveryCase<DriverDetection::Status>("x", noCase);
  expectEveryCase<Invitation::Status>("x", noCase);
  expectEveryCase<Subscription::SubscriptionType>("x", noCase);
}

TEST(EnumerationCodingTest, anUnknownTextInAListTellsItsPlace) {
  using enum DecodingError::Kind;
  EXPECT_EQ(
      decode<std::vector<User::DriverType>>(R"(["COMMUTER","x"])"),
      (DecodingError{dataCorrupted, "Unknown value found when decoding DriverType", {}, "[1]"}));
  EXPECT_EQ(decode<std::vector<Invitation::Status>>(R"(["x"])"),
            (DecodingError{dataCorrupted, "no case has the wire text \"x\"", {"[0]"}, "[0]"}));
}

TEST(EnumerationCodingTest, otherFormsStandAloneToo) {
  using Gender = User::Gender;
  expectMirrored(
      R"(["male","female","MALE",""])",
      std::vector{Gender::male(), Gender::female(), Gender::custom("MALE"), Gender::custom("")});
  expectMirrored(R"("say \"hi\"")", Gender::custom("say \"hi\""));
  EXPECT_EQ(failure<Gender>("null"), "valueNotFound");
  EXPECT_EQ(encode(Gender::custom("\xFF")), EncodingError{"a text is not UTF-8"});
  expectMirrored("[1,5]", std::vector{Event::Severity::veryLow, Event::Severity::veryHigh});
  EXPECT_EQ(encode(std::vector{Event::EventType::braking()}),
            Result<std::string>(R"([{"braking":{}}])"));
}

}  // namespace
}  // namespace orvane
