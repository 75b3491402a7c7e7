// SPDX-License-Identifier: Apache-2.0
//
// The requests below /admin by which a test or a developer steers the running sandbox.
#pragma once

#include "http/Message.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace orvane::sandbox {

class Backend;

inline constexpr std::string_view adminRoot = "/admin/";
inline constexpr const char* adminKeyHeader = "X-Sandbox-Admin-Key";

/// Never throws: what is wrong with the request is in the reply.
[[nodiscard]] Reply answerAdmin(Backend& backend, const Request& request);

// What is done for whoever steers, here and from the inspector's page.

/// {"done": true}
[[nodiscard]] Reply done();
[[nodiscard]] Reply forgetRequests(Backend& backend, const Request& request);
[[nodiscard]] Reply resetAll(Backend& backend, const Request& request);
[[nodiscard]] Reply saveSnapshot(Backend& backend, const Request& request);
[[nodiscard]] Reply restoreSnapshot(Backend& backend, const Request& request);

/// The server's clock as JSON: its skew, its time, and the day around which the data lies.
[[nodiscard]] std::string clockAsJson(Backend& backend);

// What bodies say by which the sandbox is steered. A 400 is thrown for any other.

/// A JSON object.
[[nodiscard]] nlohmann::json objectIn(const Request& request);
/// {"name": text}
[[nodiscard]] std::string nameIn(const Request& request);
/// {"skew": seconds}
[[nodiscard]] std::int64_t skewIn(const nlohmann::json& json);

}  // namespace orvane::sandbox
