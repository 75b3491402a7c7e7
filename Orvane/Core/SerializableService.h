// SPDX-License-Identifier: Apache-2.0
// What every service is made of.
#pragma once

#include <Orvane/Common/Identity.h>
#include <Orvane/Common/Operation.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>

#include <memory>

namespace orvane {

class RequestManager;
class OrvaneDetailsResolver;

/// The base of every service: an identity, and the collaborators that the host has registered.
///
/// A service keeps no state between calls. Any thread may call it, copies are cheap and share the
/// collaborators, and a call under way goes on when its service is gone. Every operation returns a
/// cancellable handle at once and calls its handler exactly once, unless the handle is cancelled
/// before. On which thread depends on how far the call has come:
///
/// - an error of the resolver, and what keeps the request from being formed, on the thread on which
///   the resolver answers: the main queue with the resolvers that work for real, inside the call
///   with `MockOrvaneResolver`;
/// - everything else on the thread on which the transport answers; a request that the transport
///   refuses at once is answered on the resolver's, too;
/// - an operation that fails without having to ask anybody says so: it calls inside the call.
///
/// What can arrive:
///
/// - the resolver's error, or `NetworkError::unknown` where it has none;
/// - `NetworkError::malformedRequest`: base URL and arguments form no URL, or the arguments no
/// body;
/// - `DataError`: a text of a form is not UTF-8;
/// - `NetworkError::invalidStatusCode`: the backend refused;
/// - `NetworkError::noData`: an empty answer where a record was expected;
/// - `NetworkError::invalidResponseData`: an answer that is not the record;
/// - any other error of the transport, unchanged.
class ORVANE_EXPORT SerializableService {
 public:
  /// In whose name it calls.
  [[nodiscard]] const Identity& identity() const noexcept { return identity_; }
  /// The transport that was registered when it was made.
  [[nodiscard]] const std::shared_ptr<RequestManager>& requestManager() const noexcept {
    return requestManager_;
  }
  /// Who finds out where the backend is, registered when it was made.
  [[nodiscard]] const std::shared_ptr<OrvaneDetailsResolver>& orvaneDetailsResolver()
      const noexcept {
    return orvaneDetailsResolver_;
  }

 protected:
  /// Takes the collaborators from the container. Nothing registered there for one of them is a
  /// programming fault that stops the process.
  explicit SerializableService(Identity identity);
  SerializableService(const SerializableService&) = default;
  SerializableService(SerializableService&&) = default;
  SerializableService& operator=(const SerializableService&) = default;
  SerializableService& operator=(SerializableService&&) = default;
  ~SerializableService() = default;

 private:
  Identity identity_;
  std::shared_ptr<RequestManager> requestManager_;
  std::shared_ptr<OrvaneDetailsResolver> orvaneDetailsResolver_;
};

}  // namespace orvane
