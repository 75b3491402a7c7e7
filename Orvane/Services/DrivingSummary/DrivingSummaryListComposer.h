// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of a user's driving, period by period.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryService.h>

#include <optional>
#include <set>
#include <string>
#include <utility>

namespace orvane {

/// Reads the current user's statistics.
class DrivingSummaryListComposer final : public URLComposer {
 public:
  DrivingSummaryListComposer(std::set<DrivingSummaryService::Filter> filtered,
                             std::optional<std::string> aggregation)
      : filters(std::move(filtered)), aggregateBy(std::move(aggregation)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  std::set<DrivingSummaryService::Filter> filters;
  std::optional<std::string> aggregateBy;
};

}  // namespace orvane
