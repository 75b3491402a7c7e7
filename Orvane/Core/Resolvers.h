// SPDX-License-Identifier: Apache-2.0
// The resolvers of the backend's details.
#pragma once

#include <Orvane/Common/Container.h>
#include <Orvane/Common/Resolvers.h>
#include <Orvane/Common/Stores.h>
#include <Orvane/Core/OrvaneDetails.h>
#include <Orvane/Core/UserIdentifier.h>
#include <Orvane/Platform/Export.h>

#include <memory>
#include <utility>

namespace orvane {

/// What both resolvers are made of.
struct ResolverCollaborators {
  std::shared_ptr<TokenResolver> tokenResolver;        ///< Makes the tokens.
  std::shared_ptr<EndpointResolver> endpointResolver;  ///< Knows where the backend is.
  std::shared_ptr<UserIdentifier> userIdentifier;      ///< Finds out who is signed in.
  std::shared_ptr<TimeOffsetStore> offsetStore;        ///< Keeps how far the device's clock is off.
};

/// Resolves base URL, token and user identifier, one after the other.
///
/// When the lookup of the user identifier is refused with status 401 and the answer tells the
/// server's clock, the difference to the device's clock is stored and token and lookup are tried
/// once more; a server's clock that is more than a century from the device's is not believed. The
/// offset stays, so that a device with a wrong clock pays once per process. Outcomes are delivered
/// on the main queue: an error of a step unchanged, `NetworkError::unknown` for one that has none,
/// and `NetworkError::malformedRequest` for a base URL without a scheme or a host.
class ORVANE_EXPORT TokenOffsettingOrvaneDetailsResolver final : public OrvaneDetailsResolver {
 public:
  /// None of the collaborators may be null.
  explicit TokenOffsettingOrvaneDetailsResolver(ResolverCollaborators collaborators)
      : collaborators_(std::move(collaborators)) {}

  /// Made of what `container`, or one of its parents, has registered. A missing registration is a
  /// programming fault. `Container::common()` has no `UserIdentifier` by itself: to be called by a
  /// factory that is registered there, with the container that it is given, the library's own.
  [[nodiscard]] static std::shared_ptr<TokenOffsettingOrvaneDetailsResolver> make(
      Container& container);

  RequestHandle resolve(const Identity& identity, Completion<OrvaneDetails> then) override;

 private:
  const ResolverCollaborators collaborators_;
};

/// Resolves the base URL alone, for calls made before a user is known: `headers` and `userID` of
/// its details are empty. Outcomes are delivered on the main queue; errors are those of the other.
class ORVANE_EXPORT UnauthenticatedOrvaneDetailResolver final
    : public UnauthenticatedOrvaneDetailResolverProtocol {
 public:
  /// Only the endpoint resolver is asked; it must not be null.
  explicit UnauthenticatedOrvaneDetailResolver(ResolverCollaborators collaborators)
      : collaborators_(std::move(collaborators)) {}

  RequestHandle resolve(const Identity& identity, Completion<OrvaneDetails> then) override;

 private:
  const ResolverCollaborators collaborators_;
};

/// Answers the same details for everyone, at once and on the calling thread: for development.
class ORVANE_EXPORT MockOrvaneResolver final : public OrvaneDetailsResolver {
 public:
  RequestHandle resolve(const Identity& identity, Completion<OrvaneDetails> then) override;
};

}  // namespace orvane
