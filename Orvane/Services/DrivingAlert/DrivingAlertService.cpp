// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertComposer.h>
#include <Orvane/Services/DrivingAlert/DrivingAlertService.h>

namespace orvane {

Operation<Unit> DrivingAlertService::registerAlertSetting(DrivingAlertType setting) const {
  return post<Unit>(*this, DrivingAlertComposer(std::move(setting)));
}

RequestHandle DrivingAlertService::registerAlertSetting(DrivingAlertType setting,
                                                        Completion<Unit> then) const {
  return registerAlertSetting(std::move(setting)).start(std::move(then));
}

}  // namespace orvane
