// SPDX-License-Identifier: Apache-2.0
// Numbers of any length, in members of every kind and in those that nobody reads.
#include "tests/support/Records.h"
#include "tests/support/Values.h"
#include <Orvane/GoogleTest.h>
#include <Orvane/Models/Event.h>
#include <Orvane/Models/User.h>
#include <Orvane/Platform/JSON.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {
namespace {

using Information = User::SharedInformation;
using enum Event::Severity;

std::string zeros(std::size_t count) { return std::string(count, '0'); }

std::string with(std::string_view key, std::string_view literal) {
  return "{\"" + std::string(key) + "\":" + std::string(literal) + '}';
}

std::string eventOfLevel(std::string_view literal) {
  return R"({"latitude":1,"longitude":2,"timeStamp":3,"transportMode":"BUS","level":)" +
         std::string(literal) + '}';
}

struct NumberRow {
  std::string literal;
  std::optional<std::int64_t> integer{};           // absent where it is none of 64 bits
  std::optional<Event::Severity> level = veryLow;  // absent where it is no integer of any size
};

const NumberRow numbers[] = {
    {"0", 0},
    {"-0", 0},
    {"-0.0", 0},
    {"0e400", 0},
    {"0E-400", 0},
    {"0." + zeros(400) + "e999", 0},
    {"1e-400", 0},
    {"1e-99999999999999999999", 0},
    {"1.0E+2", 100},
    {"3", 3, medium},
    {"3.0", 3, medium},
    {"0.3e00000000000000000000001", 3, medium},
    {"3" + zeros(400) + "e-400", 3, medium},
    {"0." + zeros(400) + "3e401", 3, medium},
    {"9223372036854775807", most},
    {"-9223372036854775808", least},
    {"-9.223372036854775808e18", least},
    {"9223372036854775808"},
    {"18446744073709551615"},
    {"18446744073709551616"},
    {"18446744073709553664"},  // a tie, and one behind it
    {"18446744073709553665"},
    {"-9223372036854775809"},  // the nearest double is that of the least integer
    {"-9223372036854776832"},  // a tie, and one behind it
    {"-9223372036854776833"},
    {"-18446744073709551616"},
    {"1e19"},
    {"-1e300"},
    {"123456789012345678901234567890"},
    {"1" + zeros(308)},
    {"-1" + zeros(308)},
    {"2.5", {}, {}},
    {"1.000000000000000000000000000000000000000000001e1", 10},  // no double tells it from 10
    {"-0.1234567890123456789012345678901234567890e-5", {}, {}},
};

TEST(NumbersTest, areNearestDoublesAndExactIntegers) {
  for (const NumberRow& row : numbers) {
    SCOPED_TRACE(row.literal);
    const auto information = decode<Information>(with("totalDistanceDriven", row.literal));
    ASSERT_TRUE(information.value());
    EXPECT_EQ(information.value()->totalDistanceDriven, std::strtod(row.literal.c_str(), nullptr));

    const std::string aged = with("age", row.literal);
    if (row.integer) {
      EXPECT_EQ(decode<Information>(aged), Information{.age = row.integer});
    } else {
      EXPECT_EQ(failure<Information>(aged), "typeMismatch age");
    }
    EXPECT_EQ(decode<User>(with("acceptedTermsDate", row.literal)),
              row.integer ? User{.acceptedTermsDate = dateFromMilliseconds(*row.integer)} : User{});

    if (row.level) {
      EXPECT_EQ(decode<Event>(eventOfLevel(row.literal)).value()->severity, row.level);
    } else {
      EXPECT_EQ(failure<Event>(eventOfLevel(row.literal)), "typeMismatch level");
    }
  }
}

TEST(NumbersTest, thatNobodyReadsChangeNothing) {
  for (const NumberRow& row : numbers) {
    const std::string text = R"({"\"-12345678901234567890\\":[[)" + row.literal +
                             ",{\"x\":" + row.literal +
                             "\n}]],\"city\":\"\\\\12345678901234567890\\\"," +
                             R"(\u0031","age":7,"unread":)" + row.literal + '}';
    EXPECT_EQ(decode<Information>(text),
              (Information{.city = "\\12345678901234567890\",1", .age = 7}))
        << text;
  }
}

TEST(NumbersTest, outsideADoublesRangeOrTheGrammarFailTheText) {
  for (const std::string& literal : {std::string("1e400"),
                                     "-1" + zeros(400),
                                     "1" + zeros(309),
                                     "2" + zeros(308) + ".0",
                                     std::string("1e99999999999999999999"),
                                     std::string("012345678901234567890"),
                                     std::string("-012345678901234567890"),
                                     std::string("00"),
                                     std::string("+1"),
                                     std::string("+12345678901234567890123"),
                                     std::string("1."),
                                     std::string(".5"),
                                     std::string("12345678901234567890123."),
                                     std::string(".12345678901234567890123"),
                                     std::string("12345678901234567890123e"),
                                     std::string("--12345678901234567890123"),
                                     std::string("12345678901234567890123-1"),
                                     std::string("12345678901234567890123 1"),
                                     std::string("12345678901234567890123x"),
                                     std::string("0x12345678901234567890123"),
                                     std::string("12345678901234567890123\"\""),
                                     std::string("-"),
                                     std::string("NaN"),
                                     std::string("Infinity")}) {
    for (const char* key : {"unread", "totalDistanceDriven", "age"}) {
      EXPECT_EQ(failure<Information>(with(key, literal)), "malformedText") << literal;
    }
    // Beside a long integer, too, for which the text is read twice.
    EXPECT_EQ(failure<Information>("[12345678901234567890123," + literal + ']'), "malformedText");
  }
}

TEST(NumbersTest, longOnesLeaveTheTextAsItIs) {
  const std::string original = "[1,123456789012345678901234567890,\"\"]";
  std::string text = original;
  const json::Document document(text);
  ASSERT_TRUE(document.isValid());
  EXPECT_EQ(text, original);
  EXPECT_EQ(document.root().at(1).get_double().value(), 1.2345678901234568e29);
}

}  // namespace
}  // namespace orvane
