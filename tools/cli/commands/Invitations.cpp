// SPDX-License-Identifier: Apache-2.0
// orvane invitations: who asks whom to drive a vehicle or to join an account.
#include "Commands.h"
#include <Orvane/Services/Invitation/InvitationService.h>

namespace orvane::cli {
namespace {

using Invitations = std::vector<Invitation>;

// "Anna Keller (1001)": whoever has no identifier has not joined the programme yet.
std::string textOf(const Indirect<Invitation::InvitationUser>& party) {
  if (!party) return {};
  std::vector<std::string> words;
  for (const auto& word : {party->firstName, party->lastName}) {
    if (word && !word->empty()) words.push_back(*word);
  }
  if (words.empty() && party->publicDisplayName) words.push_back(*party->publicDisplayName);
  if (party->userId) words.push_back("(" + *party->userId + ")");
  return joined(words, " ");
}

// What the invitation is to.
std::string subjectOf(const Invitation& invitation) {
  if (invitation.vehicle) return invitation.vehicle->vehicleId.value_or("");
  if (invitation.account) return invitation.account->accountId.value_or("");
  return {};
}

Block blockOf(const Invitation& invitation) {
  return Block()
      .row("id", invitation.invitationId)
      .row("status", invitation.status)
      .row("from", textOf(invitation.fromUser))
      .row("to", textOf(invitation.toUser))
      .row(invitation.account ? "account" : "vehicle", subjectOf(invitation))
      .row("created", invitation.creationTimestamp, dateOfMilliseconds)
      .row("changed", invitation.lastUpdatedTimestamp, dateOfMilliseconds);
}

Table tableOf(const Invitations& invitations, const char* subject) {
  return {"invitations",
          invitations,
          {{"id", &Invitation::invitationId},
           {"status", &Invitation::status},
           {"from", [](const Invitation& invitation) { return textOf(invitation.fromUser); }, 1},
           {"to", [](const Invitation& invitation) { return textOf(invitation.toUser); }, 1},
           {subject, subjectOf},
           {"created", &Invitation::creationTimestamp, minuteOfMilliseconds, 2}}};
}

struct ListsInvitations {
  using Answer = Invitations;

  std::optional<std::string> filtered;

  void declare(Options& options) {
    options.option("--filtered", filtered,
                   "Only those in these states, as the backend words them: PENDING, ACCEPTED, …");
  }
};

struct ListVehicleInvitations : ListsInvitations {
  static constexpr std::string_view name = "vehicles";
  static constexpr std::string_view summary = "List invitations to vehicles, sent and received";
  static constexpr Example examples[] = {
      {"invitations vehicles --filtered PENDING", "those that nobody has answered yet"}};

  Operation<Invitations> ask(const InvitationService& service) const {
    return service.fetchVehicleInvites(filtered);
  }
  static void print(const Invitations& invitations, Output& output) {
    output.table(tableOf(invitations, "vehicle"));
  }
};

struct ListAccountInvitations : ListsInvitations {
  static constexpr std::string_view name = "accounts";
  static constexpr std::string_view summary = "List invitations to accounts, sent and received";

  Operation<Invitations> ask(const InvitationService& service) const {
    return service.fetchAccountInvites(filtered);
  }
  static void print(const Invitations& invitations, Output& output) {
    output.table(tableOf(invitations, "account"));
  }
};

// Left out, a user is the person who is signed in.
std::string userOr(const std::optional<UserID>& user, Session& session) {
  return user ? user->text : session.userID();
}

template <class ID>
std::set<std::string> textsOf(const std::vector<ID>& identifiers) {
  std::set<std::string> texts;
  for (const ID& identifier : identifiers) texts.insert(identifier.text);
  return texts;
}

struct SendsInvitation {
  std::optional<UserID> of;
  std::string firstName;
  std::string lastName;
  std::optional<std::string> email;
  std::optional<std::string> phone;
  std::vector<VehicleID> vehicles;
  std::vector<Identifier> accounts;

  void declare(Options& options) {
    options.required("--first-name", firstName, "The other person's first name");
    options.required("--last-name", lastName, "The other person's last name");
    options.option("--email", email, "The other person's e-mail address");
    options.option("--phone", phone, "The other person's phone number");
    options.option("--vehicles", vehicles,
                   "The vehicles to drive: these make it an invitation to vehicles");
    options.option("--accounts", accounts, "The accounts to join");
    options.option("--of", of,
                   "Whose invitation: who invites; left out, the person who is signed in");
  }

  [[nodiscard]] NewInvitation invitation(Session& session) const {
    NewInvitation invitation{.fromUserID = userOr(of, session),
                             .toUserFirstName = firstName,
                             .toUserLastName = lastName,
                             .toUserEmail = email,
                             .toUserPhoneNumber = phone};
    if (!vehicles.empty()) invitation.vehicleIDs = textsOf(vehicles);
    if (!accounts.empty()) invitation.accountIDs = textsOf(accounts);
    return invitation;
  }
};

struct SendInvitation : SendsInvitation {
  static constexpr std::string_view name = "send";
  static constexpr std::string_view summary = "Invite somebody to drive vehicles";
  static constexpr Example examples[] = {
      {"invitations send --vehicles 3006 --first-name Nora --last-name Frei "
       "--email nora.frei@example.com",
       "an invitation to one vehicle"}};

  Operation<Invitation> ask(Session& session) const {
    return InvitationService(session.identity()).sendVehicleInvitation(invitation(session));
  }
  static void print(const Invitation& sent, Output& output) { output.block(blockOf(sent)); }
};

struct SendAccountInvitation : SendsInvitation {
  static constexpr std::string_view name = "send-account";
  static constexpr std::string_view summary = "Invite somebody to join accounts";
  static constexpr Example examples[] = {
      {"invitations send-account --first-name Nora --last-name Frei "
       "--email nora.frei@example.com",
       "an invitation to one's own account"}};

  Operation<Invitations> ask(Session& session) const {
    return InvitationService(session.identity()).sendAccountInvitation(invitation(session));
  }
  static void print(const Invitations& sent, Output& output) {
    output.table(tableOf(sent, "account"));
  }
};

struct RespondToInvitation {
  static constexpr std::string_view name = "respond";
  static constexpr std::string_view summary =
      "Reply to an invitation, or acknowledge what the other side replied";
  static constexpr std::string_view done = "The reply has been sent.";
  static constexpr Example examples[] = {
      {"invitations respond 9007 accept", "takes an invitation up"},
      {"invitations respond 9002 accept_acknowledged --of 1004",
       "takes note that somebody did whom one had invited"},
  };

  InvitationID invitation;
  Invitation::Response response{};
  std::optional<UserID> of;

  void declare(Options& options) {
    options.positional("INVITATION", invitation, "The invitation");
    options.positional("REPLY", response, "The reply");
    options.option("--of", of,
                   "Whose invitation: whom it was sent to; left out, the person who is signed in");
  }

  Operation<Unit> ask(Session& session) const {
    return InvitationService(session.identity())
        .respondToInvitation({.toUserId = userOr(of, session),
                              .invitationId = invitation.text,
                              .response = response});
  }
};

struct CancelInvitations {
  static constexpr std::string_view name = "cancel";
  static constexpr std::string_view summary =
      "Take back all invitations to vehicles that wait for a reply";
  static constexpr std::string_view done = "The invitations have been taken back.";
  static constexpr Example examples[] = {
      {"invitations cancel", "all of them: the backend is told the inviting user and no more"}};

  std::optional<UserID> of;

  void declare(Options& options) {
    options.option("--of", of,
                   "Whose invitations: who invited; left out, the person who is signed in");
  }

  Operation<Unit> ask(Session& session) const {
    // An invitation's identifier would not be sent.
    return InvitationService(session.identity()).cancelVehicleInvitation(userOr(of, session), {});
  }
};

struct RemoveFromVehicle {
  static constexpr std::string_view name = "remove-from-vehicle";
  static constexpr std::string_view summary = "Take a vehicle from a guest driver";
  static constexpr std::string_view done = "The guest no longer drives the vehicle.";
  static constexpr Example examples[] = {
      {"invitations remove-from-vehicle 1004 3006", "1004 drives 3006 no longer"}};

  UserID user;
  VehicleID vehicle;

  void declare(Options& options) {
    options.positional("USER", user, "The guest");
    options.positional("VEHICLE", vehicle, "The vehicle");
  }

  Operation<Unit> ask(const InvitationService& service) const {
    return service.removeGuestDriverFromVehicle(user.text, vehicle.text);
  }
};

struct RemoveFromAccount {
  static constexpr std::string_view name = "remove-from-account";
  static constexpr std::string_view summary = "Remove a guest driver from an account";
  static constexpr std::string_view done = "The guest no longer belongs to the account.";
  static constexpr Example examples[] = {
      {"invitations remove-from-account 1106 2002", "1106 drives for 2002 no longer"}};

  UserID user;
  Identifier account;

  void declare(Options& options) {
    options.positional("USER", user, "The guest");
    options.positional("ACCOUNT", account, "The account");
  }

  Operation<Unit> ask(const InvitationService& service) const {
    return service.removeGuestDriverFromAccount(user.text, account.text);
  }
};

}  // namespace

Resource invitationCommands() {
  return Resource("invitations", "Who asks whom to drive a vehicle or to join an account")
      .add<ListVehicleInvitations>()
      .add<ListAccountInvitations>()
      .add<SendInvitation>()
      .add<SendAccountInvitation>()
      .add<RespondToInvitation>()
      .add<CancelInvitations>()
      .add<RemoveFromVehicle>()
      .add<RemoveFromAccount>();
}

}  // namespace orvane::cli
