// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The requests of the scores: a user's statistic, a user's averages, and both of a vehicle.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Enumeration.h>

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace orvane {

/// Reads the current user's scores, day by day.
class ScoringAggregateComposer final : public URLComposer {
 public:
  struct DateRange {
    Date from;
    Date to;
  };
  /// The periods that end now. They go by their names on the wire, too.
  enum class Period : std::uint8_t { last7Days, last30Days, last90Days, lastYear, today };
  using RequestType = std::variant<DateRange, Period>;

  explicit ScoringAggregateComposer(RequestType type) : requestType(type) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  /// From where the relative periods count back: the device clock when the composer was made.
  Date today = DeviceClock::now();
  RequestType requestType;
};

/// Reads the average of the current user's scores over a reporting period.
class ScoringAverageComposer final : public URLComposer {
 public:
  struct WEEK {
    std::uint64_t weekNumber;
  };
  struct CUSTOM {
    Date from;
    Date to;
  };
  /// The periods that need no more than their names, which are those on the wire.
  enum class Period : std::uint8_t { DAY, MONTH };
  using RequestType = std::variant<WEEK, CUSTOM, Period>;

  explicit ScoringAverageComposer(RequestType type, std::optional<std::int64_t> count = {})
      : requestType(type), reportingPeriodCount(count) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  RequestType requestType;
  std::optional<std::int64_t> reportingPeriodCount;
};

/// Reads the scores of a vehicle, or its trips.
class ScoringVehicleComposer final : public URLComposer {
 public:
  struct Trip {
    std::string vehicleId;
    std::int64_t vehicleTripsLimit;
    bool shouldExpandScores;
  };
  struct AverageScoring {
    std::string vehicleId;
    Date from;
    Date to;
  };
  struct AggregateScoring {
    std::string vehicleId;
    Date from;
    Date to;
  };
  using RequestType = std::variant<Trip, AverageScoring, AggregateScoring>;

  explicit ScoringVehicleComposer(RequestType type) : requestType(std::move(type)) {}

  /// The path of `Trip` contains what looks like a query. Appended to a URL it is a path all the
  /// same: its "?" is percent-encoded like any other.
  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  RequestType requestType;
};

template <>
struct EnumerationTable<ScoringAggregateComposer::Period> {
  using enum ScoringAggregateComposer::Period;
  static constexpr EnumerationCase<ScoringAggregateComposer::Period> cases[] = {
      {last7Days, "last7Days"}, {last30Days, "last30Days"}, {last90Days, "last90Days"},
      {lastYear, "lastYear"},   {today, "today"},
  };
};

template <>
struct EnumerationTable<ScoringAverageComposer::Period> {
  using enum ScoringAverageComposer::Period;
  static constexpr EnumerationCase<ScoringAverageComposer::Period> cases[] = {{DAY, "DAY"},
                                                                              {MONTH, "MONTH"}};
};

}  // namespace orvane
