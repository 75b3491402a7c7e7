// SPDX-License-Identifier: Apache-2.0
//
// What the inspector's page asks for and does, below /inspector/api/.
#pragma once

#include "inspector/Feed.h"
#include "inspector/Sessions.h"

namespace orvane::sandbox {

/// Answers a request of a session's; a change has been found to be that session's. Throws a
/// `Problem` to refuse.
[[nodiscard]] Reply answerInspectorApi(Backend& backend, Feed& feed,
                                       const Sessions::Session& session, const Request& request,
                                       std::string_view path);

}  // namespace orvane::sandbox
