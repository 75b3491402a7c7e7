// SPDX-License-Identifier: Apache-2.0
//
// How things stand, as the JSON texts of the inspector's page. Whatever bytes the wire brought,
// they are texts of a JSON string here.
#pragma once

#include "Backend.h"
#include "JsonWriter.h"
#include "RequestLog.h"

#include <string>
#include <string_view>

namespace orvane::sandbox {

/// The text with U+FFFD for whatever is not UTF-8.
[[nodiscard]] std::string asUtf8(std::string_view text);

/// One request in a line of the list.
void writeSummary(JsonWriter& json, const LoggedRequest& request);
/// The request whole.
[[nodiscard]] std::string detailsAsJson(const Backend& backend, const RequestLog::Kept& kept);

[[nodiscard]] std::string faultsAsJson(Backend& backend);
[[nodiscard]] std::string recordingAsJson(Backend& backend);

[[nodiscard]] std::string peopleAsJson(Backend& backend);
/// Throws a 404 for somebody who is not there.
[[nodiscard]] std::string tripsAsJson(Backend& backend, const std::string& userId,
                                      const Period& period);
/// Throws a 404 for a trip that is not there.
[[nodiscard]] std::string tripAsJson(Backend& backend, const std::string& tripId);
/// The roads of both cities.
[[nodiscard]] const std::string& roadsAsJson();

}  // namespace orvane::sandbox
