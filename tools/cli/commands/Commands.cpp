// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

namespace orvane::cli {

Verb::~Verb() = default;

std::vector<Resource> resources() {
  return {// Users and enrolment.
          userCommands(), invitationCommands(), activateCommand(), termsCommands(),
          deviceCommands(), pushCommands(), subscriptionsCommand(), namedDriverCommands(),
          // Trips and driving.
          tripCommands(), locationCommands(), vehicleCommands(), summaryCommands(), alertCommands(),
          // Scores and incentives.
          scoreCommands(), leaderboardCommands(), discountCommands(), rewardCommands(),
          // Content and firmware.
          contentCommands(), firmwareCommands(),
          // The program itself.
          configCommands(), completionCommands()};
}

}  // namespace orvane::cli
