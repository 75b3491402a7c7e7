// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

namespace orvane::cli {

Verb::~Verb() = default;

std::vector<Option> optionsOf(Verb& verb) {
  Options options;
  verb.declare(options);
  return options.rows();
}

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
          doctorCommand(), apiCommand(), configCommands(), completionCommands(), helpCommand()};
}

}  // namespace orvane::cli
