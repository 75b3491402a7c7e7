// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Core/Call.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Services/Invitation/InvitationComposer.h>
#include <Orvane/Services/Invitation/InvitationService.h>

namespace orvane {

using Type = InvitationComposer::InvitationType;
using FetchInvitations = InvitationComposer::FetchInvitations;
using DeleteInvitation = InvitationComposer::DeleteInvitation;

Operation<std::vector<Invitation>> InvitationService::fetchVehicleInvites(
    std::optional<std::string> filtered) const {
  return get<std::vector<Invitation>>(
      *this, InvitationComposer(FetchInvitations{Type::vehicle}, std::move(filtered)));
}

RequestHandle InvitationService::fetchVehicleInvites(
    std::optional<std::string> filtered, Completion<std::vector<Invitation>> then) const {
  return fetchVehicleInvites(std::move(filtered)).start(std::move(then));
}

Operation<std::vector<Invitation>> InvitationService::fetchAccountInvites(
    std::optional<std::string> filtered) const {
  return get<std::vector<Invitation>>(
      *this, InvitationComposer(FetchInvitations{Type::account}, std::move(filtered)));
}

RequestHandle InvitationService::fetchAccountInvites(
    std::optional<std::string> filtered, Completion<std::vector<Invitation>> then) const {
  return fetchAccountInvites(std::move(filtered)).start(std::move(then));
}

Operation<Invitation> InvitationService::sendVehicleInvitation(NewInvitation invitation) const {
  return post<Invitation>(*this, InvitationComposer(std::move(invitation)));
}

RequestHandle InvitationService::sendVehicleInvitation(NewInvitation invitation,
                                                       Completion<Invitation> then) const {
  return sendVehicleInvitation(std::move(invitation)).start(std::move(then));
}

Operation<std::vector<Invitation>> InvitationService::sendAccountInvitation(
    NewInvitation invitation) const {
  return post<std::vector<Invitation>>(*this, InvitationComposer(std::move(invitation)));
}

RequestHandle InvitationService::sendAccountInvitation(
    NewInvitation invitation, Completion<std::vector<Invitation>> then) const {
  return sendAccountInvitation(std::move(invitation)).start(std::move(then));
}

Operation<Unit> InvitationService::respondToInvitation(InvitationReply reply) const {
  return post<Unit>(*this, InvitationComposer(std::move(reply)));
}

RequestHandle InvitationService::respondToInvitation(InvitationReply reply,
                                                     Completion<Unit> then) const {
  return respondToInvitation(std::move(reply)).start(std::move(then));
}

Operation<Unit> InvitationService::cancelVehicleInvitation(std::string fromUserId,
                                                           std::string invitationId) const {
  return delete_<Unit>(
      *this, InvitationComposer(DeleteInvitation{.userId = std::move(fromUserId),
                                                 .invatationId = std::move(invitationId)}));
}

RequestHandle InvitationService::cancelVehicleInvitation(std::string fromUserId,
                                                         std::string invitationId,
                                                         Completion<Unit> then) const {
  return cancelVehicleInvitation(std::move(fromUserId), std::move(invitationId))
      .start(std::move(then));
}

Operation<Unit> InvitationService::removeGuestDriverFromVehicle(std::string toUserId,
                                                                std::string vehicleId) const {
  return delete_<Unit>(*this,
                       InvitationComposer(DeleteInvitation{.userId = std::move(toUserId),
                                                           .vehicleId = std::move(vehicleId)}));
}

RequestHandle InvitationService::removeGuestDriverFromVehicle(std::string toUserId,
                                                              std::string vehicleId,
                                                              Completion<Unit> then) const {
  return removeGuestDriverFromVehicle(std::move(toUserId), std::move(vehicleId))
      .start(std::move(then));
}

Operation<Unit> InvitationService::removeGuestDriverFromAccount(std::string toUserId,
                                                                std::string accountId) const {
  return delete_<Unit>(*this,
                       InvitationComposer(DeleteInvitation{.userId = std::move(toUserId),
                                                           .accountID = std::move(accountId)}));
}

RequestHandle InvitationService::removeGuestDriverFromAccount(std::string toUserId,
                                                              std::string accountId,
                                                              Completion<Unit> then) const {
  return removeGuestDriverFromAccount(std::move(toUserId), std::move(accountId))
      .start(std::move(then));
}

}  // namespace orvane
