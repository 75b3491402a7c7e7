// SPDX-License-Identifier: Apache-2.0
// The small values everything is made of.
#include "tests/support/Records.h"
#include "tests/support/Values.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Core/Parameter.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/ClosedRange.h>
#include <Orvane/Platform/Indirect.h>
#include <Orvane/Platform/OneOf.h>

#include <set>
#include <sstream>
#include <string>
#include <unordered_set>

namespace application {

// An application's own template, hashed in the application's own way.
template <class T>
struct Boxed {
  T content;
  [[nodiscard]] std::size_t hashValue() const { return 1; }
  bool operator==(const Boxed&) const = default;
};

}  // namespace application

template <class T>
struct std::hash<application::Boxed<T>> {
  std::size_t operator()(const application::Boxed<T>& box) const { return box.hashValue() + 1; }
};

namespace orvane {
namespace {

using ValuesDeathTest = DeathTest;

struct HostError {
  int code;
  [[nodiscard]] std::string message() const { return "code " + std::to_string(code); }
  bool operator==(const HostError&) const = default;
};

TEST(ErrorTest, holdsAnyErrorAndComparesByTypeAndValue) {
  const Error error = HostError{7};
  const Error copy = error;
  EXPECT_EQ(error.as<HostError>()->code, 7);
  EXPECT_EQ(error.as<NetworkError>(), nullptr);
  EXPECT_EQ(error.message(), "code 7");
  EXPECT_TRUE(copy == error && error == HostError{7} && error == Error(HostError{7}));
  EXPECT_FALSE(error == HostError{8} || error == NetworkError::noData || error == DataError{});
}

TEST(ErrorTest, networkErrorsDifferInEveryMember) {
  const Date now = dateFromSeconds(1);
  const NetworkError errors[] = {NetworkError::malformedRequest,
                                 NetworkError::invalidResponseData,
                                 NetworkError::noData,
                                 NetworkError::unknown,
                                 NetworkError::invalidStatusCode(0),
                                 NetworkError::invalidStatusCode(401),
                                 NetworkError::invalidStatusCode(401, now),
                                 NetworkError::invalidStatusCode(403, now)};
  for (const auto& left : errors) {
    for (const auto& right : errors) {
      EXPECT_EQ(left == right, &left == &right) << left.message() << ", " << right.message();
    }
  }
}

TEST(ResultTest, mayHoldNeitherValueNorError) {
  const Result<int> success = 1;
  const Result<int> failure = HostError{2};
  const Result<int> silent;
  EXPECT_TRUE(success && success.value() == 1 && !success.error());
  EXPECT_TRUE(!failure && !failure.value() && *failure.error() == HostError{2});
  EXPECT_TRUE(!silent && !silent.value() && !silent.error());
  EXPECT_EQ(failure.errorOr(NetworkError::unknown), HostError{2});
  EXPECT_EQ(silent.errorOr(NetworkError::unknown), NetworkError::unknown);
  EXPECT_FALSE(success == silent || failure == silent || success == Result<int>(2));
}

TEST(IndirectTest, copiesAndComparesDeeply) {
  Indirect<std::string> first = std::string("a");
  Indirect<std::string> second = first;
  EXPECT_EQ(first, second);
  *second = "b";
  EXPECT_EQ(*first, "a");
  EXPECT_NE(first, second);
  first = *&first;
  EXPECT_EQ(*first, "a");
  second = std::nullopt;
  EXPECT_NE(first, second);
  EXPECT_EQ(second, Indirect<std::string>());
  EXPECT_EQ(second.emplace(3, 'c'), "ccc");
  first = std::move(second);
  EXPECT_EQ(*first, "ccc");
}

TEST(ClosedRangeTest, isNeverUpsideDown) {
  EXPECT_FALSE(ClosedRange<double>::make(2, 1) || ClosedRange<double>::make(notANumber, 1) ||
               ClosedRange<double>::make(1, notANumber));
  const ClosedRange range = *ClosedRange<double>::make(1, 2);
  EXPECT_TRUE(range.contains(1) && range.contains(2) && !range.contains(2.5));
  EXPECT_TRUE(ClosedRange(1, 1).contains(1));
}

TEST_F(ValuesDeathTest, anUpsideDownRangeStopsTheProcess) {
  EXPECT_DEATH(ClosedRange(2, 1), "Fatal error: a range's lower bound exceeds .*: file .*, line ");
}

using Gender = User::Gender;

TEST(OneOfTest, comparesOrdersAndHashesByCaseAndData) {
  const Gender genders[] = {Gender::male(), Gender::female(), Gender::custom("a"),
                            Gender::custom("b"), Gender::custom("male")};
  const std::set<Gender> ordered(std::begin(genders), std::end(genders));
  const std::unordered_set<Gender> hashed(std::begin(genders), std::end(genders));
  EXPECT_EQ(ordered.size(), std::size(genders));
  EXPECT_EQ(hashed.size(), std::size(genders));
  EXPECT_NE(std::hash<Gender>()(genders[2]), std::hash<Gender>()(genders[3]));
  EXPECT_EQ(genders[2], Gender::custom("a"));
  const std::string text =
      genders[3].match([](const User::CustomGender& custom) { return custom.gender; },
                       [](const auto&) { return std::string("listed"); });
  EXPECT_EQ(text, "b");
}

TEST(HashTest, leavesTheTypesOfOthersAlone) {
  EXPECT_EQ(std::hash<application::Boxed<int>>()({7}), 2U);
}

TEST(EnumerationTest, hasTheTextsOfItsTable) {
  EXPECT_EQ(wireTexts<Verb>(), "GET POST PUT DELETE");
  EXPECT_EQ(wireTexts<ContentType>(), "image/jpeg");
  EXPECT_EQ(wireText(static_cast<Verb>(4)), "");
  EXPECT_EQ(fromWireText<Verb>("get"), std::nullopt);
  EXPECT_EQ(fromRawValue<Verb>(-1), std::nullopt);
  std::ostringstream printed;
  printed << Verb::put << ' ' << User::Gender::custom("any");
  EXPECT_EQ(printed.str(), "PUT any");
}

}  // namespace
}  // namespace orvane
