// SPDX-License-Identifier: Apache-2.0
// Tables of operations and the requests that they send.
#pragma once

#include <Orvane/Common/Identity.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// An operation of a service, and the one request that it is to send.
template <class Service>
struct RequestRow {
  /// As `requestText` tells it, without the line ends after the last line. The row's name, too.
  std::string request;
  std::function<void(const Service&)> call;
};

/// Makes a call for itself and compares what reaches the transport.
void expectRequest(const std::string& request, const std::function<void(const Identity&)>& call,
                   const std::optional<std::string>& externalReferenceID = "reference");

/// The same with every row, on a service of the row's own.
template <class Service>
void expectRequests(const std::vector<RequestRow<Service>>& rows) {
  for (const RequestRow<Service>& row : rows) {
    expectRequest(row.request, [&](const Identity& identity) { row.call(Service(identity)); });
  }
}

}  // namespace orvane
