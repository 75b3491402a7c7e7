// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Invitation/InvitationComposer.h>
#include <Orvane/Services/Invitation/InvitationService.h>

namespace orvane {

using Type = InvitationComposer::InvitationType;
using FetchInvitations = InvitationComposer::FetchInvitations;
using DeleteInvitation = InvitationComposer::DeleteInvitation;

RequestHandle InvitationService::fetchVehicleInvites(
    std::optional<std::string> filtered, Completion<std::vector<Invitation>> then) const {
  return get(*this, InvitationComposer(FetchInvitations{Type::vehicle}, std::move(filtered)),
             std::move(then));
}

RequestHandle InvitationService::fetchAccountInvites(
    std::optional<std::string> filtered, Completion<std::vector<Invitation>> then) const {
  return get(*this, InvitationComposer(FetchInvitations{Type::account}, std::move(filtered)),
             std::move(then));
}

RequestHandle InvitationService::sendVehicleInvitation(NewInvitation invitation,
                                                       Completion<Invitation> then) const {
  return post(*this, InvitationComposer(std::move(invitation)), std::move(then));
}

RequestHandle InvitationService::sendAccountInvitation(
    NewInvitation invitation, Completion<std::vector<Invitation>> then) const {
  return post(*this, InvitationComposer(std::move(invitation)), std::move(then));
}

RequestHandle InvitationService::respondToInvitation(InvitationReply reply,
                                                     Completion<Unit> then) const {
  return post(*this, InvitationComposer(std::move(reply)), std::move(then));
}

RequestHandle InvitationService::cancelVehicleInvitation(std::string fromUserId,
                                                         std::string invitationId,
                                                         Completion<Unit> then) const {
  return delete_(*this,
                 InvitationComposer(DeleteInvitation{.userId = std::move(fromUserId),
                                                     .invatationId = std::move(invitationId)}),
                 std::move(then));
}

RequestHandle InvitationService::removeGuestDriverFromVehicle(std::string toUserId,
                                                              std::string vehicleId,
                                                              Completion<Unit> then) const {
  return delete_(*this,
                 InvitationComposer(DeleteInvitation{.userId = std::move(toUserId),
                                                     .vehicleId = std::move(vehicleId)}),
                 std::move(then));
}

RequestHandle InvitationService::removeGuestDriverFromAccount(std::string toUserId,
                                                              std::string accountId,
                                                              Completion<Unit> then) const {
  return delete_(*this,
                 InvitationComposer(DeleteInvitation{.userId = std::move(toUserId),
                                                     .accountID = std::move(accountId)}),
                 std::move(then));
}

}  // namespace orvane
