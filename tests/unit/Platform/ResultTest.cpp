// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/DeathTest.h"
#include <Orvane/Common/NetworkError.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Result.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orvane {
namespace {

using Number = Result<int>;
using Text = Result<std::string>;

const Number one = 1;
const Number failed = NetworkError::noData;
const Number silent;

TEST(ResultTest, goesOnWithItsValueOrStaysTheFailure) {
  struct Row {
    Number from;
    Text andThen;
    Text transformed;
    Number recovered;
    int valueOr;
  };
  const Row rows[] = {
      {one, Text("1!"), Text("1"), one, 1},
      {0, NetworkError::unknown, Text("0"), 0, 0},
      {failed, NetworkError::noData, NetworkError::noData, 7, 9},
      {silent, Text(), Text(), silent, 9},
  };
  const auto next = [](int value) -> Text {
    if (value == 0) return NetworkError::unknown;
    return std::to_string(value) + "!";
  };
  const auto recover = [](const auto& error) -> Number {
    EXPECT_EQ(error, NetworkError::noData);
    return 7;
  };
  for (const auto& [from, andThen, transformed, recovered, valueOr] : rows) {
    Number movable = from;
    EXPECT_EQ(from.and_then(next), andThen);
    EXPECT_EQ(Number(from).and_then(next), andThen);
    EXPECT_EQ(from.transform([](int value) { return std::to_string(value); }), transformed);
    EXPECT_EQ(from.transform([](int) {}),
              transformed.transform([](const auto&) { return Unit{}; }));
    EXPECT_EQ(from.or_else(recover), recovered);
    EXPECT_EQ(movable.and_then([](int& value) -> Number { return value; }), from);
    EXPECT_EQ(movable.transform([](int& value) { return value; }), from);
    EXPECT_EQ(std::move(movable).or_else(recover), recovered);
    EXPECT_EQ(from.value_or(9), valueOr);
    EXPECT_EQ(from.has_value(), static_cast<bool>(from));
  }
}

TEST(ResultTest, givesItsValueAway) {
  Result<std::unique_ptr<std::string>> owner = std::make_unique<std::string>("a");
  owner->get()->append("b");
  EXPECT_EQ(**owner, "ab");
  struct Car {
    std::string name;
    [[nodiscard]] std::size_t length() const { return name.size(); }
  };
  const Result<Car> car = Car{"a car"};
  EXPECT_EQ(car.transform(&Car::name), Text("a car"));
  EXPECT_EQ(car.transform(&Car::length).value_or(0), 5U);
  auto moved = std::move(owner).transform([](std::unique_ptr<std::string> text) { return text; });
  EXPECT_EQ(*std::move(moved).value_or(nullptr), "ab");
}

using ResultDeathTest = DeathTest;

TEST_F(ResultDeathTest, aFailureHasNoValue) {
  EXPECT_DEATH(std::ignore = *failed, "value of a failure was read: the backend's answer is empty");
  EXPECT_DEATH(std::ignore = Text()->size(), "value of a failure was read: it came without");
}

TEST(ErrorTest, aContextIsAddedAndTakesNoPart) {
  const Error bare = NetworkError::invalidStatusCode(404);
  const Error told = bare.with({.status = 404, .reason = "no such user"})
                         .with({.operation = "GET users/9", .reason = "somebody else's"});
  EXPECT_EQ(bare, told);
  EXPECT_EQ(told, NetworkError::invalidStatusCode(404));
  EXPECT_EQ(bare.context(), nullptr);
  EXPECT_EQ(*told.context(), (ErrorContext{"GET users/9", 404, "no such user", ""}));
  EXPECT_EQ(told.as<NetworkError>()->statusCode(), 404);
  EXPECT_EQ(told.message(), bare.message());
  EXPECT_EQ(bare.description(), bare.message());
  EXPECT_EQ(told.description(), "GET users/9: " + bare.message() + ": no such user");
  EXPECT_EQ(Error(NetworkError::noData).with({.finding = "[0]: x"}).description(),
            NetworkError::noData.message() + ": [0]: x");
}

TEST(ErrorTest, saysWhetherItPasses) {
  struct Row {
    Error error;
    bool passes;
  };
  using Refusal = NetworkError;
  for (const auto& [error, passes] :
       {Row{Refusal::invalidStatusCode(428), false}, Row{Refusal::invalidStatusCode(429), true},
        Row{Refusal::invalidStatusCode(501), false}, Row{Refusal::invalidStatusCode(502), true},
        Row{Refusal::invalidStatusCode(504), true}, Row{Refusal::invalidStatusCode(505), false},
        Row{Refusal::noData, false}, Row{DataError{}, false}}) {
    EXPECT_EQ(error.isTransient(), passes) << error.message();
    EXPECT_EQ(error.with({.reason = "a"}).isTransient(), passes) << error.message();
  }
}

TEST(ErrorTest, theReasonOfARefusalIsOneLineOfWords) {
  struct Row {
    std::string body;
    std::string reason;
  };
  const std::string euros(600, 'e');
  for (const auto& [body, reason] : {
           Row{"", ""},
           Row{" \r\n\t", ""},
           Row{R"({"message":"No such\nuser"})", "No such user"},
           Row{R"({"error":"Not Found"})", "Not Found"},
           Row{R"({"error":"Not Found","status":404,"message":"No such user"})",
               "Not Found: No such user"},
           Row{R"({"error":"same","message":"same"})", "same"},
           Row{R"({"error":{"code":1},"message":17})", ""},
           Row{R"(["a"])", ""},
           Row{R"({"message":"cut)", R"({"message":"cut)"},
           Row{"\xEF\xBB\xBF{\"message\":\"marked\"}", "marked"},
           Row{"first line\r\nsecond", "first line"},
           Row{"\n\n  late \x1b[31mred\x07  one", "late [31mred one"},
           Row{"turned \u202Eround", "turned round"},
           Row{"broken \xC3 text", "broken \uFFFD text"},
           Row{"<!DOCTYPE html><HTML><head><Title lang=\"de\">\n Log &amp; in </title>",
               "an HTML page, \"Log &amp; in\""},
           Row{"<html><body>", "an HTML page"},
           Row{R"({"message":"no <html> tags"})", "no <html> tags"},
           Row{"only <HTML5> here", "only <HTML5> here"},
           Row{"<?xml version='1.0'?>\n<error/>", "<?xml version='1.0'?>"},
           Row{euros, euros.substr(0, 500)},
           Row{R"({"message":")" + euros + R"("})", euros.substr(0, 500)},
       }) {
    EXPECT_EQ(reasonIn(body), reason);
  }
}

}  // namespace
}  // namespace orvane
