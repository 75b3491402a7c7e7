// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

namespace orvane::cli {

Verb::~Verb() = default;

std::vector<Resource> resources() {
  return {userCommands(),    invitationCommands(), activateCommand(),      termsCommands(),
          deviceCommands(),  pushCommands(),       subscriptionsCommand(), namedDriverCommands(),
          contentCommands(), firmwareCommands(),   configCommands(),       completionCommands()};
}

}  // namespace orvane::cli
