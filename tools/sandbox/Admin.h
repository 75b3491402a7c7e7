// SPDX-License-Identifier: Apache-2.0
//
// The requests below /admin by which a test or a developer steers the running sandbox.
#pragma once

#include "http/Message.h"

#include <string_view>

namespace orvane::sandbox {

class Backend;

inline constexpr std::string_view adminRoot = "/admin/";
inline constexpr const char* adminKeyHeader = "X-Sandbox-Admin-Key";

/// Never throws: what is wrong with the request is in the reply.
[[nodiscard]] Reply answerAdmin(Backend& backend, const Request& request);

}  // namespace orvane::sandbox
