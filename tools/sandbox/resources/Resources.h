// SPDX-License-Identifier: Apache-2.0
//
// The backend's resources, each in a file of its own.
#pragma once

#include "Router.h"

namespace orvane::sandbox {

/// Adds every resource below the API root.
void addResources(Router& router);

void addAlertSettings(Router& router);
void addContent(Router& router);
void addDevices(Router& router);
void addDriving(Router& router);
void addEnrolment(Router& router);
void addInvitations(Router& router);
void addLeaderboards(Router& router);
void addPolicy(Router& router);
void addRewards(Router& router);
void addScores(Router& router);
void addTrips(Router& router);
void addUsers(Router& router);
void addVehicles(Router& router);

}  // namespace orvane::sandbox
