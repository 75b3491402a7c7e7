// SPDX-License-Identifier: Apache-2.0
// The application's entry to invitations between users.
#pragma once

#include <Orvane/Core/SerializableService.h>
#include <Orvane/Models/Invitation.h>
#include <Orvane/Platform/Export.h>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

/// An invitation to be sent.
struct ORVANE_EXPORT NewInvitation {
  /// The identifier of the user who invites.
  std::string fromUserID;
  std::string toUserFirstName;                     ///< Given name of who is invited.
  std::string toUserLastName;                      ///< Family name of who is invited.
  std::optional<std::string> toUserEmail{};        ///< E-mail address of who is invited.
  std::optional<std::string> toUserPhoneNumber{};  ///< Phone number of who is invited.
  /// The vehicles that the other person is to drive. Where they are given, even none, the
  /// invitation is one to vehicles; where they are absent, one to accounts.
  std::optional<std::set<std::string>> vehicleIDs{};
  /// The accounts that the other person is to join.
  std::optional<std::set<std::string>> accountIDs{};
};

/// A reply to an invitation.
struct ORVANE_EXPORT InvitationReply {
  /// The identifier of the user who replies.
  std::string toUserId;
  std::string invitationId;       ///< `Invitation::invitationId`.
  Invitation::Response response;  ///< What is replied.
  /// Not sent: the invitation's identifier is enough for the backend.
  std::optional<std::string> vehicleId{};
  /// Not sent, either.
  std::optional<std::string> accountId{};
};

/// Invites people, replies to invitations, and takes back what came of them.
class ORVANE_EXPORT InvitationService : public SerializableService {
 public:
  /// A service for the person who is signed in. A missing registration stops the process.
  explicit InvitationService(Identity identity) : SerializableService(std::move(identity)) {}

  /// Fetches the current user's invitations to vehicles, sent and received. `filtered` is handed to
  /// the backend as it is, for example "PENDING".
  Operation<std::vector<Invitation>> fetchVehicleInvites(
      std::optional<std::string> filtered = {}) const;
  RequestHandle fetchVehicleInvites(std::optional<std::string> filtered,
                                    Completion<std::vector<Invitation>> then) const;

  /// Fetches the current user's invitations to accounts, in the same way.
  Operation<std::vector<Invitation>> fetchAccountInvites(
      std::optional<std::string> filtered = {}) const;
  RequestHandle fetchAccountInvites(std::optional<std::string> filtered,
                                    Completion<std::vector<Invitation>> then) const;

  /// Sends an invitation and answers it. A text that is not UTF-8 fails with
  /// `NetworkError::malformedRequest`. What kind of invitation goes out depends on the vehicles
  /// alone, here as in `sendAccountInvitation`; the two differ in what the backend answers.
  Operation<Invitation> sendVehicleInvitation(NewInvitation invitation) const;
  RequestHandle sendVehicleInvitation(NewInvitation invitation, Completion<Invitation> then) const;

  /// Sends an invitation and answers those that the backend made of it, one for each account.
  Operation<std::vector<Invitation>> sendAccountInvitation(NewInvitation invitation) const;
  RequestHandle sendAccountInvitation(NewInvitation invitation,
                                      Completion<std::vector<Invitation>> then) const;

  /// Accepts or declines an invitation, or acknowledges that the other side did.
  Operation<Unit> respondToInvitation(InvitationReply reply) const;
  RequestHandle respondToInvitation(InvitationReply reply, Completion<Unit> then) const;

  /// Takes back the inviting user's invitations to vehicles. The backend is told the user and not
  /// the invitation: `invitationId` is not sent.
  Operation<Unit> cancelVehicleInvitation(std::string fromUserId, std::string invitationId) const;
  RequestHandle cancelVehicleInvitation(std::string fromUserId, std::string invitationId,
                                        Completion<Unit> then) const;

  /// Takes a vehicle from a guest driver.
  Operation<Unit> removeGuestDriverFromVehicle(std::string toUserId, std::string vehicleId) const;
  RequestHandle removeGuestDriverFromVehicle(std::string toUserId, std::string vehicleId,
                                             Completion<Unit> then) const;

  /// Removes a guest driver from an account.
  Operation<Unit> removeGuestDriverFromAccount(std::string toUserId, std::string accountId) const;
  RequestHandle removeGuestDriverFromAccount(std::string toUserId, std::string accountId,
                                             Completion<Unit> then) const;
};

}  // namespace orvane
