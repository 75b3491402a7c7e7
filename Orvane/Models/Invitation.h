// SPDX-License-Identifier: Apache-2.0
// Invitations: one user asks another to drive a vehicle or to join an account.
#pragma once

#include <Orvane/Coding/CodableTypes.h>
#include <Orvane/Models/User.h>
#include <Orvane/Models/Vehicle.h>
#include <Orvane/Platform/Enumeration.h>
#include <Orvane/Platform/Export.h>
#include <Orvane/Platform/Indirect.h>

#include <cstdint>
#include <optional>
#include <string>

// X11 has a macro of this name.
#pragma push_macro("Status")
#undef Status

namespace orvane {

/// An invitation, as both of its parties see it. Every member is absent where the backend did not
/// tell it.
struct ORVANE_EXPORT Invitation {
  /// One of the two parties.
  struct ORVANE_EXPORT InvitationUser {
    std::optional<std::string> userId{};             ///< The backend's identifier of the person.
    std::optional<std::string> firstName{};          ///< Given name.
    std::optional<std::string> lastName{};           ///< Family name.
    std::optional<std::string> publicDisplayName{};  ///< The name that others see.

    ORVANE_EXPORT bool operator==(const InvitationUser& other) const noexcept;
  };

  /// How far the invitation has come. The inviting side acknowledges what the other one answered. A
  /// status that is not listed fails the record: `unknown` is a status that the backend sends.
  enum class Status : std::uint8_t {
    accepted,
    pending,
    declined,
    acceptedAcknowledged,
    declinedAcknowledged,
    unknown,
  };

  /// What a party can reply.
  enum class Response : std::uint8_t { accept, decline, ackAccept, ackDecline };

  std::optional<std::string> invitationId{};     ///< What a reply names it by.
  std::optional<double> creationTimestamp{};     ///< Milliseconds since 1970-01-01 UTC.
  std::optional<double> lastUpdatedTimestamp{};  ///< Milliseconds since 1970-01-01 UTC.
  std::optional<Status> status{};                ///< How far it has come.
  Indirect<InvitationUser> fromUser{};           ///< Who invites.
  Indirect<InvitationUser> toUser{};             ///< Who is invited.
  /// What the other person is invited to drive.
  Indirect<Vehicle> vehicle{};
  /// What the other person is invited to join.
  Indirect<Account> account{};

  /// Vehicles are compared as vehicles are: by their identifiers.
  ORVANE_EXPORT bool operator==(const Invitation& other) const noexcept;
};

template <>
struct EnumerationTable<Invitation::Status> {
  using enum Invitation::Status;
  static constexpr EnumerationCase<Invitation::Status> cases[] = {
      {accepted, "ACCEPTED"},
      {pending, "PENDING"},
      {declined, "DECLINED"},
      {acceptedAcknowledged, "ACCEPTED_ACKNOWLEDGED"},
      {declinedAcknowledged, "DECLINED_ACKNOWLEDGED"},
      {unknown, "UNKNOWN"},
  };
  static constexpr bool isJSONText = true;
};

template <>
struct EnumerationTable<Invitation::Response> {
  using enum Invitation::Response;
  static constexpr EnumerationCase<Invitation::Response> cases[] = {
      {accept, "accept"},
      {decline, "decline"},
      {ackAccept, "accept_acknowledged"},
      {ackDecline, "decline_acknowledged"},
  };
};

template <>
inline constexpr bool hasCoding<Invitation::InvitationUser> = true;
template <>
inline constexpr bool hasCoding<Invitation> = true;

}  // namespace orvane

#pragma pop_macro("Status")
