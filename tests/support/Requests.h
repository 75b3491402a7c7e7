// SPDX-License-Identifier: Apache-2.0
// Requests as texts that a test can spell out whole.
#pragma once

#include <Orvane/Testing/ScriptedRequestManager.h>

#include <string>
#include <string_view>

namespace orvane {

/// The API root of `exampleDetails()`.
inline constexpr std::string_view apiRoot = "https://backend.example/kavra/api/sdk";

/// Verb, URL below `apiRoot`, headers other than the expected "Authorization", and body: as HTTP
/// shows them. The random boundary of a form reads "BOUNDARY", its right length "Content-Length:
/// right", and a carriage return "\r".
[[nodiscard]] std::string requestText(const RecordedRequest& request);

}  // namespace orvane
