// SPDX-License-Identifier: Apache-2.0
// What every request needs to know about its backend, and who finds it out.
#pragma once

#include <Orvane/Common/Identity.h>
#include <Orvane/Common/Request.h>
#include <Orvane/Common/RequestManager.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Result.h>
#include <Orvane/Platform/URL.h>

#include <string>

namespace orvane {

/// The resolved backend: where it is, how calls are authenticated, and who the current user is.
struct OrvaneDetails {
  /// The API root: the backend's base URL with "kavra/api/sdk" appended.
  URL apiURL;
  /// What every request to `apiURL` carries: "Authorization" when the person is signed in, else
  /// nothing.
  Headers headers;
  /// The backend's identifier of the current user; empty when no one is signed in.
  std::string userID;

  friend bool operator==(const OrvaneDetails&, const OrvaneDetails&) = default;
};

/// Finds out the backend's details; the first step of every operation.
class ORVANE_EXPORT OrvaneDetailsResolver {
 public:
  OrvaneDetailsResolver() = default;
  OrvaneDetailsResolver(const OrvaneDetailsResolver&) = delete;
  OrvaneDetailsResolver& operator=(const OrvaneDetailsResolver&) = delete;
  virtual ~OrvaneDetailsResolver();

  /// Answers the details for `identity`. Any thread may call. The handler runs once unless the
  /// request is cancelled; the resolvers that work for real call it on the main queue.
  virtual RequestHandle resolve(const Identity& identity, Completion<OrvaneDetails> then) = 0;
};

/// A resolver for calls made before a user is known; a type of its own, so that the container can
/// tell it from the other.
class ORVANE_EXPORT UnauthenticatedOrvaneDetailResolverProtocol : public OrvaneDetailsResolver {
 public:
  ~UnauthenticatedOrvaneDetailResolverProtocol() override;
};

}  // namespace orvane
