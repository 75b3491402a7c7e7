// SPDX-License-Identifier: Apache-2.0
#include "data/Papers.h"

#include "data/People.h"

#include <array>
#include <optional>
#include <string>

namespace orvane::sandbox {

namespace {

struct Invitation {
  const char* type;
  const char* status;
  const char* from;
  const char* to;  // null: somebody who is not a user
  const char* firstName;
  const char* lastName;
  const char* vehicleId;
  const char* accountId;
};

// Whoever has accepted drives the vehicle or for the account; the links below say so.
constexpr std::array<Invitation, 10> allInvitations{{
    {"VEHICLE", "PENDING", "1001", "1006", "Sam", "Taylor", "3006", nullptr},
    {"VEHICLE", "ACCEPTED", "1001", "1004", "Daniel", "Meier", "3006", nullptr},
    {"VEHICLE", "DECLINED", "1001", "1005", "Priya", "Nair", "3001", nullptr},
    {"VEHICLE", "ACCEPTED_ACKNOWLEDGED", "1001", "1002", "Marc", "Keller", "3001", nullptr},
    {"VEHICLE", "DECLINED_ACKNOWLEDGED", "1001", nullptr, "Tom", "Roth", "3001", nullptr},
    {"VEHICLE", "UNKNOWN", "1001", nullptr, "Urs", "Vogt", "3006", nullptr},
    {"VEHICLE", "PENDING", "1004", "1001", "Anna", "Keller", "3003", nullptr},
    {"ACCOUNT", "PENDING", "1006", "1001", "Anna", "Keller", nullptr, "2003"},
    {"ACCOUNT", "ACCEPTED", "1004", "1106", "Greta", "Vogel", nullptr, "2002"},
    {"LEADERBOARD", "PENDING", "1108", "1001", "Anna", "Keller", nullptr, nullptr},
}};

struct ActivationCode {
  const char* activationId;
  const char* code;
  const char* userId;  // null: anybody's
  bool used;
};

constexpr std::array<ActivationCode, 3> codes{{
    {"ACT-1007", "424242", "1007", false},
    {"ACT-OPEN", "777777", nullptr, false},
    {"ACT-USED", "111111", nullptr, true},
}};

struct Subscription {
  const char* userId;
  const char* type;
  int startedDaysAgo;
  int days;
  int trialDays;  // 0: none
};

constexpr std::array<Subscription, 9> allSubscriptions{{
    {"1001", "Regular", 120, 365, 0},
    {"1001", "MileageOnly", 485, 365, 0},
    {"1001", "MileagePlus", 850, 365, 0},
    {"1001", "TryAndBuy", 20, 365, 90},
    {"1001", "aFNOL", 120, 365, 0},
    {"1002", "Regular", 117, 365, 0},
    {"1003", "TryAndBuy", 30, 365, 60},
    {"1004", "MileagePlus", 111, 1095, 0},
    {"1006", "MileageOnly", 105, 365, 0},
}};

template <class T>
std::optional<T> ifSet(T value, bool set) {
  return set ? std::optional{value} : std::nullopt;
}

std::optional<const char*> optional(const char* text) { return ifSet(text, text != nullptr); }

void layInvitations(DatabaseConnection& database, Milliseconds now) {
  std::int64_t id = 9001;
  for (const Invitation& invitation : allInvitations) {
    const Milliseconds created = now - (9020 - id) * millisPerDay / 2;
    const bool isUser = invitation.to != nullptr;
    const std::string email =
        std::string{invitation.firstName} + "." + invitation.lastName + "@example.com";
    database.execute("INSERT INTO invitations VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", id++,
                     invitation.type, created,
                     created + (std::string_view{invitation.status} == "PENDING" ? 0 : 3'600'000),
                     invitation.status, invitation.from, optional(invitation.to),
                     invitation.firstName, invitation.lastName, ifSet(email, !isUser), nullptr,
                     optional(invitation.vehicleId), optional(invitation.accountId));
  }
  database.execute("INSERT INTO vehicle_users VALUES ('3006', '1004', 'OPERATOR')");
  database.execute("INSERT INTO account_guests VALUES ('2002', '1106')");
}

void layDevices(DatabaseConnection& database) {
  for (const Person& person : people()) {
    if (!person.isSample || !person.activated) continue;
    const std::string userId = person.userId;
    database.execute("INSERT INTO devices VALUES (?, ?, 'MOBILE', ?, ?, ?, ?, ?)", userId,
                     "phone-" + userId, userId + "-0", "SN-" + userId, "push-" + userId, 1, true);
  }
  database.execute(
      "INSERT INTO devices VALUES ('1001', 'old-phone-1001', 'MOBILE', '1001-1', NULL, NULL, NULL,"
      " 0)");
}

void laySubscriptions(DatabaseConnection& database, Milliseconds now) {
  std::int64_t id = 70'001;
  const Milliseconds today = startOf(dayOf(now));
  for (const Subscription& subscription : allSubscriptions) {
    database.execute("INSERT INTO subscriptions VALUES (?, ?, ?, ?, ?, ?)", subscription.userId,
                     id++, subscription.type, today - subscription.startedDaysAgo * millisPerDay,
                     subscription.days * millisPerDay,
                     ifSet(subscription.trialDays * millisPerDay, subscription.trialDays > 0));
  }
}

void layNamedDrivers(DatabaseConnection& database, Milliseconds now) {
  const auto add = [&](int userId, const char* firstName, const char* lastName, const char* email,
                       const char* phone, bool activated) {
    database.execute("INSERT INTO named_drivers VALUES ('1001', ?, ?, ?, ?, ?, ?, ?, ?)", userId,
                     "P-" + std::to_string(userId), firstName, lastName, optional(email),
                     optional(phone), activated,
                     ifSet(startOf(dayOf(now)) - 60 * millisPerDay, activated));
  };
  add(1002, "Marc", "Keller", "marc.keller@example.com", "+41 61 555 1002", true);
  add(1006, "Sam", "Taylor", "sam.taylor@example.com", nullptr, true);
  add(1201, "Otto", "Keller", nullptr, nullptr, false);
}

}  // namespace

void layPapers(DatabaseConnection& database, Milliseconds now) {
  layInvitations(database, now);
  layDevices(database);
  laySubscriptions(database, now);
  layNamedDrivers(database, now);
  for (const ActivationCode& code : codes) {
    database.execute("INSERT INTO activations VALUES (?, ?, ?, ?)", code.activationId, code.code,
                     optional(code.userId), ifSet(now - millisPerDay, code.used));
  }
}

}  // namespace orvane::sandbox
