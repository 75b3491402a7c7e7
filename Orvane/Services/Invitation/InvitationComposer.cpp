// SPDX-License-Identifier: Apache-2.0
#include <Orvane/Common/NetworkError.h>
#include <Orvane/Platform/JSONWriter.h>
#include <Orvane/Platform/OneOf.h>
#include <Orvane/Platform/Text.h>
#include <Orvane/Services/Invitation/InvitationComposer.h>

namespace orvane {
namespace {

using Type = InvitationComposer::InvitationType;

// The lists want the types in lower case, unlike the bodies.
std::string_view queryText(Type type) {
  switch (type) {
    case Type::vehicle:
      return "vehicle";
    case Type::account:
      return "account";
    case Type::leaderboard:
      return "leaderboard";
  }
  return {};
}

// Writes an object of texts; an absent one makes no member.
class TextObject {
 public:
  TextObject() { writer_.beginObject(); }

  TextObject& add(std::string_view key, std::string_view value) {
    writer_.key(key);
    writer_.value(value);
    return *this;
  }
  TextObject& addPresent(std::string_view key, const std::optional<std::string>& value) {
    return value ? add(key, *value) : *this;
  }
  TextObject& addPresent(std::string_view key, const std::optional<std::set<std::string>>& values) {
    return values ? add(key, commaSeparated(*values)) : *this;
  }

  [[nodiscard]] Result<RequestBody> body() {
    writer_.endObject();
    if (!writer_.failure().empty()) return NetworkError::malformedRequest;
    return RequestBody{std::move(writer_).take(), standardJSONHeaders()};
  }

 private:
  json::Writer writer_;
};

std::string pathTo(const InvitationComposer::DeleteInvitation& deletion) {
  if (deletion.accountID) {
    return concatenated({"users/", deletion.userId, "/accounts/", *deletion.accountID});
  }
  return concatenated({"users/", deletion.userId, "/vehicles/", deletion.vehicleId.value_or("")});
}

}  // namespace

std::string InvitationComposer::path(std::string_view userID) const {
  if (std::holds_alternative<SendInvitation>(requestType)) return "invitations";
  if (const auto* deletion = std::get_if<DeleteInvitation>(&requestType)) return pathTo(*deletion);
  if (const auto* reply = std::get_if<RespondToInvitation>(&requestType)) {
    return concatenated({"users/", reply->toUserId, "/invitations/", reply->invitationId});
  }
  return concatenated({"users/", userID, "/invitations"});
}

std::optional<std::string> InvitationComposer::query() const {
  QueryItems items;
  if (const auto* fetch = std::get_if<FetchInvitations>(&requestType)) {
    items.add("type", queryText(fetch->invitationType));
    if (filtered) items.add("filtered", *filtered);
  }
  if (const auto* reply = std::get_if<RespondToInvitation>(&requestType)) {
    items.add("action", wireText(reply->response));
  }
  return std::move(items).joined();
}

std::optional<Result<RequestBody>> InvitationComposer::body() const {
  const auto* invitation = std::get_if<SendInvitation>(&requestType);
  if (invitation == nullptr) return std::nullopt;
  return TextObject()
      .add("invitationType", wireText(invitation->vehicleIDs ? Type::vehicle : Type::account))
      .add("fromUserId", invitation->fromUserID)
      .add("toUserFirstName", invitation->toUserFirstName)
      .add("toUserLastName", invitation->toUserLastName)
      .addPresent("toUserEmail", invitation->toUserEmail)
      .addPresent("toUserPhoneNumber", invitation->toUserPhoneNumber)
      .addPresent("vehicleIds", invitation->vehicleIDs)
      .addPresent("fromAccountIds", invitation->accountIDs)
      .body();
}

}  // namespace orvane
