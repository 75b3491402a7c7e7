// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/Logger.h>
#include <Orvane/Platform/Calendar.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertComposer.h>

namespace orvane {
namespace {

// The hour without a leading zero, right before the minutes.
constexpr std::string_view timeOfDay = "Hmm";

QueryItems target(std::string_view driverId) {
  QueryItems items;
  items.add("targetId", driverId).add("targetType", "USER");
  return items;
}

QueryItems itemsOf(const alert::Acceleration& setting) {
  return target(setting.driverId)
      .add("eventAlertAcceleration", wireText(setting.accelerationSeverity));
}

QueryItems itemsOf(const alert::Braking& setting) {
  return target(setting.driverId).add("eventAlertBraking", wireText(setting.brakingSeverity));
}

QueryItems itemsOf(const alert::LateNight& setting) {
  QueryItems items = target(setting.driverId);
  items.add("enableLateNightDrivingAlert", setting.enableAlert ? "true" : "false");
  if (!setting.startTime || !setting.endTime) return items;
  const auto times = formatDates(*setting.startTime, *setting.endTime, timeOfDay);
  if (!times) {
    log.w("Not sending the late-night range because start or end has no time of day.");
    return items;
  }
  items.add("lateNightDrivingAlertStart", times->first)
      .add("lateNightDrivingAlertEnd", times->second);
  return items;
}

QueryItems itemsOf(const alert::Speeding& setting) {
  return target(setting.driverId).add("thresholdAlertSpeeding", setting.speedThreshold);
}

}  // namespace

std::string DrivingAlertComposer::path(std::string_view userID) const {
  return concatenated({"users/", userID, "/settings"});
}

std::optional<std::string> DrivingAlertComposer::query() const {
  return settings.match([](const auto& setting) { return itemsOf(setting); }).joined();
}

}  // namespace orvane
