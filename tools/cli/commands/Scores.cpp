// SPDX-License-Identifier: Apache-2.0
// orvane scores: how well somebody drives, day by day and on average.
#include "Commands.h"
#include "DayChart.h"
#include "Days.h"
#include "OutputFile.h"
#include <Orvane/Common/CurrentDate.h>
#include <Orvane/Services/Scoring/ScoringService.h>

#include <algorithm>
#include <array>

namespace orvane::cli {

/// The periods that have a name.
enum class NamedPeriod : std::uint8_t {
  today,
  last7Days,
  lastWeek,
  last30Days,
  lastMonth,
  last90Days,
  lastYear,
};

}  // namespace orvane::cli

template <>
struct orvane::EnumerationTable<orvane::cli::NamedPeriod> {
  using enum cli::NamedPeriod;
  static constexpr EnumerationCase<cli::NamedPeriod> cases[] = {
      {today, "today"},          {last7Days, "last-7-days"},
      {lastWeek, "last-week"},   {last30Days, "last-30-days"},
      {lastMonth, "last-month"}, {last90Days, "last-90-days"},
      {lastYear, "last-year"}};
};

namespace orvane::cli {
namespace {

using std::chrono::days;
using std::chrono::sys_days;

struct PeriodRow {
  NamedPeriod period;
  Operation<ScoringAggregate> (ScoringService::*fetch)() const;
  days length;  // from its first day to today
};

constexpr std::array<PeriodRow, 7> periodRows{{
    {NamedPeriod::today, &ScoringService::today, days(0)},
    {NamedPeriod::last7Days, &ScoringService::last7Days, days(7)},
    {NamedPeriod::lastWeek, &ScoringService::lastWeek, days(7)},
    {NamedPeriod::last30Days, &ScoringService::last30Days, days(30)},
    {NamedPeriod::lastMonth, &ScoringService::lastMonth, days(30)},
    {NamedPeriod::last90Days, &ScoringService::last90Days, days(90)},
    {NamedPeriod::lastYear, &ScoringService::lastYear, days(365)},
}};

const PeriodRow& rowOf(NamedPeriod period) {
  return *std::ranges::find(periodRows, period, &PeriodRow::period);
}

[[noreturn]] void misused(std::string message) {
  throw Failure(ExitCode::usage, std::move(message));
}

// From so many calendar days ago to now.
DateRange lastDays(std::uint64_t count) {
  const auto range = ScoringService::lastDays(count);
  if (!range.value()) misused("--days: " + range.errorOr(NetworkError::unknown).message());
  return {range.value()->lowerBound(), range.value()->upperBound()};
}

// The options for days that have no name.
struct DaysOrDates {
  std::optional<std::uint64_t> count;
  DayOptions dates;

  void declare(Options& options) {
    options.option("--days", count, "From so many days ago to today");
    dates.declare(options);
  }

  /// Absent where neither is given.
  [[nodiscard]] std::optional<DateRange> range() const {
    const auto between = dates.range();
    if (count && between) misused("--days does not go with --from and --to");
    return count ? lastDays(*count) : between;
  }
};

std::string scoreText(double score) { return decimal(score, 2); }

// --- Day by day
// -----------------------------------------------------------------------------------

// The backend's number of a day is its beginning or a later time of it, by UTC, in milliseconds.
std::optional<sys_days> dayOfMilliseconds(const std::optional<double>& milliseconds) {
  if (!milliseconds) return std::nullopt;
  const Date date = dateOfMilliseconds(*milliseconds);
  constexpr Date first = sys_days(std::chrono::year(1) / 1 / 1);
  constexpr Date end = sys_days(std::chrono::year(10000) / 1 / 1);
  if (!(date >= first && date < end)) return std::nullopt;
  return std::chrono::floor<days>(date);
}

std::string dayText(const std::optional<double>& milliseconds) {
  if (const auto day = dayOfMilliseconds(milliseconds)) return toText(componentsOf(*day));
  return milliseconds ? toText(*milliseconds) : std::string();
}

template <class Convert>
std::string cellOf(const std::optional<double>& value, Convert convert) {
  return value ? convert(*value) : std::string();
}

Table tableOf(const std::vector<DailyAggregate>& aggregates) {
  using Day = DailyAggregate;
  return {"days",
          aggregates,
          {{"day", [](const Day& day) { return Moment{dayText(day.date)}; }},
           {"score", &Day::score, scoreText},
           {"average", &Day::averageScore, scoreText, 1},
           {"driving", &Day::secondsOfDriving, durationOf, 2},
           {"recorded by", &Day::trackingType, 3}}};
}

DayChart chartOf(const ScoringAggregate& aggregate, const std::optional<DateRange>& range,
                 const std::string& title) {
  // What is longer is drawn from the first day with a score to the last.
  constexpr days longest{366};
  DayChart chart{
      .title = title, .average = aggregate.averageScore, .usualValues = std::pair(0.0, 100.0)};
  const auto first = range ? dayOf(range->start) : std::nullopt;
  const auto last = range ? dayOf(range->end) : std::nullopt;
  if (first && last && *last - *first <= longest) chart.period = std::pair(*first, *last);
  if (!aggregate.tripScoringDailyAggregate) return chart;
  for (const DailyAggregate& day : *aggregate.tripScoringDailyAggregate) {
    const auto date = dayOfMilliseconds(day.date);
    if (!date || !day.score) continue;
    chart.points.push_back({*date, *day.score, cellOf(day.secondsOfDriving, [](double seconds) {
                              return durationOf(seconds) + " of driving";
                            })});
  }
  return chart;
}

struct AggregateScores {
  static constexpr std::string_view name = "aggregate";
  static constexpr std::string_view summary = "Show scores day by day, with a chart";
  static constexpr Example examples[] = {
      {"scores aggregate last-30-days", "the last 30 days"},
      {"scores aggregate --days 14 --vehicle 3001", "two weeks of a vehicle"},
      {"scores aggregate --from 30-days-ago --to yesterday --svg month.svg", "drawn, too"},
  };

  std::optional<NamedPeriod> period;
  DaysOrDates dates;
  std::optional<VehicleID> vehicle;
  std::optional<std::filesystem::path> drawing;

  void declare(Options& options) {
    options.positional("PERIOD", period, "A period up to today, instead of --days or --from");
    dates.declare(options);
    options.option("--vehicle", vehicle,
                   "The scores of this vehicle, whoever drove it; with --days, or --from and --to");
    options.option("--svg", drawing, "Draw the chart into this file, too; - prints it alone");
  }

  void run(Session& session) const {
    check();
    session.connect();
    const auto range = dates.range();
    if (!period && !range) misused("which days? Give a period's name, --days, or --from and --to");
    const auto scores = session.call(ask(ScoringService(session.identity()), range));
    const DayChart chart = chartOf(scores, range ? range : rangeOf(*period), title());
    Output& output = session.output();
    if (drawing) {
      writeDocument(*drawing, chartDocument(chart), output);
      if (isStandardOutput(*drawing)) return;
    }
    printAnswer(Printer{chart}, scores, session);
  }

 private:
  struct Printer {
    const DayChart& chart;

    void print(const ScoringAggregate& scores, Output& output) const {
      output.block(Block()
                       .row("average score", scores.averageScore, scoreText)
                       .row("highest score", scores.highestScore, scoreText)
                       .row("days with a score", std::to_string(chart.points.size())));
      if (scores.tripScoringDailyAggregate) {
        output.section("days", tableOf(*scores.tripScoringDailyAggregate));
      }
      if (!output.style().isTable()) return;
      const auto lines = chartLines(chart, output.style());
      if (!lines.empty()) output.line("");
      for (const std::string& line : lines) output.line(line);
    }
  };

  void check() const {
    if (!period) return;
    if (vehicle) {
      misused(
          "the periods with a name are of people: --vehicle goes with --days, or --from and --to");
    }
    if (dates.count || dates.dates.isGiven()) {
      misused("a period's name does not go with --days, or --from and --to");
    }
  }

  [[nodiscard]] std::string title() const {
    return vehicle ? "Score per day of vehicle " + vehicle->text : "Score per day";
  }

  static DateRange rangeOf(NamedPeriod period) {
    const Date now = DeviceClock::now();
    return {now - rowOf(period).length, now};
  }

  [[nodiscard]] Operation<ScoringAggregate> ask(const ScoringService& service,
                                                const std::optional<DateRange>& range) const {
    if (period) return (service.*rowOf(*period).fetch)();
    if (!vehicle) return service.dateRange(range->start, range->end);
    return service.fetchAggregateScoresByVehicle(vehicle->text, range->start, range->end);
  }
};

// --- On average
// -----------------------------------------------------------------------------------

Block blockOf(const ScoringAverage& average) {
  Block block;
  block.row("average score", average.averageScore, scoreText)
      .row("highest score", average.highestScore, scoreText)
      .row("lowest score", average.lowestScore, scoreText);
  if (average.periodStartDate) block.row("from", dayText(average.periodStartDate));
  if (average.periodEndDate) block.row("to", dayText(average.periodEndDate));
  if (average.tripScoringAverage)
    block.row("recorded by", average.tripScoringAverage->trackingType);
  return block;
}

Block blockOf(const TripScoringComponents& components) {
  return Block()
      .row("harsh acceleration", components.harshAcceleration, scoreText)
      .row("harsh braking", components.harshBraking, scoreText)
      .row("harsh cornering", components.harshCornering, scoreText)
      .row("speeding", components.speeding, scoreText)
      .row("over-speeding", components.overSpeeding, scoreText)
      .row("distracted driving", components.distractedDriving, scoreText)
      .row("mileage", components.mileage, scoreText)
      .row("pay as you drive", components.payd, scoreText)
      .row("acceleration, braking, cornering", components.abc_subscore, scoreText)
      .row("speed", components.speed_subscore, scoreText)
      .row("usage", components.usage_subscore, scoreText)
      .row("distraction", components.distracted_driving, scoreText);
}

struct AverageScores {
  static constexpr std::string_view name = "average";
  static constexpr std::string_view summary = "Show the average score of some days, and of what";
  static constexpr Example examples[] = {
      {"scores average --days 30", "the last 30 days"},
      {"scores average --week 1", "the week before this one, if the backend counts so"},
      {"scores average --from 30-days-ago --to yesterday --vehicle 3001", "a vehicle's month"},
  };

  std::optional<std::uint64_t> week;
  DaysOrDates dates;
  std::optional<VehicleID> vehicle;

  void declare(Options& options) {
    options.option("--week", week, "A week by the backend's own count");
    dates.declare(options);
    options.option("--vehicle", vehicle,
                   "The scores of this vehicle, whoever drove it; with --days, or --from and --to");
  }

  [[nodiscard]] Operation<ScoringAverage> ask(Session& session) const {
    if (week && vehicle) {
      misused("weeks are of people: --vehicle goes with --days, or --from and --to");
    }
    if (week && (dates.count || dates.dates.isGiven())) {
      misused("--week does not go with --days, or --from and --to");
    }
    const ScoringService service(session.identity());
    if (week) return service.fetchWeek(*week);
    const auto range = dates.range();
    if (!range) misused("which days? Give --week, --days, or --from and --to");
    if (!vehicle) return service.custom(range->start, range->end);
    return service.fetchAverageScoresByVehicle(vehicle->text, range->start, range->end);
  }

  static void print(const ScoringAverage& average, Output& output) {
    output.block(blockOf(average));
    if (average.tripScoringAverage) {
      output.section("components", blockOf(average.tripScoringAverage->componentScores));
    }
  }
};

}  // namespace

Resource scoreCommands() {
  return Resource("scores", "How well somebody drives").add<AggregateScores>().add<AverageScores>();
}

}  // namespace orvane::cli
