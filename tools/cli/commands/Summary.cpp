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

  Operation<DrivingSummary> ask(const DrivingSummaryService& service) const {
    return service.fetch(filtersOf(days), expansions);
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
      {"summary list --from 60-days-ago --aggregate-by MONTH", "month by month"},
  };

  DayOptions days;
  std::optional<std::string> aggregateBy;

  void declare(Options& options) {
    days.declare(options);
    options.option("--aggregate-by", aggregateBy, "How long a period is, in the backend's words");
  }

  Operation<Periods> ask(const DrivingSummaryService& service) const {
    return service.fetchList(filtersOf(days), aggregateBy);
  }

  static void print(const Periods& periods, Output& output) {
    using Period = DrivingSummaryResult;
    const auto lasting = [](std::int64_t seconds) {
      return durationOf(static_cast<double>(seconds));
    };
    const auto speed = [](double kilometres) { return decimal(kilometres, 0) + " km/h"; };
    const auto litres = [](double volume) { return decimal(volume, 1) + " l"; };
    output.table(Table("periods", periods,
                       {{"from", &Period::startDate, minuteOfMilliseconds},
                        {"to", &Period::endDate, minuteOfMilliseconds, 1},
                        {"trips", &Period::numberOfTrips, 2},
                        {"distance", &Period::kmOfDriving, kilometresText},
                        {"driving", &Period::secondsOfDriving, lasting, 3},
                        {"in motion", &Period::secondsInMotion, lasting, 5},
                        {"idling", &Period::secondsOfIdling, lasting, 6},
                        {"average", &Period::avgKmPerHour, speed, 4},
                        {"fuel", &Period::litresOfFuel, litres, 7}}));
  }
};

}  // namespace

Resource summaryCommands() {
  return Resource("summary", "How much and how well somebody has driven")
      .add<ShowSummary>()
      .add<ListSummaries>();
}

}  // namespace orvane::cli
