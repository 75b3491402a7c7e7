// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of a user's driving summary.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Services/DrivingSummary/DrivingSummaryService.h>

#include <set>
#include <string>
#include <utility>

namespace orvane {

/// Reads the current user's running account.
class DrivingSummaryComposer final : public URLComposer {
 public:
  DrivingSummaryComposer(std::set<DrivingSummaryService::Expansion> expanded,
                         std::set<DrivingSummaryService::Filter> filtered)
      : expansions(std::move(expanded)), filters(std::move(filtered)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  std::set<DrivingSummaryService::Expansion> expansions;
  std::set<DrivingSummaryService::Filter> filters;
};

}  // namespace orvane
