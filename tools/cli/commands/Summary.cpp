// SPDX-License-Identifier: Apache-2.0
// orvane summary: how much and how well somebody has driven.
#include "Commands.h"
#include "Days.h"
#include <Orvane/Services/DrivingSummary/DrivingSummaryService.h>

namespace orvane::cli {
namespace {

using Periods = std::vector<DrivingSummaryResult>;

std::set<DrivingSummaryService::Filter> filtersOf(const DayOptions& days) {
  std::set<DrivingSummaryService::Filter> filters;
  if (const auto range = days.range()) filters.insert(*range);
  return filters;
}

// The record has kilometres where trips have metres.
std::string kilometresText(double kilometres) { return decimal(kilometres, 1) + " km"; }

Block recordOf(const DrivingSummary& summary) {
  return Block()
      .row("id", summary.id)
      .row("user", summary.userId)
      .row("assessed since", summary.dateAssessmentStarted)
      .row("distance driven", summary.distanceDriven, kilometresText)
      .row("trips", summary.numberOfTrips)
      .row("declared mileage", summary.kmOfDeclaredMileage, kilometresText)
      .row("overall score", summary.overallScore, [](double score) { return decimal(score, 1); })
      .row("current discount", summary.currentDiscount)
      .row("projected discount", summary.projectedDiscount)
      .row("maximum discount", summary.maximumDiscountAvailable);
}

Block recordOf(const DriverDetection& detection) {
  return Block()
      .row("status", detection.status)
      .row("driver trips", detection.numberOfDriverTrips)
      .row("driver trips needed", detection.minimumNumberOfDriverTrips);
}

struct ShowSummary {
  using Answer = DrivingSummary;
  static constexpr std::string_view name = "show";
  static constexpr std::string_view summary = "Show the account of somebody's assessment";
  static constexpr Example examples[] = {
      {"summary show --expand user-training-status", "with how far driver detection has learnt"},
  };

  DayOptions days;
  std::set<DrivingSummaryService::Expansion> expansions;

  void declare(Options& options) {
    days.declare(options);
    options.option("--expand", expansions, "What to embed in the summary");
  }

  RequestHandle start(const Identity& identity, Completion<DrivingSummary> then) const {
    return DrivingSummaryService(identity).fetch(filtersOf(days), expansions, std::move(then));
  }

  static void print(const DrivingSummary& account, Output& output) {
    output.block(recordOf(account));
    if (account.driverDetection) {
      output.section("driver detection", recordOf(*account.driverDetection));
    }
  }
};

struct ListSummaries {
  using Answer = Periods;
  static constexpr std::string_view name = "list";
  static constexpr std::string_view summary = "List somebody's driving period by period";
  static constexpr Example examples[] = {
      {"summary list --from 2024-01-01 --aggregate-by MONTH", "month by month"},
  };

  DayOptions days;
  std::optional<std::string> aggregateBy;

  void declare(Options& options) {
    days.declare(options);
    options.option("--aggregate-by", aggregateBy, "How long a period is, in the backend's words");
  }

  RequestHandle start(const Identity& identity, Completion<Periods> then) const {
    return DrivingSummaryService(identity).fetchList(filtersOf(days), aggregateBy, std::move(then));
  }

  static void print(const Periods& periods, Output& output) {
    constexpr auto right = Table::Alignment::right;
    Table table{{"from", Table::Fit::whole}, {"to", Table::Fit::whole}, {"trips", right},
                {"distance", right},         {"driving", right},        {"in motion", right},
                {"idling", right},           {"average", right},        {"fuel", right}};
    const auto lasting = [](std::int64_t seconds) {
      return durationOf(static_cast<double>(seconds));
    };
    for (const DrivingSummaryResult& period : periods) {
      table.row(dateOfMilliseconds(period.startDate), dateOfMilliseconds(period.endDate),
                period.numberOfTrips, kilometresText(period.kmOfDriving),
                lasting(period.secondsOfDriving), lasting(period.secondsInMotion),
                lasting(period.secondsOfIdling), decimal(period.avgKmPerHour, 0) + " km/h",
                decimal(period.litresOfFuel, 1) + " l");
    }
    output.table(table);
  }
};

}  // namespace

Resource summaryCommands() {
  return Resource("summary", "How much and how well somebody has driven")
      .add<ShowSummary>()
      .add<ListSummaries>();
}

}  // namespace orvane::cli
