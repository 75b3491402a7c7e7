// SPDX-License-Identifier: Apache-2.0
// Charts by day: what the axes say, how days become bars, and that gaps stay gaps.
#include "ChartAxes.h"
#include "DayChart.h"
#include <Orvane/GoogleTest.h>

#include <gmock/gmock.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <regex>
#include <tuple>

namespace orvane::cli {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::sys_days;
using testing::HasSubstr;
using testing::Not;

using Usual = std::optional<std::pair<double, double>>;

constexpr double largest = std::numeric_limits<double>::max();
constexpr sys_days start = 2024y / 5 / 11;  // a Saturday

std::string labelsOf(const std::optional<ValueAxis>& axis) {
  if (!axis) return "none";
  std::string labels;
  for (std::size_t tick = 0; tick <= axis->steps; ++tick) labels += axis->label(tick) + " ";
  return labels;
}

TEST(ChartAxesTest, ValuesAreRound) {
  constexpr Usual percent = std::pair(0.0, 100.0);
  const std::tuple<std::vector<double>, Usual, const char*> rows[] = {
      {{81.3, 97.6}, percent, "80 85 90 95 100 "},
      {{0, 100}, percent, "0 50 100 "},
      {{88}, percent, "80 85 90 95 "},
      {{100}, percent, "94 96 98 100 "},
      {{100}, {}, "95 100 105 "},
      {{0, 0}, percent, "0 0.2 0.4 0.6 "},
      {{99, 101}, percent, "90 95 100 105 110 "},
      {{-3, 4}, {}, "-4 -2 0 2 4 "},
      {{-0.3, 0.3}, {}, "-0.4 -0.2 0 0.2 0.4 "},
      {{0.12, 0.47}, {}, "0.1 0.2 0.3 0.4 0.5 "},
      {{12e6, 47e6}, {}, "1e+07 2e+07 3e+07 4e+07 5e+07 "},
      {{1e-9, 4e-9}, {}, "1e-09 2e-09 3e-09 4e-09 "},
      {{-largest, largest}, {}, "none"},
      {{largest}, {}, "none"},
      {{5e-324}, {}, "none"},
  };
  for (const auto& [values, usual, labels] : rows) {
    EXPECT_EQ(labelsOf(valueAxis(values, 4, usual)), labels) << testing::PrintToString(values);
  }
}

TEST(ChartAxesTest, EveryValueLiesOnItsAxis) {
  for (int i = 0; i < 28; ++i) {
    for (int k = 0; k < 30; ++k) {
      const double least = -50 + 3.7 * i;
      const double span = 1e-6 * std::pow(3.3, k);
      const std::vector<double> values{least, least + span};
      const auto axis = valueAxis(values, 4, {});
      ASSERT_TRUE(axis);
      EXPECT_GE(axis->position(least), -1e-9) << least << ' ' << span;
      EXPECT_LE(axis->position(least + span), 1 + 1e-9) << least << ' ' << span;
      EXPECT_LE(axis->steps, 9U) << least << ' ' << span;
    }
  }
}

TEST(ChartAxesTest, DaysAreThoseThatPeopleLookAt) {
  constexpr std::size_t most = 5;
  const std::tuple<sys_days, int, std::string> rows[] = {
      {start, 1, "11 May "},
      {start, 5, "11 May 12 May 13 May 14 May 15 May "},
      {start, 6, "11 May 13 May 15 May "},
      {start, 31, "13 May 20 May 27 May 3 Jun 10 Jun "},
      {start, 62, "13 May 27 May 10 Jun 24 Jun 8 Jul "},
      {start, 120, "Jun Jul Aug Sep "},
      {start, 366, "Jul Oct 2025 Apr "},
      {2023y / 1 / 1, 366, "2023 Apr Jul Oct 2024 "},
      {1961y / 7 / 2, 9000, "1965 1970 1975 1980 1985 "},
      {1y / 1 / 1, 3652000, "5000 "},
      {1960y / 1 / 1, 31, "4 Jan 11 Jan 18 Jan 25 Jan "},
  };
  for (const auto& [first, count, expected] : rows) {
    const auto ticks = dayTicks(first, first + days(count - 1), most);
    std::string labels;
    for (const DayTick& tick : ticks) labels += tick.label + " ";
    EXPECT_EQ(labels, ticks.size() > most ? "too many" : expected) << count;
  }
}

// A chart of days counted from the start, each with its value.
DayChart chartOf(int length, const std::vector<std::pair<int, double>>& values) {
  DayChart chart{.title = "Score", .period = std::pair(start, start + days(length - 1))};
  for (const auto& [day, value] : values) chart.points.push_back({start + days(day), value});
  chart.usualValues = std::pair(0.0, 100.0);
  return chart;
}

std::string drawn(const DayChart& chart, std::size_t columns, bool isUnicode = true) {
  std::string text;
  for (const std::string& line : chartLines(
           chart,
           {.format = OutputStyle::Format::table, .isUnicode = isUnicode, .columns = columns})) {
    EXPECT_LE(columnsOf(line), columns) << line;
    text += line + "\n";
  }
  return text;
}

class DayChartTest : public testing::Test {
 protected:
  void SetUp() override { std::setlocale(LC_CTYPE, "C.UTF-8"); }
};

TEST_F(DayChartTest, DaysAreBarsAndMissingDaysGaps) {
  const DayChart week = chartOf(7, {{0, 60}, {1, 100}, {3, 81}, {4, 65}, {6, 60.5}});
  EXPECT_EQ(drawn(week, 26),
            "Score, 2024-05-11 to 2024…\n"
            "100 ┤   ██\n"
            "    │   ██\n"
            "    │   ██\n"
            " 90 ┤   ██\n"
            "    │   ██\n"
            "    │   ██    ▂▂\n"
            " 80 ┤   ██    ██\n"
            "    │   ██    ██\n"
            "    │   ██    ██\n"
            " 70 ┤   ██    ██\n"
            "    │   ██    ██ ▄▄\n"
            "    │▁▁ ██    ██ ██    ▁▁\n"
            " 60 └──────┬─────────────\n"
            "           13 May\n");
  const std::string ascii = drawn(week, 60, /*isUnicode=*/false);
  EXPECT_THAT(ascii, HasSubstr("\n    |      #####       #####\n 70 +      #####       #####\n"
                               "    |      #####       ##### :::::\n"
                               "    |..... #####       ##### #####       .....\n"
                               " 60 ++-----------+-----------+-----------+----\n"
                               "     11 May      13 May      15 May     17 May\n"));
  for (const char letter : ascii) EXPECT_LT(static_cast<unsigned char>(letter), 0x80);
}

TEST_F(DayChartTest, ABarMayStandForSeveralDays) {
  const DayChart year = chartOf(365, {{0, 80}, {1, 90}, {2, 100}, {363, 80}, {364, 90}});
  const std::string narrow = drawn(year, 41);
  EXPECT_THAT(narrow, HasSubstr("\n 90 ┤█\n"));
  EXPECT_THAT(narrow, HasSubstr("\n 80 └────┬────────┬───────┬───────┬────\n"
                                "         Jul      Oct     2025    Apr\n"));
  EXPECT_THAT(narrow, HasSubstr("A bar is the mean of 11 days.\n"));
  EXPECT_THAT(drawn(year, 400), Not(HasSubstr("mean")));
}

TEST_F(DayChartTest, ThereIsAChartOnlyWhereThereIsSomethingToSee) {
  EXPECT_EQ(drawn(chartOf(7, {}), 80), "");
  EXPECT_EQ(drawn(chartOf(7, {{1, 50}}), 12), "");
  EXPECT_EQ(drawn(chartOf(7, {{1, -largest}, {2, largest}}), 80), "");
  EXPECT_THAT(drawn(chartOf(1, {{0, 50}}), 80), HasSubstr("Score, 2024-05-11\n"));
  // What lies outside of the period makes it longer.
  EXPECT_THAT(drawn(chartOf(2, {{-3, 50}, {9, 60}}), 80), HasSubstr("2024-05-08 to 2024-05-20\n"));
  DayChart hostile = chartOf(1, {{0, 50}});
  hostile.title = "Score of \x1b[2J";
  EXPECT_THAT(drawn(hostile, 80), HasSubstr("Score of \\x1b[2J, "));
  EXPECT_THAT(chartDocument(hostile), Not(HasSubstr("\x1b")));
}

std::size_t count(const std::string& text, const char* pattern) {
  const std::regex regex(pattern);
  return static_cast<std::size_t>(
      std::distance(std::sregex_iterator(text.begin(), text.end(), regex), std::sregex_iterator()));
}

TEST_F(DayChartTest, TheDocumentJoinsOnlyDaysNextToEachOther) {
  DayChart week = chartOf(7, {{4, 65}, {0, 60}, {1, 100}, {3, 81}, {6, 60.5}});  // in any order
  week.average = 73.3;
  week.points[0].note = "1 h of <driving>";
  const std::string document = chartDocument(week);
  EXPECT_EQ(count(document, "<circle"), 5U);
  EXPECT_EQ(count(document, " d=\"M[^ML]*L[^ML]*M[^ML]*L[^ML]*M[^ML]*\""), 1U);
  EXPECT_THAT(document, HasSubstr("<title>2024-05-15: 65, 1 h of &lt;driving&gt;</title>"));
  EXPECT_THAT(document, HasSubstr(">2024-05-11 to 2024-05-17, average 73.3</text>"));
  EXPECT_EQ(count(document, "stroke-dasharray"), 1U);

  for (const DayChart& empty :
       {chartOf(7, {}), chartOf(7, {{0, -largest}, {1, largest}}), DayChart{.title = "Score"}}) {
    const std::string nothing = chartDocument(empty);
    EXPECT_EQ(count(nothing, "<circle|NaN|inf"), 0U);
    EXPECT_THAT(nothing, HasSubstr("No day has a value."));
  }
}

}  // namespace
}  // namespace orvane::cli
