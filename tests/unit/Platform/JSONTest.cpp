// SPDX-License-Identifier: Apache-2.0
// What counts as a JSON text, and how one is written.
#include "tests/support/Values.h"
#include <Orvane/Coding/Codable.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/JSON.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>

namespace orvane {
namespace {

bool isValid(std::string text) { return json::Document(text).isValid(); }

void expectMalformed(std::initializer_list<std::string_view> texts) {
  for (const std::string_view text : texts) EXPECT_FALSE(isValid(std::string(text))) << text;
}

TEST(DocumentTest, checksTheWholeText) {
  for (const std::string_view valid :
       {"{}", "[]", "\"text\"", "1", "null", "true", " \t\r\n{\"a\":1} \n", "\xEF\xBB\xBF{}",
        "18446744073709551616", "-9223372036854775809", "1e308", "1e-999", "0.1e1",
        "\"\\ud83d\\ude00\"", "{\"a\":1,\"a\":2}", "\"\\u0000\"", "\"\xF0\x9F\x98\x80\"",
        "\"\x7F\""}) {
    EXPECT_TRUE(isValid(std::string(valid))) << valid;
  }
  expectMalformed({"", " ", "{", "}", "[1,]", "{\"a\":1,}", "{a:1}", "{'a':1}", "{\"a\" 1}",
                   "{\"a\":}", "{\"a\"}", "nul", "True", "{} {}", "{}x", "1 2", "// a\n{}"});
  expectMalformed({"01", "1.", ".5", "+1", "0x1", "NaN", "1e", "-", "1e400", "[1e999]"});
  expectMalformed({"\"a", "\"\\x\"", "\"\\u12\"", "\"\\ud800\"", "\"\\udc00\"",
                   "\"\\ud800\\u0041\"", "\"a\nb\"", "\"\xFF\"", "\"\xC0\xAF\"", "\"\xED\xA0\x80\"",
                   std::string_view("\"a\0b\"", 5)});
  expectMalformed({"\xEF\xBB\xBF", "{}\xEF\xBB\xBF", "\xEF\xBB\xBF\xEF\xBB\xBF{}",
                   std::string_view("{}\0", 3)});
}

TEST(DocumentTest, limitsTheDepth) {
  const auto nested = [](std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
  };
  EXPECT_TRUE(isValid(nested(json::deepestNesting)));
  EXPECT_FALSE(isValid(nested(json::deepestNesting + 2)));
  EXPECT_FALSE(isValid(std::string(1'000'000, '[')));
}

TEST(DocumentTest, keepsNothingOfTheTextBefore) {
  EXPECT_FALSE(isValid("[[[["));
  EXPECT_TRUE(isValid("[1]"));
  EXPECT_TRUE(isValid('[' + std::string(6'000'000, ' ') + ']'));
  std::string outerText = R"(["outer"])";
  const json::Document outer(outerText);
  EXPECT_TRUE(isValid("[\"inner\", " + std::string(1000, ' ') + "2]"));
  EXPECT_EQ(outer.root().at(0).get_string().value(), "outer");
}

TEST(WriterTest, writesMembersInOrderAndEscapesTexts) {
  json::Writer writer;
  writer.beginObject();
  writer.key("a\"b");
  writer.value(std::string_view("\"\\/\b\f\n\r\t\x01\x1F\x7F\xC3\xBC", 13));
  writer.key("list");
  writer.beginArray();
  for (const double number : {1.0, -0.0, 0.1, 1e21, 5e-324, 1e300}) writer.value(number);
  writer.value(std::numeric_limits<std::int64_t>::min());
  writer.value(true);
  writer.null();
  writer.value("");
  writer.beginArray();
  writer.endArray();
  writer.beginObject();
  writer.endObject();
  writer.endArray();
  writer.key("");
  writer.value(false);
  writer.endObject();
  EXPECT_EQ(writer.failure(), "");
  EXPECT_EQ(std::move(writer).take(),
            "{\"a\\\"b\":\"\\\"\\\\/\\u0008\\u000c\\n\\r\\t\\u0001\\u001f\x7F\xC3\xBC\","
            "\"list\":[1,-0.0,0.1,1e+21,5e-324,1e+300,-9223372036854775808,true,null,\"\",[],{}],"
            "\"\":false}");
}

TEST(WriterTest, refusesWhatJSONCannotHold) {
  for (const double number : {infinity, -infinity, notANumber}) {
    EXPECT_EQ(RecordCoding<double>::encode(number), EncodingError{"a number is not finite"});
  }
  for (const char* text : {"\xFF", "a\xC3", "\xED\xA0\x80"}) {
    EXPECT_EQ(RecordCoding<std::string>::encode(text), EncodingError{"a text is not UTF-8"});
  }
}

void expectReadBack(double number) {
  const auto text = RecordCoding<double>::encode(number);
  ASSERT_TRUE(text.value()) << number;
  const auto readBack = RecordCoding<double>::decode(*text.value());
  ASSERT_TRUE(readBack.value()) << *text.value();
  EXPECT_EQ(std::bit_cast<std::uint64_t>(*readBack.value()), std::bit_cast<std::uint64_t>(number))
      << *text.value();
}

TEST(WriterTest, writesDoublesThatReadBackTheSame) {
  using Limits = std::numeric_limits<double>;
  for (const double edge :
       {0.0, Limits::min(), Limits::max(), Limits::denorm_min(), Limits::epsilon(),
        0x1.fffffffffffffp-1022, 0x1p53, 0x1p53 + 2, 0x1p63, 0x1p64, 1e21, 1e22, 1e23, 0.1, 0.3,
        1.0 / 3, 123456789.125, 2.2250738585072011e-308}) {
    for (const double number : {edge, std::nextafter(edge, 0), std::nextafter(edge, 1e308)}) {
      expectReadBack(number);
      expectReadBack(-number);
    }
  }
  std::mt19937_64 random(42);
  for (int i = 0; i < 20'000; ++i) {
    if (const auto number = std::bit_cast<double>(random()); std::isfinite(number)) {
      expectReadBack(number);
    }
  }
}

// The shortest form, with an exponent where that is shorter still.
TEST(WriterTest, writesDoublesAsTheStandardLibraryDoes) {
  const auto expectShortest = [](double number) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    ASSERT_EQ(RecordCoding<double>::encode(number).value(), std::string(digits.data(), end));
  };
  for (const double number : {1e-3,
                              9.99e-4,
                              1.5e-3,
                              0.000001,
                              0.1,
                              0.5,
                              52.25,
                              1e4,
                              1e5,
                              100001.0,
                              1.2e6,
                              99999.0,
                              1e9,
                              999999999.0,
                              999999999.999999,
                              999999999.9999999,
                              1e9 - 1e-6,
                              1e15,
                              123456.7890125,
                              0.30000000000000004,
                              12.000001,
                              12.0000005}) {
    for (const double near : {number, std::nextafter(number, 0), std::nextafter(number, 1e308)}) {
      expectShortest(near);
      expectShortest(-near);
    }
  }
  std::mt19937_64 random(7);
  for (int i = 0; i < 20'000; ++i) {
    const auto whole = static_cast<double>(random() >> (random() % 50 + 14));
    expectShortest(std::max(whole, 1.0) / std::pow(10, static_cast<double>(random() % 10)));
  }
}

// Texts are written many bytes at once: every byte may stand at every place of a block.
TEST(WriterTest, escapesAtEveryPlace) {
  const std::pair<char, std::string_view> rows[] = {
      {'"', "\\\""},       {'\\', "\\\\"}, {'\n', "\\n"},   {'\0', "\\u0000"},
      {'\x1F', "\\u001f"}, {' ', " "},     {'!', "!"},      {'#', "#"},
      {'[', "["},          {']', "]"},     {'\x7F', "\x7F"}};
  for (const auto& [c, written] : rows) {
    for (std::size_t size = 1; size <= 50; ++size) {
      for (std::size_t at = 0; at < size; ++at) {
        std::string text(size, 'a');
        text[at] = c;
        std::string expected = '"' + std::string(size, 'a') + '"';
        expected.replace(at + 1, 1, written);
        if (at + 20 < size) {
          text[at + 20] = c;
          expected.replace(at + 20 + written.size(), 1, written);
        }
        ASSERT_EQ(RecordCoding<std::string>::encode(text).value(), expected);
        text[at] = '\xFF';
        ASSERT_TRUE(RecordCoding<std::string>::encode(text).error()) << size << ' ' << at;
      }
    }
  }
  json::Writer writer;
  writer.beginObject();
  writer.key("\xFF");
  EXPECT_EQ(writer.failure(), "a text is not UTF-8");
}

TEST(WriterTest, writesTextsThatReadBackTheSame) {
  std::string all;
  for (char c = 0; c < 127; ++c) all += c;
  all += "\x7F\xC2\x80\xE2\x80\xA8\xF0\x9F\x98\x80";
  EXPECT_EQ(RecordCoding<std::string>::decode(*RecordCoding<std::string>::encode(all).value()),
            Result<std::string>(all));
}

}  // namespace
}  // namespace orvane
