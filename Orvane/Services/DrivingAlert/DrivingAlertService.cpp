// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertComposer.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertService.h>

namespace orvane {

RequestHandle DrivingAlertService::registerAlertSetting(DrivingAlertType setting,
                                                        Completion<Unit> then) const {
  return post(*this, DrivingAlertComposer(std::move(setting)), std::move(then));
}

}  // namespace orvane
