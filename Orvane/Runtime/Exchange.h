// SPDX-License-Identifier: Apache-2.0
// What an application sees that watches the requests and their answers.
#pragma once

#include <Orvane/Common/RequestManager.h>
#include <Orvane/Platform/Date.h>
#include <Orvane/Platform/Error.h>
#include <Orvane/Runtime/Export.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

/// A request that the transport took over, and what came of it: it may have waited for a connection
/// to the end, and not gone out at all. Unless the application asks for secrets, the values
/// of queries, of "Authorization" and of cookies read "…", and the bodies are empty.
struct ORVANE_RUNTIME_EXPORT Exchange {
  Verb verb = Verb::get;    ///< What was asked of the resource.
  std::string url;          ///< Where it went, query included.
  Headers requestHeaders;   ///< As sent, without those that HTTP itself demands.
  std::string requestBody;  ///< Empty unless secrets are asked for.
  /// Bytes of the request's body.
  std::size_t requestSize = 0;
  /// The HTTP status; absent when no answer came.
  std::optional<std::int64_t> statusCode;
  /// As received, in order.
  std::vector<std::pair<std::string, std::string>> responseHeaders;
  /// Of a refusal as much as was read of it: up to 64 KiB.
  std::string responseBody;
  /// Bytes of the answer's body, decompressed.
  std::size_t responseSize = 0;
  /// What the caller is told instead of a body.
  std::optional<Error> error;
  /// From the moment the request was handed to the network to the end of its answer; zero when it
  /// never was.
  Seconds duration{0};
};

/// Sees every exchange when it has ended, right before the handler is called; cancelled ones and
/// those that waited in vain, too. Not seen are requests that are answered inside `send`: they were
/// not taken over. Called on the thread that does the transfers: requests and downloads have one
/// each. Must be quick and must not throw.
using ExchangeObserver = std::function<void(const Exchange&)>;

}  // namespace orvane
