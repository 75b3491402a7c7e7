// SPDX-License-Identifier: Apache-2.0
// The application's entry to how much and how well the current user has driven.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/DrivingSummary.h>
#include <Orvane/Platform/DateRange.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/OneOf.h>
#include <Orvane/Platform/SetOf.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

/// Fetches the current user's assessment and driving statistics.
class ORVANE_EXPORT DrivingSummaryService : public SerializableService {
 public:
  using DateFilter = DateRange;  ///< What `Filter::date` carries.

  /// Which driving is summed up.
  class Filter : public OneOf<DateFilter> {
   public:
    using OneOf::OneOf;
    /// The days from `start` to `end`, both included, in the device's time zone. A range whose end
    /// is before its start, or one that the calendar has no days for, is left out, with a warning
    /// in the log.
    [[nodiscard]] static Filter date(Date start, Date end) { return DateFilter{start, end}; }
  };

  /// What the backend is asked to embed in a summary.
  enum class Expansion : std::uint8_t { driverDetection };

  /// A service for the person who is signed in. A missing registration stops the process.
  explicit DrivingSummaryService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the current user's running account.
  Operation<DrivingSummary> fetch(SetOf<Filter> filters = {},
                                  SetOf<Expansion> expansions = {}) const;
  RequestHandle fetch(std::set<Filter> filters, std::set<Expansion> expansions,
                      Completion<DrivingSummary> then) const;

  /// Fetches the current user's driving period by period. `aggregateBy` names the length of the
  /// periods in the backend's words, for example "WEEK", and is sent as it stands.
  Operation<std::vector<DrivingSummaryResult>> fetchList(
      SetOf<Filter> filters = {}, std::optional<std::string> aggregateBy = {}) const;
  RequestHandle fetchList(std::set<Filter> filters, std::optional<std::string> aggregateBy,
                          Completion<std::vector<DrivingSummaryResult>> then) const;
};

template <>
struct EnumerationTable<DrivingSummaryService::Expansion> {
  using enum DrivingSummaryService::Expansion;
  // The detection is told by how far its training has come.
  static constexpr EnumerationCase<DrivingSummaryService::Expansion> cases[] = {
      {driverDetection, "userTrainingStatus"}};
};

}  // namespace orvane
