// SPDX-License-Identifier: Apache-2.0
// The transport that a host supplies.
#pragma once

#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace orvane {

/// Header names and values of a request.
using Headers = std::map<std::string, std::string>;

/// What a request asks of its resource (RFC 9110, section 9).
enum class Verb : std::uint8_t { get, post, put, delete_ };

template <>
struct EnumerationTable<Verb> {
  static constexpr EnumerationCase<Verb> cases[] = {
      {Verb::get, "GET"}, {Verb::post, "POST"}, {Verb::put, "PUT"}, {Verb::delete_, "DELETE"}};
};

/// Sends requests and receives answers. Implementations:
///
/// - send the given headers unchanged, and a write without a body with an empty one;
/// - call the handler once (answers after the first are dropped), on a thread of their choice, also
///   inside the call, but never after `cancel()` of the returned request has answered true; a
///   cancelled or finished request lets go of its handler;
/// - answer with the body on success; a refused request (any status that is not a success) with
///   `NetworkError::invalidStatusCode`, which carries the server's clock where the answer tells it;
///   anything else that goes wrong with an error of their own type;
/// - where they can, give the answer's text some 64 bytes of spare capacity: decoding then needs no
///   copy of it.
///
/// Any thread may call.
class ORVANE_EXPORT RequestManager {
 public:
  RequestManager() = default;
  RequestManager(const RequestManager&) = delete;
  RequestManager& operator=(const RequestManager&) = delete;
  virtual ~RequestManager();

  /// Sends a request and calls `then` with the body of its answer.
  /// @param url with scheme and host.
  /// @param body the bytes to send; empty for a read.
  /// @param headers sent as they are.
  virtual RequestHandle send(Verb verb, URL url, std::string body, Headers headers,
                             Completion<std::string> then) = 0;

  /// Sends a `Verb::get`.
  RequestHandle get(URL url, Headers headers, Completion<std::string> then) {
    return send(Verb::get, std::move(url), {}, std::move(headers), std::move(then));
  }
  /// Sends a `Verb::post`.
  RequestHandle post(URL url, std::string body, Headers headers, Completion<std::string> then) {
    return send(Verb::post, std::move(url), std::move(body), std::move(headers), std::move(then));
  }
  /// Sends a `Verb::put`.
  RequestHandle put(URL url, std::string body, Headers headers, Completion<std::string> then) {
    return send(Verb::put, std::move(url), std::move(body), std::move(headers), std::move(then));
  }
  /// Sends a `Verb::delete_`.
  RequestHandle delete_(URL url, std::string body, Headers headers, Completion<std::string> then) {
    return send(Verb::delete_, std::move(url), std::move(body), std::move(headers),
                std::move(then));
  }
};

}  // namespace orvane
