// SPDX-License-Identifier: Apache-2.0
// What every record's coding has in common, shown on a record that has one member of each kind.
#include "tests/support/Records.h"
#include "tests/support/Values.h"
#include "tests/unit/DeathTest.h"
#include <Orvane/Coding/Codable.h>
#include <Orvane/Coding/Record.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/Text.h>

#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

enum class TestLevel : std::uint8_t { low, high, unknown };
template <>
struct EnumerationTable<TestLevel> {
  static constexpr EnumerationCase<TestLevel> cases[] = {
      {TestLevel::low, "LOW"}, {TestLevel::high, "HIGH"}, {TestLevel::unknown, "UNKNOWN"}};
  static constexpr bool isJSONText = true;
  static constexpr TestLevel fallback = TestLevel::unknown;
};

enum class TestState : std::uint8_t { on, off };
template <>
struct EnumerationTable<TestState> {
  static constexpr EnumerationCase<TestState> cases[] = {{TestState::on, "ON"},
                                                         {TestState::off, "OFF"}};
  static constexpr bool isJSONText = true;
};

struct TestInner {
  std::optional<std::int64_t> a{};
  std::optional<std::string> b{};
  friend bool operator==(const TestInner&, const TestInner&) = default;
};

struct TestSample {
  std::optional<bool> flag{};
  std::optional<double> number{};
  std::optional<std::int64_t> integer{};
  std::optional<std::string> text{};
  std::optional<std::vector<TestInner>> list{};
  Indirect<TestInner> inner{};
  std::optional<Date> time{};
  std::optional<TestLevel> level{};
  std::optional<TestState> state{};
  friend bool operator==(const TestSample&, const TestSample&) = default;
};

struct TestStrict {
  std::int64_t must = 0;
  TestInner record{};
  std::optional<std::string> nullable{};
  std::optional<std::string> indispensable{};
  friend bool operator==(const TestStrict&, const TestStrict&) = default;
};

namespace {

constexpr KeyRow innerKeys[] = {
    key<&TestInner::a>("a"),
    key<&TestInner::b>("b"),
};
constexpr KeyRow sampleKeys[] = {
    key<&TestSample::flag>("flag"),
    key<&TestSample::number>("number"),
    key<&TestSample::integer>("integer"),
    key<&TestSample::text>("text"),
    key<&TestSample::list>("list"),
    key<&TestSample::inner>("inner"),
    key<&TestSample::time, Milliseconds>("time"),
    key<&TestSample::level>("level"),
    key<&TestSample::state>("state"),
};
constexpr KeyRow strictKeys[] = {
    required<&TestStrict::must>("must"),
    required<&TestStrict::record>("record"),
    required<&TestStrict::nullable>("nullable"),
    indispensable<&TestStrict::indispensable>("indispensable"),
};

}  // namespace

template <>
inline constexpr bool hasCoding<TestInner> = true;
template <>
inline constexpr bool hasCoding<TestSample> = true;
template <>
inline constexpr bool hasCoding<TestStrict> = true;

inline KeyTables keysOf(RecordTag<TestInner>) { return innerKeys; }
inline KeyTables keysOf(RecordTag<TestSample>) { return sampleKeys; }
inline KeyTables keysOf(RecordTag<TestStrict>) { return strictKeys; }

namespace {

using CodingDeathTest = DeathTest;

constexpr std::string_view wholeText =
    R"({"flag":false,"number":-0.5,"integer":-9223372036854775808,"text":"\"ü\"","list":[{"a":1},{}],)"
    R"("inner":{"a":2,"b":""},"time":1500000000001,"level":"HIGH","state":"OFF"})";

TestSample wholeSample() {
  return {.flag = false,
          .number = -0.5,
          .integer = INT64_MIN,
          .text = "\"ü\"",
          .list = std::vector<TestInner>{{.a = 1}, {}},
          .inner = TestInner{.a = 2, .b = ""},
          .time = dateFromMilliseconds(1'500'000'000'001),
          .level = TestLevel::high,
          .state = TestState::off};
}

TEST(CodingTest, mirrorsARecord) {
  expectMirrored(wholeText, wholeSample());
  EXPECT_EQ(encode(TestSample{}), Result<std::string>("{}"));
  EXPECT_EQ(encode(std::vector<TestInner>{{.a = 1}, {}}), Result<std::string>(R"([{"a":1},{}])"));
}

TEST(CodingTest, readsMembersWhereverTheyStand) {
  const std::pair<std::string_view, TestSample> rows[] = {
      {"{}", {}},
      {"\xEF\xBB\xBF { } \n", {}},
      {R"({"Flag":true,"flag ":true,"unread":{"flag":true},"":1})", {}},
      {R"({"state":null,"level":null,"time":null,"inner":null,"list":null,"flag":null})", {}},
      {R"({"state":"ON","x":[1,{}],"integer":3,"flag":true})",
       {.flag = true, .integer = 3, .state = TestState::on}},
      {R"({"\u0066lag":true})", {.flag = true}},
      {R"({"level":"LOUD"})", {.level = TestLevel::unknown}},
      {R"({"list":[]})", {.list = std::vector<TestInner>{}}},
      // Of duplicates the last one counts, alone.
      {R"({"integer":1,"integer":2})", {.integer = 2}},
      {R"({"integer":1,"integer":null})", {}},
      {R"({"integer":"bad","integer":2})", {.integer = 2}},
      {R"({"integer":null,"flag":true,"integer":2})", {.flag = true, .integer = 2}},
      {R"({"list":[{"a":1},{"a":true}],"list":[{"b":"x"}]})",
       {.list = std::vector<TestInner>{{.b = "x"}}}},
      {R"({"inner":{"a":1,"b":"x"},"inner":{"b":"y"}})", {.inner = TestInner{.b = "y"}}},
      {R"({"inner":{"a":1,"a":null}})", {.inner = TestInner{}}},
      {R"({"time":1,"time":null})", {}},
  };
  for (const auto& [json, sample] : rows) EXPECT_EQ(decode<TestSample>(json), sample) << json;
}

TEST(CodingTest, anIntegerIsAnyNumberWithThatValue) {
  const std::pair<std::string_view, std::int64_t> rows[] = {
      {"3", 3},
      {"3.0", 3},
      {"3e2", 300},
      {"-0.0", 0},
      {"9223372036854775807", most},
      {"-9223372036854775808", least},
      {"-9.223372036854775808e18", least},
  };
  for (const auto& [json, integer] : rows)
    EXPECT_EQ(RecordCoding<std::int64_t>::decode(json), integer) << json;
  for (const std::string_view json :
       {"3.5", "9223372036854775808", "18446744073709551615", "9.223372036854775808e18", "1e300",
        "-1e300", "5e-324", "true", "\"3\"", "[3]", "{}"}) {
    EXPECT_FALSE(RecordCoding<std::int64_t>::decode(json)) << json;
  }
  EXPECT_EQ(RecordCoding<double>::decode("18446744073709551615").value(), 0x1p64);
  EXPECT_EQ(RecordCoding<double>::decode("true").value(), std::nullopt);
  EXPECT_EQ(RecordCoding<bool>::decode("1").value(), std::nullopt);
  EXPECT_EQ(RecordCoding<bool>::decode("\"true\"").value(), std::nullopt);
  EXPECT_EQ(RecordCoding<std::string>::decode("1").value(), std::nullopt);
  EXPECT_EQ(RecordCoding<std::string>::decode(" \"bare\" ").value(), "bare");
}

// As many numbers as fit into a text of a few megabytes would be gigabytes of records.
TEST(CodingTest, takesNoMemoryForElementsThatAreNone) {
  std::string text = "[0";
  for (int i = 1; i < 100'000; ++i) text += ",0";
  text += ']';
  const json::Document document(text);
  Decoder decoder(document);
  std::vector<TestSample> samples;
  EXPECT_FALSE(decodeValue(document.root(), samples, decoder));
  EXPECT_LE(samples.capacity() * sizeof(TestSample), std::size_t{5} << 20U);
  std::vector<double> numbers;
  EXPECT_TRUE(decodeValue(document.root(), numbers, decoder));
  EXPECT_EQ(numbers.capacity(), 100'000U) << "what does fit is taken at once";
}

TEST(CodingTest, aRequiredMemberMustBeThere) {
  constexpr std::string_view text =
      R"({"must":1,"record":{"a":1},"nullable":"n","indispensable":"i"})";
  TestStrict strict;
  strict.must = 1;
  strict.record.a = 1;
  strict.nullable = "n";
  strict.indispensable = "i";
  expectMirrored(text, strict);
  expectNeeds<TestStrict>(text, {"must", "record", "nullable", "indispensable"});

  // A record that takes the place of an earlier duplicate has none of its members.
  EXPECT_EQ(
      decode<TestStrict>(
          R"({"record":{"a":1,"b":"x"},"must":1,"nullable":"n","indispensable":"i","record":{}})")
          .value()
          ->record,
      TestInner{});

  strict.nullable.reset();
  EXPECT_EQ(
      encode(strict),
      Result<std::string>(R"({"must":1,"record":{"a":1},"nullable":null,"indispensable":"i"})"));
  strict.indispensable.reset();
  EXPECT_EQ(encodeChecked(strict).error(),
            Error(EncodingError{"a record without \"indispensable\" can't be encoded"}));
}

TEST_F(CodingDeathTest, writingWhatOnlyAFaultCanHaveMadeStopsTheProcess) {
  EXPECT_DEATH((void)encode(TestStrict{}),
               "Fatal error: a record without \"indispensable\" can't be enc");
  const TestSample timeless{.time = dateFromSeconds(notANumber)};
  EXPECT_DEATH((void)encode(timeless), "Fatal error: a point in time does not fit in 64 bits");
  EXPECT_TRUE(encodeChecked(timeless).error());
}

using Kind = DecodingError::Kind;

struct FailureRow {
  std::string_view json;
  Kind kind;
  std::string path;  // with a blank between the steps
  std::string description;
};

// The place is the path, indexes following without a dot.
template <class T>
void expectFailures(const std::vector<FailureRow>& rows) {
  for (const FailureRow& row : rows) {
    DecodingError expected{row.kind, row.description, {}, {}};
    std::istringstream steps(row.path);
    for (std::string step; steps >> step;) {
      expected.location += (expected.location.empty() || step[0] == '[' ? "" : ".") + step;
      expected.codingPath.push_back(step);
    }
    const Result<T> result = decode<T>(row.json);
    EXPECT_EQ(result, expected) << row.json;
    const std::string place = row.path.empty() ? "" : expected.location + ": ";
    EXPECT_EQ(result.errorOr(DecodingError{}).message(), place + row.description);
  }
}

TEST(DecodingErrorTest, saysWhatWasExpectedWhere) {
  using enum DecodingError::Kind;
  expectFailures<std::vector<TestSample>>({
      {"{}", typeMismatch, "", "an array was expected, found an object"},
      {"[null]", valueNotFound, "[0]", "an object was expected, found null"},
      {R"([{},{"flag":1}])", typeMismatch, "[1] flag",
       "true or false was expected, found the number 1"},
      {R"([{"flag":"yes","integer":1.5}])", typeMismatch, "[0] flag",
       "true or false was expected, found the text \"yes\""},
      {R"([{"list":[{"a":1},{"a":1.5}]}])", typeMismatch, "[0] list [1] a",
       "an integer was expected, found the number 1.5"},
      {R"([{"list":[null]}])", valueNotFound, "[0] list [0]", "an object was expected, found null"},
      {R"([{"inner":{"b":[]}}])", typeMismatch, "[0] inner b",
       "a text was expected, found an array"},
      {R"([{"time":true}])", typeMismatch, "[0] time", "an integer was expected, found true"},
      {R"([{"state":"on"}])", dataCorrupted, "[0] state", "no case has the wire text \"on\""},
      {R"([{"integer":1,"integer":"late"}])", typeMismatch, "[0] integer",
       "an integer was expected, found the text \"late\""},
      {R"([{"number":"0123456789012345678901234567890123456789x"}])", typeMismatch, "[0] number",
       "a number was expected, found the text \"0123456789012345678901234567890123456789…\""},
  });
  expectFailures<TestStrict>({
      {"{}", keyNotFound, "must", "a required member is missing"},
      {R"({"must":null})", valueNotFound, "must", "a value was expected, found null"},
  });
}

// Texts are not cut in the middle of a character: the description would be no UTF-8.
TEST(DecodingErrorTest, quotesWholeCharacters) {
  std::string text = "\"" + std::string(39, 'x') + "üüü\"";
  const auto result = RecordCoding<bool>::decode(text);
  EXPECT_TRUE(isUTF8(result.error()->message())) << result.error()->message();
}

TEST(DecodingErrorTest, malformedTextsFailWhetherReadOrNot) {
  for (const std::string_view json :
       {"", "nul", R"({"unread":1e999})", R"({"unread":[1,]})", R"({"unread":"\ud800"})",
        "{\"unread\":\"\xFF\"}", R"({"unread":tru})", R"({"flag":true} x)", R"({"flag":true}{})"}) {
    const auto result = decode<TestSample>(json);
    ASSERT_TRUE(result.error()) << json;
    const auto& error = *result.error()->as<DecodingError>();
    EXPECT_EQ(error.kind, Kind::malformedText) << json;
    EXPECT_TRUE(error.location.empty() && error.codingPath.empty() && !error.description.empty());
  }
}

}  // namespace
}  // namespace orvane
