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

Operation<std::vector<Invitation>> InvitationService::fetchAccountInvites(
    std::optional<std::string> filtered) const {
  return get<std::vector<Invitation>>(
      *this, InvitationComposer(FetchInvitations{Type::account}, std::move(filtered)));
}

Operation<Invitation> InvitationService::sendVehicleInvitation(NewInvitation invitation) const {
  return post<Invitation>(*this, InvitationComposer(std::move(invitation)));
}

Operation<std::vector<Invitation>> InvitationService::sendAccountInvitation(
    NewInvitation invitation) const {
  return post<std::vector<Invitation>>(*this, InvitationComposer(std::move(invitation)));
}

Operation<Unit> InvitationService::respondToInvitation(InvitationReply reply) const {
  return post<Unit>(*this, InvitationComposer(std::move(reply)));
}

Operation<Unit> InvitationService::cancelVehicleInvitation(std::string fromUserId,
                                                           std::string invitationId) const {
  return delete_<Unit>(
      *this, InvitationComposer(DeleteInvitation{.userId = std::move(fromUserId),
                                                 .invatationId = std::move(invitationId)}));
}

Operation<Unit> InvitationService::removeGuestDriverFromVehicle(std::string toUserId,
                                                                std::string vehicleId) const {
  return delete_<Unit>(*this,
                       InvitationComposer(DeleteInvitation{.userId = std::move(toUserId),
                                                           .vehicleId = std::move(vehicleId)}));
}

Operation<Unit> InvitationService::removeGuestDriverFromAccount(std::string toUserId,
                                                                std::string accountId) const {
  return delete_<Unit>(*this,
                       InvitationComposer(DeleteInvitation{.userId = std::move(toUserId),
                                                           .accountID = std::move(accountId)}));
}

}  // namespace orvane
