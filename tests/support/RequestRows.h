// SPDX-License-Identifier: Apache-2.0
// Tables of operations and the requests that they send.
#pragma once

#include <Orvane/Common/Identity.h>
#include <Orvane/Common/Request.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// An operation, and the one request that it is to send.
struct RequestRow {
  std::string name;
  /// Builds its service and calls the operation.
  std::function<void(const Identity&)> call;
  /// As `requestText` tells it, without the line ends after the last line.
  std::string request;
  std::optional<std::string> externalReferenceID = "reference";
};

/// Calls every operation for itself and compares what reaches the transport.
void expectRequests(const std::vector<RequestRow>& rows);

}  // namespace orvane
