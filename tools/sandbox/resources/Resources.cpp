// SPDX-License-Identifier: Apache-2.0
#include "resources/Resources.h"

namespace orvane::sandbox {

void addResources(Router& router) {
  addUsers(router);
  addVehicles(router);
  addTrips(router);
  addDriving(router);
  addAlertSettings(router);
  addScores(router);
  addLeaderboards(router);
  addRewards(router);
  addInvitations(router);
  addEnrolment(router);
  addDevices(router);
  addPolicy(router);
  addContent(router);
}

}  // namespace orvane::sandbox
