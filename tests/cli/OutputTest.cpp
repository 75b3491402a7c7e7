// SPDX-License-Identifier: Apache-2.0
// What people and programs read: texts made safe, units, tables, JSON.
#include "ExitCode.h"
#include "JSONText.h"
#include "Output.h"
#include <Orvane/Coding/Coding.h>
#include <Orvane/GoogleTest.h>
#include <Orvane/Platform/DeviceSettings.h>

#include <gmock/gmock.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <limits>
#include <memory>

namespace orvane::cli {
namespace {

TEST(TextTest, ShowsWhatWouldSteerATerminal) {
  const std::pair<std::string, const char*> rows[] = {
      {"", ""},
      {"plain, Zürich – 测试 😀", "plain, Zürich – 测试 😀"},
      {"\x1b[2J", "\\x1b[2J"},
      {"a\nb\tc\r", "a\\nb\\tc\\r"},
      {std::string("\0\x7f", 2), "\\x00\\x7f"},
      {"\xc2\x9b", "\\x9b"},                   // C1: one character that begins a sequence
      {"\xe2\x80\xae", "\\u202e"},             // turns the direction of writing
      {"\xff\xc3(", "\uFFFD\uFFFD("},          // no UTF-8
      {"\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD"},  // half of a surrogate pair
      {"\xf0\x9f\x98", "\uFFFD\uFFFD\uFFFD"},  // cut short
  };
  for (const auto& [text, shown] : rows) EXPECT_EQ(visible(text), shown);
}

TEST(TextTest, WritesJSON) {
  EXPECT_EQ(jsonText(""), "\"\"");
  EXPECT_EQ(jsonText("/tmp/Zürich \"1\"\\a\n\x1f"), "\"/tmp/Zürich \\\"1\\\"\\\\a\\u000a\\u001f\"");
}

TEST(TextTest, CutsByColumns) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  EXPECT_EQ(columnsOf("Zürich"), 6U);
  EXPECT_EQ(columnsOf("测试"), 4U);
  EXPECT_EQ(cut("Zürich", 6), "Zürich");
  EXPECT_EQ(cut("Zürich", 4), "Zür…");
  EXPECT_EQ(cut("测试测试", 6), "测试…");
  EXPECT_EQ(cut("测试测试", 4), "测…");
}

TEST(TextTest, Units) {
  EXPECT_EQ(decimal(1234.5, 1), "1234.5");
  EXPECT_EQ(decimal(1234.0, 3), "1234");
  EXPECT_EQ(decimal(-0.0001, 2), "0");
  EXPECT_EQ(decimal(std::numeric_limits<double>::infinity(), 2), "inf");
  EXPECT_EQ(decimal(std::numeric_limits<double>::max(), 0).size(), 309U);
  EXPECT_EQ(kilometresOf(12345.0), "12.3 km");
  EXPECT_EQ(kilometresPerHourOf(10.0), "36 km/h");
  EXPECT_EQ(durationOf(20.4), "20 s");
  EXPECT_EQ(durationOf(200.0), "3 min 20 s");
  EXPECT_EQ(durationOf(4320.0), "1 h 12 min");
  EXPECT_EQ(durationOf(-90.0), "-1 min 30 s");
  EXPECT_EQ(durationOf(1e300).back(), 's');
  EXPECT_EQ(durationOf(std::numeric_limits<double>::quiet_NaN()), "nan s");
}

TEST(TextTest, TimesWhateverTheBackendSends) {
  DeviceSettings::set({.timeZone = "America/New_York"});
  EXPECT_EQ(toText(dateFromSeconds(1500000000)), "2017-07-13 22:40:00 -04:00");
  EXPECT_EQ(toText(dateFromSeconds(-0.5)), "1969-12-31 18:59:59 -05:00");
  EXPECT_EQ(toText(dateFromSeconds(1e18)), "1000000000000000000 s after 1970");
  EXPECT_EQ(toText(dateFromSeconds(std::numeric_limits<double>::quiet_NaN())), "nan s after 1970");
  EXPECT_EQ(toText(DateComponents{987, 6, 5}), "0987-06-05");
  EXPECT_EQ(toText(DateComponents{1990, 5, std::nullopt}), "1990-05");
  EXPECT_EQ(toText(DateComponents{}), "-");
  DeviceSettings::set({});
}

TEST(TextTest, TimesOfATripAreThoseOfItsPlace) {
  DeviceSettings::set({.timeZone = "America/New_York"});
  const std::pair<std::optional<TimeZone>, std::string> rows[] = {
      {TimeZone::fromSeconds(19800), "2017-07-14 08:10:00 +05:30"},
      {TimeZone::fromSeconds(-12600), "2017-07-13 23:10:00 -03:30"},
      {TimeZone::fromSeconds(-1800), "2017-07-14 02:10:00 -00:30"},
      {TimeZone::fromSeconds(45900), "2017-07-14 15:25:00 +12:45"},
      {std::nullopt, "2017-07-13 22:40:00 -04:00"},
  };
  const Date date = dateFromSeconds(1500000000);
  for (const auto& [zone, shown] : rows) {
    EXPECT_EQ(localTime(date, zone), shown);
    EXPECT_EQ(localMinute(date, zone), shown.substr(0, 16));
    EXPECT_EQ(localTimeOfDay(date, zone), shown.substr(11, 8));
  }
  EXPECT_EQ(localMinute(dateFromSeconds(1e18), std::nullopt), "1000000000000000000 s after 1970");
  DeviceSettings::set({});
}

TEST(TextTest, DrivingInWords) {
  EXPECT_EQ(toText(TransportMode::unknown), "unknown");
  EXPECT_EQ(toText(TransportMode::passenger), "car-passenger");
  EXPECT_EQ(toText(Event::EventType::braking()), "harsh braking");
  EXPECT_EQ(toText(Event::EventType::postedSpeedLimit()), "above the limit");
  EXPECT_EQ(toText(Event::EventType::other("PhoneUse")), "PhoneUse");
  for (const char* text : {"distracted.driving", "distracted_driving"}) {
    EXPECT_EQ(toText(TripScores::SubScore::fromWireText(text)), "distracted driving");
  }
  EXPECT_EQ(toText(Event::Severity::veryHigh), "very high");
  EXPECT_EQ(toText(DriverDetection::Status::trained), "trained");
  for (const auto& row : allCases<TransportMode>()) {
    EXPECT_EQ(Argument<TransportMode>::parse(toText(row.value)), row.value);
  }
  EXPECT_EQ(Argument<TransportMode>::parse(""), std::nullopt);
  EXPECT_EQ(Argument<DrivingEventSeverity>::parse("HIGH"), DrivingEventSeverity::high);
  EXPECT_EQ(Argument<DrivingEventSeverity>::parse("3"), std::nullopt);
}

TEST(TextTest, ChoicesAreWrittenAsPeopleWould) {
  EXPECT_EQ(choiceName("WEEKEND_DRIVER"), "weekend-driver");
  EXPECT_EQ(choiceName("associatedUsers"), "associatedUsers");
  using Type = User::DriverType;
  for (const char* text : {"WEEKEND_DRIVER", "weekend-driver", "weekendDriver"}) {
    EXPECT_EQ(Argument<Type>::parse(text), Type::weekend_driver) << text;
  }
  for (const char* text : {"", "weekend", "weekend driver"}) {
    EXPECT_FALSE(Argument<Type>::parse(text)) << text;
  }
}

TEST(TextTest, ArgumentsAreReadToTheLastCharacter) {
  EXPECT_EQ(Argument<std::int64_t>::parse("-42"), -42);
  EXPECT_EQ(Argument<double>::parse("-300.5"), -300.5);
  EXPECT_EQ(Argument<double>::parse("25e-2"), 0.25);
  for (const char* text : {"", "4x", " 4", "9223372036854775808", "0x10"}) {
    EXPECT_FALSE(Argument<std::int64_t>::parse(text)) << text;
  }
  for (const char* text : {"", "1e999", "nan", "inf", "1,5", "+1", " 1", "0x1", "1e", "-"}) {
    EXPECT_FALSE(Argument<double>::parse(text)) << text;
  }
  EXPECT_EQ(Argument<DateComponents>::parse("2024-02-29"), (DateComponents{2024, 2, 29}));
  for (const char* text : {"2023-02-29", "2024-13-01", "24-02-29", "2024/02/29", "2024-02-2x",
                           "2024-02-290", "-024-02-29"}) {
    EXPECT_FALSE(Argument<DateComponents>::parse(text)) << text;
  }
}

struct Journey {
  std::string id;
  double metres;
  std::optional<std::string> mode;
};

// What `print` makes an output of `style` write.
template <class Print>
std::string printed(OutputStyle style, Print print) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  Output output(file.get(), style);
  print(output);
  output.flush();
  std::rewind(file.get());
  std::string text(4096, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), file.get()));
  return text;
}

TEST(OutputTest, TablesAndBlocks) {
  const auto print = [](Output& output) {
    output.block(Block()
                     .row("name", std::optional<std::string>("Ann\tB"))
                     .row("phone", std::optional<std::string>())
                     .row("date of birth", std::optional(DateComponents{1990, 5, 17})));
    output.section("empty", Block());
    const std::vector<Journey> journeys{{"1", 900.0, "a long text"}, {"22", 12345.0, {}}};
    output.section("trips", Table("trips", journeys,
                                  {{"id", &Journey::id},
                                   {"distance", &Journey::metres, kilometresOf},
                                   {"mode", &Journey::mode}}));
  };
  EXPECT_EQ(printed({.format = OutputStyle::Format::tabs}, print),
            "name\tAnn\\tB\n"
            "date of birth\t1990-05-17\n"
            "\n"
            "trips\n"
            "id\tdistance\tmode\n"
            "1\t0.9 km\ta long text\n"
            "22\t12.3 km\t\n");
  EXPECT_EQ(printed({.format = OutputStyle::Format::table, .columns = 22}, print),
            "name           Ann\\tB\n"
            "date of birth\n"
            "  1990-05-17\n"
            "\n"
            "trips\n"
            "id  distance  mode\n"
            "1     0.9 km  a long …\n"
            "22   12.3 km\n");
  EXPECT_EQ(printed({.format = OutputStyle::Format::table, .isColoured = true},
                    [](Output& output) {
                      output.table(Table("ids", std::vector<std::int64_t>{1},
                                         {{"id", [](std::int64_t id) { return id; }}}));
                    }),
            "\x1b[1mid\x1b[0m\n 1\n");
}

TEST(OutputTest, WholeColumnsGoBeforeACellIsCut) {
  const std::vector<Journey> journeys{{"trip-1", 123456.0, "a rather long text"}};
  const auto print = [&](Output& output) {
    output.table(Table("trips", journeys,
                       {{"id", &Journey::id, 1},
                        {"distance", &Journey::metres, kilometresOf},
                        {"mode", &Journey::mode},
                        {"again", &Journey::id, 2},
                        {"nothing", [](const Journey&) { return std::string(); }}}));
  };
  const std::pair<std::size_t, const char*> rows[] = {
      {80,
       "id      distance  mode                again\n"
       "trip-1  123.5 km  a rather long text  trip-1\n"},
      {43,
       "id      distance  mode\n"
       "trip-1  123.5 km  a rather long text\n"
       "There is no room for: again.\n"},
      {30,
       "distance  mode\n"
       "123.5 km  a rather long text\n"
       "There is no room for: id,\nagain.\n"},
      {20,
       "distance  mode\n"
       "123.5 km  a rather …\n"
       "There is no room\nfor: id, again.\n"},
      {4,
       "distance  mode\n"
       "123.5 km  a rathe…\n"
       "There\nis\nno\nroom\nfor:\nid,\nagain.\n"},
  };
  for (const auto& [columns, expected] : rows) {
    EXPECT_EQ(printed({.format = OutputStyle::Format::table, .columns = columns}, print), expected);
  }
  EXPECT_EQ(printed({.format = OutputStyle::Format::tabs, .columns = 20}, print),
            "id\tdistance\tmode\tagain\tnothing\n"
            "trip-1\t123.5 km\ta rather long text\ttrip-1\t\n");
  const auto empty = [](Output& output) {
    output.table(Table("trips", std::vector<Journey>(), {{"id", &Journey::id}}));
  };
  EXPECT_EQ(printed({.format = OutputStyle::Format::table}, empty), "No trips.\n");
  EXPECT_EQ(printed({}, empty), "id\n");
}

TEST(OutputTest, ANarrowColumnFollowsAWideOneThatHasNoRoom) {
  const std::vector<Journey> journeys{{"1", 1000.0, "a rather long text"}};
  const auto print = [&](Output& output) {
    output.block(Block().row("short", "one two").row("address", "https://somewhere"));
    output.table(Table("trips", journeys,
                       {{"id", &Journey::id},
                        {"mode", &Journey::mode, 1},
                        {"km", &Journey::metres, kilometresOf, 2}}));
  };
  EXPECT_EQ(printed({.format = OutputStyle::Format::table, .columns = 20}, print),
            "short    one two\naddress\n  https://somewhere\n"
            "id    km\n1   1 km\nThere is no room\nfor: mode.\n");
}

TEST(OutputTest, ATextOnATerminalEndsItsLine) {
  const auto print = [](Output& output) { output.raw("{}"); };
  EXPECT_EQ(printed({.format = OutputStyle::Format::raw}, print), "{}");
  EXPECT_EQ(printed({.format = OutputStyle::Format::raw, .isTerminal = true}, print), "{}\n");
}

TEST(OutputTest, TimesAreNeverCut) {
  DeviceSettings::set({.timeZone = "Europe/Zurich"});
  const std::vector<Date> dates{dateFromSeconds(1500000000)};
  EXPECT_EQ(
      printed({.format = OutputStyle::Format::table, .columns = 8},
              [&](Output& output) {
                output.table(Table("times", dates, {{"time", [](Date date) { return date; }}}));
              }),
      "time\n2017-07-14 04:40\n");
  DeviceSettings::set({});
}

TEST(OutputTest, LinesBreakAtBlanks) {
  EXPECT_EQ(wrapped("one two three", 7, 0, 0), "one two\nthree");
  EXPECT_EQ(wrapped("one two three", 9, 4, 2), "one\n  two\n  three");
  EXPECT_EQ(wrapped("incomprehensible words", 8, 0, 1), "incomprehensible\n words");
}

TEST(OutputTest, SaysNothingWhenTheReaderHasGone) {
  std::signal(SIGPIPE, SIG_IGN);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ::close(ends[0]);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(::fdopen(ends[1], "w"), std::fclose);
  Output output(stream.get(), {});
  output.line("a line");
  try {
    output.flush();
    FAIL() << "the line was written";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), ExitCode::output);
    EXPECT_STREQ(failure.what(), "");
  }
}

TEST(JSONTextTest, IsLaidOutWithoutBeingChanged) {
  User user;
  user.id = R"(a "quoted\" {text}, [with: everything])";
  user.associatedUsers = {User{}, User{.activated = true}};
  user.userRole = UserRole{.roleNames = std::vector<UserRole::RoleName>{}};
  const std::string compact = *encode(user).value();
  EXPECT_EQ(decode<User>(indentedJSON(compact)), user);
  EXPECT_EQ(compactJSON(indentedJSON(compact)), compact);
  EXPECT_EQ(indentedJSON(" {\"a\" : [ ],\n\"b\":{},\"c\":[1.50,{\"d\":\"}, [\"}]} "),
            "{\n  \"a\": [],\n  \"b\": {},\n  \"c\": [\n    1.50,\n    {\n      \"d\": \"}, "
            "[\"\n    }\n  ]\n}");
  // What is no JSON breaks nothing.
  for (const char* text : {"", "\"", "\\", "]}", "[", "{\"a\\"}) {
    EXPECT_LE(compactJSON(indentedJSON(text)).size(), std::string_view(text).size() + 1) << text;
  }
}

TEST(JSONTextTest, IsTakenApart) {
  using testing::ElementsAre;
  EXPECT_THAT(elementsOf(R"( [1.0 , "a,]\"" , {"b":[2,3]},[] ] )"),
              ElementsAre("1.0", R"("a,]\"")", R"({"b":[2,3]})", "[]"));
  for (const char* text : {"", "[]", "{\"a\":1}", "\"[1]\"", "[ \n"}) {
    EXPECT_THAT(elementsOf(text), testing::IsEmpty()) << text;
  }
  constexpr std::string_view object = R"({"a":1,"items" : [2], "b":{"items":3},"items":[4, 5]})";
  EXPECT_EQ(memberOf(object, "items"), "[4, 5]");
  EXPECT_EQ(memberOf(object, "c"), "");
  EXPECT_EQ(arrayOf(elementsOf("[61.8,1e5]")), "[61.8,1e5]");
  EXPECT_EQ(arrayOf({}), "[]");
}

}  // namespace
}  // namespace orvane::cli
