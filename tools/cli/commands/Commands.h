// SPDX-License-Identifier: Apache-2.0
// One function per resource; `resources()` lists them.
#pragma once

#include "Command.h"

namespace orvane::cli {

[[nodiscard]] Resource userCommands();
[[nodiscard]] Resource invitationCommands();
[[nodiscard]] Resource activateCommand();
[[nodiscard]] Resource termsCommands();
[[nodiscard]] Resource deviceCommands();
[[nodiscard]] Resource pushCommands();
[[nodiscard]] Resource subscriptionsCommand();
[[nodiscard]] Resource namedDriverCommands();
[[nodiscard]] Resource scoreCommands();
[[nodiscard]] Resource leaderboardCommands();
[[nodiscard]] Resource discountCommands();
[[nodiscard]] Resource rewardCommands();
[[nodiscard]] Resource contentCommands();
[[nodiscard]] Resource firmwareCommands();
[[nodiscard]] Resource tripCommands();
[[nodiscard]] Resource locationCommands();
[[nodiscard]] Resource vehicleCommands();
[[nodiscard]] Resource summaryCommands();
[[nodiscard]] Resource alertCommands();
[[nodiscard]] Resource doctorCommand();
[[nodiscard]] Resource apiCommand();
[[nodiscard]] Resource configCommands();
[[nodiscard]] Resource completionCommands();
[[nodiscard]] Resource helpCommand();

}  // namespace orvane::cli
