// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Coding/Codable.h>
#include <Orvane/Models/Coders.h>
#include <Orvane/Models/Invitation.h>

namespace orvane {
namespace {

using InvitationUser = Invitation::InvitationUser;
constexpr KeyRow invitationUserKeys[] = {
    key<&InvitationUser::userId>("userId"),
    key<&InvitationUser::firstName>("firstName"),
    key<&InvitationUser::lastName>("lastName"),
    key<&InvitationUser::publicDisplayName>("publicDisplayName"),
};

constexpr KeyRow invitationKeys[] = {
    key<&Invitation::invitationId>("invitationId"),
    key<&Invitation::creationTimestamp>("creationTimestamp"),
    key<&Invitation::lastUpdatedTimestamp>("lastUpdatedTimestamp"),
    key<&Invitation::status>("status"),
    key<&Invitation::fromUser>("fromUser"),
    key<&Invitation::toUser>("toUser"),
    key<&Invitation::vehicle>("vehicle"),
    key<&Invitation::account>("account"),
};

}  // namespace

KeyTables keysOf(RecordTag<Invitation::InvitationUser>) { return invitationUserKeys; }
KeyTables keysOf(RecordTag<Invitation>) { return invitationKeys; }

template struct RecordCoding<Invitation::InvitationUser>;
template struct RecordCoding<std::vector<Invitation::InvitationUser>>;
template struct RecordCoding<Invitation>;
template struct RecordCoding<std::vector<Invitation>>;

bool Invitation::InvitationUser::operator==(const Invitation::InvitationUser&) const noexcept =
    default;
bool Invitation::operator==(const Invitation&) const noexcept = default;

}  // namespace orvane
