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

std::optional<Date> dateOf(const std::optional<double>& milliseconds) {
  if (!milliseconds) return std::nullopt;
  return dateOfMilliseconds(*milliseconds);
}

Block blockOf(const Invitation& invitation) {
  return Block()
      .row("id", invitation.invitationId)
      .row("status", invitation.status)
      .row("from", textOf(invitation.fromUser))
      .row("to", textOf(invitation.toUser))
      .row(invitation.account ? "account" : "vehicle", subjectOf(invitation))
      .row("created", dateOf(invitation.creationTimestamp))
      .row("changed", dateOf(invitation.lastUpdatedTimestamp));
}

Table tableOf(const Invitations& invitations, const char* subject) {
  Table table{"id", "status", "from", "to", subject, {"created", Table::Fit::whole}};
  for (const Invitation& invitation : invitations) {
    table.row(invitation.invitationId, invitation.status, textOf(invitation.fromUser),
              textOf(invitation.toUser), subjectOf(invitation),
              dateOf(invitation.creationTimestamp));
  }
  return table;
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

  RequestHandle start(const Identity& identity, Completion<Invitations> then) const {
    return InvitationService(identity).fetchVehicleInvites(filtered, std::move(then));
  }
  static void print(const Invitations& invitations, Output& output) {
    output.table(tableOf(invitations, "vehicle"));
  }
};

struct ListAccountInvitations : ListsInvitations {
  static constexpr std::string_view name = "accounts";
  static constexpr std::string_view summary = "List invitations to accounts, sent and received";

  RequestHandle start(const Identity& identity, Completion<Invitations> then) const {
    return InvitationService(identity).fetchAccountInvites(filtered, std::move(then));
  }
  static void print(const Invitations& invitations, Output& output) {
    output.table(tableOf(invitations, "account"));
  }
};

// Left out, a user is the person who is signed in.
std::string userOr(const std::optional<Identifier>& user, Session& session) {
  return user ? user->text : session.userID();
}

std::set<std::string> textsOf(const std::vector<Identifier>& identifiers) {
  std::set<std::string> texts;
  for (const Identifier& identifier : identifiers) texts.insert(identifier.text);
  return texts;
}

struct SendsInvitation {
  std::optional<Identifier> from;
  std::string firstName;
  std::string lastName;
  std::optional<std::string> email;
  std::optional<std::string> phone;
  std::vector<Identifier> vehicles;
  std::vector<Identifier> accounts;

  void declare(Options& options) {
    options.required("--first-name", firstName, "The other person's first name");
    options.required("--last-name", lastName, "The other person's last name");
    options.option("--email", email, "The other person's e-mail address");
    options.option("--phone", phone, "The other person's phone number");
    options.option("--vehicles", vehicles,
                   "The vehicles to drive: these make it an invitation to vehicles");
    options.option("--accounts", accounts, "The accounts to join");
    options.option("--from", from, "Who invites; left out, the person who is signed in");
  }

  [[nodiscard]] NewInvitation invitation(Session& session) const {
    NewInvitation invitation{.fromUserID = userOr(from, session),
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

  void run(Session& session) const {
    session.connect();
    const NewInvitation draft = invitation(session);
    const auto sent = session.call<Invitation>([&](Completion<Invitation> then) {
      return InvitationService(session.identity()).sendVehicleInvitation(draft, std::move(then));
    });
    printAnswer(*this, sent, session.output());
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

  void run(Session& session) const {
    session.connect();
    const NewInvitation draft = invitation(session);
    const auto sent = session.call<Invitations>([&](Completion<Invitations> then) {
      return InvitationService(session.identity()).sendAccountInvitation(draft, std::move(then));
    });
    printAnswer(*this, sent, session.output());
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
      {"invitations respond 9002 accept_acknowledged --to 1004",
       "takes note that somebody did whom one had invited"},
  };

  Identifier invitation;
  Invitation::Response response{};
  std::optional<Identifier> to;

  void declare(Options& options) {
    options.positional("INVITATION", invitation, "The invitation");
    options.positional("REPLY", response, "The reply");
    options.option("--to", to,
                   "Whom the invitation was sent to; left out, the person who is signed in");
  }

  void run(Session& session) const {
    session.connect();
    const InvitationReply reply{
        .toUserId = userOr(to, session), .invitationId = invitation.text, .response = response};
    const auto answer = session.call<Unit>([&](Completion<Unit> then) {
      return InvitationService(session.identity()).respondToInvitation(reply, std::move(then));
    });
    printAnswer(*this, answer, session.output());
  }
};

struct CancelInvitations {
  static constexpr std::string_view name = "cancel";
  static constexpr std::string_view summary =
      "Take back all invitations to vehicles that wait for a reply";
  static constexpr std::string_view done = "The invitations have been taken back.";
  static constexpr Example examples[] = {
      {"invitations cancel", "all of them: the backend is told the inviting user and no more"}};

  std::optional<Identifier> from;

  void declare(Options& options) {
    options.option("--from", from, "Who invited; left out, the person who is signed in");
  }

  void run(Session& session) const {
    session.connect();
    const std::string user = userOr(from, session);
    const auto answer = session.call<Unit>([&](Completion<Unit> then) {
      // An invitation's identifier would not be sent.
      return InvitationService(session.identity())
          .cancelVehicleInvitation(user, {}, std::move(then));
    });
    printAnswer(*this, answer, session.output());
  }
};

struct RemoveFromVehicle {
  using Answer = Unit;
  static constexpr std::string_view name = "remove-from-vehicle";
  static constexpr std::string_view summary = "Take a vehicle from a guest driver";
  static constexpr std::string_view done = "The guest no longer drives the vehicle.";
  static constexpr Example examples[] = {
      {"invitations remove-from-vehicle 1004 3006", "1004 drives 3006 no longer"}};

  Identifier user;
  Identifier vehicle;

  void declare(Options& options) {
    options.positional("USER", user, "The guest");
    options.positional("VEHICLE", vehicle, "The vehicle");
  }

  RequestHandle start(const Identity& identity, Completion<Unit> then) const {
    return InvitationService(identity).removeGuestDriverFromVehicle(user.text, vehicle.text,
                                                                    std::move(then));
  }
};

struct RemoveFromAccount {
  using Answer = Unit;
  static constexpr std::string_view name = "remove-from-account";
  static constexpr std::string_view summary = "Remove a guest driver from an account";
  static constexpr std::string_view done = "The guest no longer belongs to the account.";
  static constexpr Example examples[] = {
      {"invitations remove-from-account 1106 2002", "1106 drives for 2002 no longer"}};

  Identifier user;
  Identifier account;

  void declare(Options& options) {
    options.positional("USER", user, "The guest");
    options.positional("ACCOUNT", account, "The account");
  }

  RequestHandle start(const Identity& identity, Completion<Unit> then) const {
    return InvitationService(identity).removeGuestDriverFromAccount(user.text, account.text,
                                                                    std::move(then));
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
