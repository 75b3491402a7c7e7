// SPDX-License-Identifier: Apache-2.0
// Private header: not installed.
// The request of an alert setting.
#pragma once

#include <Orvane/Core/URLComposer.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertService.h>

#include <string>
#include <utility>

namespace orvane {

/// Registers a setting, which travels in the query.
class DrivingAlertComposer final : public URLComposer {
 public:
  explicit DrivingAlertComposer(DrivingAlertType type) : settings(std::move(type)) {}

  [[nodiscard]] std::string path(std::string_view userID) const override;
  [[nodiscard]] std::optional<std::string> query() const override;

  DrivingAlertType settings;
};

}  // namespace orvane
