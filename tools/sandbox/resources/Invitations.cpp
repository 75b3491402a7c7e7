// SPDX-License-Identifier: Apache-2.0
//
// Invitations from the first word to the last: sent, answered, acknowledged, called back, and the
// guests who came of them shown out again.
#include "Backend.h"
#include "JsonWriter.h"
#include "resources/People.h"
#include "resources/Resources.h"
#include "resources/VehicleRecord.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace orvane::sandbox {

namespace {

constexpr std::array<std::string_view, 6> states{
    "ACCEPTED", "PENDING", "DECLINED", "ACCEPTED_ACKNOWLEDGED", "DECLINED_ACKNOWLEDGED", "UNKNOWN"};

const std::string columns =
    "invitation_id, created_ms, updated_ms, status, from_user_id, to_user_id, to_first_name,"
    " to_last_name, vehicle_id, account_id";

void writeParty(JsonWriter& json, DatabaseConnection& database, std::string_view userId) {
  Rows user = database.query(
      "SELECT user_id, first_name, last_name, public_display_name FROM users WHERE user_id = ?",
      userId);
  json.beginObject();
  if (user.next()) {
    json.member("userId", user.text(0))
        .member("firstName", user.optionalText(1))
        .member("lastName", user.optionalText(2))
        .member("publicDisplayName", user.optionalText(3));
  }
  json.endObject();
}

void writeAccountOf(JsonWriter& json, DatabaseConnection& database, std::string_view accountId) {
  Rows account =
      database.query("SELECT account_id, identifier FROM accounts WHERE account_id = ?", accountId);
  if (!account.next()) return;
  json.key("account")
      .beginObject()
      .member("accountId", account.text(0))
      .member("identifier", account.text(1))
      .endObject();
}

void writeInvitation(JsonWriter& json, DatabaseConnection& database, const Rows& invitation) {
  json.beginObject()
      .member("invitationId", std::to_string(invitation.integer(0)))
      .member("creationTimestamp", invitation.integer(1))
      .member("lastUpdatedTimestamp", invitation.integer(2))
      .member("status", invitation.text(3))
      .key("fromUser");
  writeParty(json, database, invitation.text(4));
  json.key("toUser");
  if (invitation.isNull(5)) {
    json.beginObject()
        .member("firstName", invitation.text(6))
        .member("lastName", invitation.text(7))
        .endObject();
  } else {
    writeParty(json, database, invitation.text(5));
  }
  if (!invitation.isNull(8)) {
    json.key("vehicle");
    writeVehicle(json, database, invitation.text(8), {});
  }
  if (!invitation.isNull(9)) writeAccountOf(json, database, invitation.text(9));
  json.endObject();
}

void writeInvitation(JsonWriter& json, DatabaseConnection& database, std::int64_t id) {
  Rows invitation =
      database.query("SELECT " + columns + " FROM invitations WHERE invitation_id = ?", id);
  if (invitation.next()) writeInvitation(json, database, invitation);
}

/// The states that a filter names, as a list in SQL; every state without one.
std::string statesIn(const std::optional<std::string>& filter) {
  std::string list;
  const auto add = [&](std::string_view state) {
    list.append(list.empty() ? "'" : ", '").append(state).append("'");
  };
  if (!filter) {
    std::ranges::for_each(states, add);
    return list;
  }
  for (const std::string_view state : split(*filter, ',')) {
    if (std::ranges::find(states, state) == states.end()) {
      throw badRequest("\"filtered\" is not a state of invitations");
    }
    add(state);
  }
  if (list.empty()) throw badRequest("\"filtered\" is empty");
  return list;
}

Reply listInvitations(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  auto type = call.query.oneOf("type", {"vehicle", "account", "leaderboard"});
  if (!type) throw badRequest("\"type\" is missing");
  std::ranges::transform(*type, type->begin(), [](char c) { return static_cast<char>(c - 32); });
  JsonWriter json;
  json.beginArray();
  Rows invitations = call.database.query(
      "SELECT " + columns +
          " FROM invitations WHERE type = ?1 AND (from_user_id = ?2 OR to_user_id = ?2)"
          " AND status IN (" +
          statesIn(call.query.text("filtered")) + ") ORDER BY created_ms DESC, invitation_id DESC",
      *type, userId);
  while (invitations.next()) writeInvitation(json, call.database, invitations);
  return jsonReply(json.endArray().take());
}

/// The body of a new invitation.
struct Draft {
  std::string type;
  std::string fromUserId;
  std::string firstName;
  std::string lastName;
  std::optional<std::string> email;
  std::optional<std::string> phone;
  std::string vehicleIds;
  std::string accountIds;
};

Draft readDraft(const std::string& body) {
  const auto json = nlohmann::json::parse(body, nullptr, false);
  if (!json.is_object()) throw badRequest("the body is not a JSON object");
  std::map<std::string, std::string> members;
  for (const auto& [name, value] : json.items()) {
    if (!value.is_string()) throw badRequest("the member \"" + name + "\" is not a text");
    members[name] = value.get<std::string>();
  }
  const auto take = [&](const char* name) -> std::optional<std::string> {
    const auto node = members.extract(name);
    return node.empty() ? std::nullopt : std::optional{std::move(node.mapped())};
  };
  const auto require = [&](const char* name) {
    auto text = take(name);
    if (!text || text->empty()) throw badRequest(std::string{"\""} + name + "\" is missing");
    return *std::move(text);
  };
  Draft draft{require("invitationType"),
              require("fromUserId"),
              require("toUserFirstName"),
              require("toUserLastName"),
              take("toUserEmail"),
              take("toUserPhoneNumber"),
              take("vehicleIds").value_or(""),
              take("fromAccountIds").value_or("")};
  if (!members.empty()) throw badRequest("unknown member \"" + members.begin()->first + "\"");
  if (draft.type != "VEHICLE" && draft.type != "ACCOUNT") {
    throw badRequest("\"invitationType\" is neither VEHICLE nor ACCOUNT");
  }
  if (draft.type == "VEHICLE" && draft.vehicleIds.empty()) {
    throw badRequest("\"vehicleIds\" is missing");
  }
  if (!draft.email && !draft.phone) throw badRequest("nobody can be reached: no e-mail, no phone");
  return draft;
}

std::optional<std::string> findRecipient(DatabaseConnection& database, const Draft& draft) {
  Rows user =
      database.query("SELECT user_id FROM users WHERE email = ?1 COLLATE NOCASE OR phone = ?2",
                     draft.email, draft.phone);
  return user.next() ? std::optional<std::string>{user.text(0)} : std::nullopt;
}

void requireOwnVehicle(Call& call, std::string_view vehicleId) {
  requireVehicle(call, vehicleId);
  if (vehicleRole(call.database, vehicleId, call.callerId) != "OWNER") {
    throw forbidden("only the owner may invite to a vehicle");
  }
}

std::string accountOf(DatabaseConnection& database, const std::string& userId) {
  Rows user = database.query("SELECT account_id FROM users WHERE user_id = ?", userId);
  return user.next() ? std::string{user.text(0)} : std::string{};
}

std::int64_t insertInvitation(Call& call, const Draft& draft,
                              const std::optional<std::string>& recipient,
                              const std::optional<std::string>& vehicleId,
                              const std::optional<std::string>& accountId) {
  const bool pending =
      call.database
          .query(
              "SELECT 1 FROM invitations WHERE status = 'PENDING' AND from_user_id = ?1"
              " AND (to_user_id IS ?2 AND to_email IS ?3 AND to_phone IS ?4)"
              " AND vehicle_id IS ?5 AND account_id IS ?6",
              call.callerId, recipient, draft.email, draft.phone, vehicleId, accountId)
          .next();
  if (pending) throw conflict("the same invitation is still waiting for an answer");
  const Milliseconds now = call.backend.now();
  call.database.execute(
      "INSERT INTO invitations (type, created_ms, updated_ms, status, from_user_id, to_user_id,"
      " to_first_name, to_last_name, to_email, to_phone, vehicle_id, account_id)"
      " VALUES (?1, ?2, ?2, 'PENDING', ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)",
      draft.type, now, call.callerId, recipient, draft.firstName, draft.lastName, draft.email,
      draft.phone, vehicleId, accountId);
  return call.database.lastInsertId();
}

/// One invitation per vehicle or account.
std::vector<std::int64_t> insertInvitations(Call& call, const Draft& draft) {
  const auto recipient = findRecipient(call.database, draft);
  std::vector<std::int64_t> ids;
  if (draft.type == "VEHICLE") {
    for (const std::string_view vehicleId : split(draft.vehicleIds, ',')) {
      requireOwnVehicle(call, vehicleId);
      ids.push_back(insertInvitation(call, draft, recipient, std::string{vehicleId}, {}));
    }
    return ids;
  }
  const std::string own = accountOf(call.database, call.callerId);
  const std::string accounts = draft.accountIds.empty() ? own : draft.accountIds;
  for (const std::string_view accountId : split(accounts, ',')) {
    if (accountId != own) throw forbidden("this account is not the caller's");
    ids.push_back(insertInvitation(call, draft, recipient, {}, own));
  }
  return ids;
}

/// A vehicle invitation is answered with one object, the first, and an account invitation with a
/// list.
Reply sendInvitation(Call& call) {
  const Draft draft = readDraft(call.request.body);
  ownUser(call, draft.fromUserId);
  Transaction transaction{call.database};
  const auto ids = insertInvitations(call, draft);
  transaction.commit();
  JsonWriter json;
  if (draft.type == "VEHICLE") {
    writeInvitation(json, call.database, ids.front());
    return jsonReply(json.take());
  }
  json.beginArray();
  for (const std::int64_t id : ids) writeInvitation(json, call.database, id);
  return jsonReply(json.endArray().take());
}

struct Step {
  std::string_view action;
  std::string_view before;
  std::string_view after;
  bool byRecipient;  // an outcome may be acknowledged by either side
};

constexpr std::array<Step, 4> steps{{
    {"accept", "PENDING", "ACCEPTED", true},
    {"decline", "PENDING", "DECLINED", true},
    {"accept_acknowledged", "ACCEPTED", "ACCEPTED_ACKNOWLEDGED", false},
    {"decline_acknowledged", "DECLINED", "DECLINED_ACKNOWLEDGED", false},
}};

void letGuestIn(DatabaseConnection& database, const std::string& guestId,
                const std::optional<std::string>& vehicleId,
                const std::optional<std::string>& accountId) {
  if (vehicleId) {
    database.execute("INSERT OR IGNORE INTO vehicle_users VALUES (?, ?, 'OPERATOR')", *vehicleId,
                     guestId);
  }
  if (accountId) {
    database.execute("INSERT OR IGNORE INTO account_guests VALUES (?, ?)", *accountId, guestId);
  }
}

Reply answerInvitation(Call& call) {
  const std::string& recipient = call.capture(0);
  const auto id = parseInteger(call.capture(1));
  const std::string action = call.query.requiredText("action");
  const auto step = std::ranges::find(steps, action, &Step::action);
  if (step == steps.end()) throw badRequest("\"action\" has an unknown value");

  std::optional<std::string> vehicleId;
  std::optional<std::string> accountId;
  Transaction transaction{call.database};
  {
    Rows invitation = call.database.query(
        "SELECT from_user_id, status, vehicle_id, account_id FROM invitations"
        " WHERE invitation_id = ? AND to_user_id = ?",
        id, recipient);
    if (!invitation.next()) throw notFound("the user has no such invitation");
    const bool isSender = invitation.text(0) == call.callerId;
    if (call.callerId != recipient && (step->byRecipient || !isSender)) {
      throw forbidden("this invitation is not the caller's to answer");
    }
    if (invitation.text(1) != step->before) {
      throw conflict("the invitation is " + std::string{invitation.text(1)});
    }
    vehicleId = invitation.optionalText(2);
    accountId = invitation.optionalText(3);
  }
  call.database.execute("UPDATE invitations SET status = ?, updated_ms = ? WHERE invitation_id = ?",
                        step->after, call.backend.now(), id);
  if (step->action == "accept") letGuestIn(call.database, recipient, vehicleId, accountId);
  transaction.commit();
  JsonWriter json;
  writeInvitation(json, call.database, *id);
  return jsonReply(json.take());
}

Reply noContent() { return jsonReply("", 204); }

/// Calls back whatever vehicle invitation of the user is still unanswered: the request names none.
Reply cancelVehicleInvitations(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  call.database.execute(
      "DELETE FROM invitations WHERE from_user_id = ? AND type = 'VEHICLE' AND status = 'PENDING'",
      userId);
  return noContent();
}

/// By the guest, or by the vehicle's owner.
Reply removeGuestFromVehicle(Call& call) {
  const std::string& guestId = call.capture(0);
  const std::string& vehicleId = call.capture(1);
  requireVehicle(call, vehicleId);
  const bool mayRemove =
      guestId == call.callerId || vehicleRole(call.database, vehicleId, call.callerId) == "OWNER";
  if (!mayRemove) throw forbidden("only the owner may remove other drivers");
  const std::string role = vehicleRole(call.database, vehicleId, guestId);
  if (role.empty()) throw notFound("the user does not drive this vehicle");
  if (role == "OWNER") throw conflict("the owner is no guest");
  call.database.execute("DELETE FROM vehicle_users WHERE vehicle_id = ? AND user_id = ?", vehicleId,
                        guestId);
  return noContent();
}

/// By the guest, or by a user whose own account it is.
Reply removeGuestFromAccount(Call& call) {
  const std::string& guestId = call.capture(0);
  const std::string& accountId = call.capture(1);
  const bool isOwn = accountOf(call.database, call.callerId) == accountId;
  if (guestId != call.callerId && !isOwn) throw forbidden("this account is not the caller's");
  if (accountOf(call.database, guestId) == accountId) {
    throw conflict("the user is no guest of this account");
  }
  if (call.database.execute("DELETE FROM account_guests WHERE account_id = ? AND user_id = ?",
                            accountId, guestId) == 0) {
    throw notFound("the user does not drive for this account");
  }
  return noContent();
}

}  // namespace

void addInvitations(Router& router) {
  router.add(
      {.method = "POST", .path = "invitations", .handle = sendInvitation, .body = Body::json});
  router.add({.method = "GET",
              .path = "users/{user}/invitations",
              .handle = listInvitations,
              .query = {"type", "filtered"}});
  router.add({.method = "POST",
              .path = "users/{user}/invitations/{invitation}",
              .handle = answerInvitation,
              .query = {"action"}});
  router.add(
      {.method = "DELETE", .path = "users/{user}/vehicles/", .handle = cancelVehicleInvitations});
  router.add({.method = "DELETE",
              .path = "users/{user}/vehicles/{vehicle}",
              .handle = removeGuestFromVehicle});
  router.add({.method = "DELETE",
              .path = "users/{user}/accounts/{account}",
              .handle = removeGuestFromAccount});
}

}  // namespace orvane::sandbox
