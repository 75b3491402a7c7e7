// SPDX-License-Identifier: Apache-2.0
//
// "identity" and "users/{id}": who the caller is, the user record with its expansions, and the
// multipart updates of profile and address.
#include "Backend.h"
#include "resources/People.h"
#include "resources/Resources.h"

#include <algorithm>
#include <array>
#include <set>

namespace orvane::sandbox {

namespace {

constexpr std::size_t longestValue = 4096;

Reply readIdentity(Call& call) {
  JsonWriter json;
  json.beginObject().member("userId", call.callerId).endObject();
  return jsonReply(json.take());
}

void writeAssociatedUsers(JsonWriter& json, Call& call, const std::string& userId) {
  json.key("associatedUsers").beginArray();
  Rows others = call.database.query(
      "WITH mine AS (SELECT account_id FROM users WHERE user_id = ?1"
      " UNION SELECT account_id FROM account_guests WHERE user_id = ?1) SELECT " +
          userColumns +
          " FROM users WHERE user_id <> ?1 AND (account_id IN mine OR user_id IN"
          " (SELECT user_id FROM account_guests WHERE account_id IN mine)) ORDER BY user_id",
      userId);
  while (others.next()) {
    json.beginObject();
    writeUserMembers(json, others);
    json.endObject();
  }
  json.endArray();
}

void writeSharedInformation(JsonWriter& json, Call& call, const std::string& userId) {
  Rows user = call.database.query(
      "SELECT facebook_info, self_description, city, subdivision, date_of_birth, gender,"
      " activated_ms, driver_type FROM users WHERE user_id = ?",
      userId);
  if (!user.next()) return;
  json.key("sharedInformation")
      .beginObject()
      .member("facebookInfo", user.optionalText(0))
      .member("selfDescription", user.optionalText(1))
      .member("city", user.optionalText(2))
      .member("subdivision", user.optionalText(3));
  if (const auto birth = parseDay(user.text(4))) {
    json.member("age", age(*birth, dayOf(call.backend.now())));
  }
  json.member("gender", user.optionalText(5))
      .member("utcActivationDateInMillis", user.optionalInteger(6))
      .member("driverType", user.optionalText(7))
      .endObject();
}

void writeAccount(JsonWriter& json, Call& call, const std::string& userId) {
  Rows account = call.database.query(
      "SELECT account_id, identifier FROM accounts JOIN users USING (account_id) WHERE user_id = ?",
      userId);
  if (!account.next()) return;
  json.key("account")
      .beginObject()
      .member("accountId", account.text(0))
      .member("identifier", account.text(1))
      .endObject();
}

void writeRole(JsonWriter& json, Call& call, const std::string& userId) {
  Rows user = call.database.query(
      "SELECT role_names, support_access_granted FROM users WHERE user_id = ?", userId);
  if (!user.next()) return;
  json.key("userRole").beginObject().key("roleNames").beginArray();
  for (const std::string_view name : split(user.text(0), ',')) json.value(name);
  json.endArray().member("supportAccessGranted", user.optionalText(1)).endObject();
}

void writeCustomFields(JsonWriter& json, Call& call, const std::string& userId) {
  Rows user = call.database.query("SELECT custom_fields FROM users WHERE user_id = ?", userId);
  if (user.next()) json.rawMember("customFields", user.text(0));
}

struct ExpandedMember {
  const char* expansion;
  void (*write)(JsonWriter&, Call&, const std::string& userId);
};

constexpr std::array<ExpandedMember, 5> expandedMembers{{
    {"associatedUsers", &writeAssociatedUsers},
    {"sharedInformation", &writeSharedInformation},
    {"associatedAccount", &writeAccount},
    {"customFields", &writeCustomFields},
    {"role", &writeRole},
}};

Reply writeUser(Call& call, const std::string& userId, const std::set<std::string>& expansions) {
  JsonWriter json;
  json.beginObject();
  {
    Rows user =
        call.database.query("SELECT " + userColumns + " FROM users WHERE user_id = ?", userId);
    if (user.next()) writeUserMembers(json, user);
  }
  for (const auto& [expansion, write] : expandedMembers) {
    if (expansions.contains(expansion)) write(json, call, userId);
  }
  json.endObject();
  return jsonReply(json.take());
}

Reply readUser(Call& call) {
  const auto expansions = call.query.expansions(
      {"associatedUsers", "sharedInformation", "associatedAccount", "customFields", "role"});
  return writeUser(call, readableUser(call, call.capture(0)), expansions);
}

using Check = bool (*)(const Call&, std::string_view value);

bool isAny(const Call&, std::string_view) { return true; }
bool isFilled(const Call&, std::string_view value) { return !value.empty(); }
bool isTruth(const Call&, std::string_view value) { return value == "true" || value == "false"; }

bool isEmail(const Call&, std::string_view value) {
  const auto at = value.find('@');
  return value.empty() || (at != 0 && at != std::string_view::npos && at + 1 < value.size());
}

bool isBirthday(const Call& call, std::string_view value) {
  const auto day = parseDay(value);
  return day && *day <= dayOf(call.backend.now());
}

bool isCountryCode(const Call&, std::string_view value) {
  const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  return value.size() == 2 && std::ranges::all_of(value, isLetter);
}

bool isDriverType(const Call&, std::string_view value) {
  return value == "WEEKEND_DRIVER" || value == "OCCASIONAL_DRIVER" || value == "FREQUENT_DRIVER" ||
         value == "COMMUTER" || value == "PROFESSIONAL_DRIVER";
}

bool isDataCollectionType(const Call&, std::string_view value) {
  return value == "OBD" || value == "MOBILE";
}

bool isScoringType(const Call&, std::string_view value) { return value == "IMS" || value == "WTW"; }

bool isEnrollmentModelType(const Call&, std::string_view value) {
  return value == "MOBILE_FLEXIBLE" || value == "MOBILE_WITH_VEHICLE_IDENTIFIER" || value == "OBD";
}

struct Field {
  std::string_view part;
  const char* column;
  Check accepts;
};

constexpr std::array<Field, 21> fields{{
    {"publicDisplayName", "public_display_name", &isAny},
    {"postalcode", "postalcode", &isAny},
    {"avatar", "avatar", &isAny},
    {"gender", "gender", &isFilled},
    {"dateOfBirth", "date_of_birth", &isBirthday},
    {"firstName", "first_name", &isAny},
    {"lastName", "last_name", &isAny},
    {"email", "email", &isEmail},
    {"phone", "phone", &isAny},
    {"selfDescription", "self_description", &isAny},
    {"shareUserProfile", "share_user_profile", &isTruth},
    {"driverType", "driver_type", &isDriverType},
    {"dataCollectionType", "data_collection_type", &isDataCollectionType},
    {"scoringType", "scoring_type", &isScoringType},
    {"enrollmentModelType", "enrollment_model_type", &isEnrollmentModelType},
    {"city", "city", &isAny},
    {"subdivision", "subdivision", &isAny},
    {"subdivisionCode", "subdivision_code", &isAny},
    {"country", "country", &isAny},
    {"countryCode", "country_code", &isCountryCode},
    {"formattedAddress", "formatted_address", &isAny},
}};

const Field& fieldFor(const Call& call, const FormPart& part) {
  const auto field = std::ranges::find(fields, part.name, &Field::part);
  if (field == fields.end()) throw badRequest("the part \"" + part.name + "\" is unknown here");
  if (part.value.size() > longestValue || !field->accepts(call, part.value)) {
    throw badRequest("the part \"" + part.name + "\" has a value that is not allowed");
  }
  return *field;
}

/// Profile and address updates are one and the same request with other parts.
Reply updateUser(Call& call) {
  const std::string& userId = ownUser(call, call.capture(0));
  std::set<std::string_view> seen;
  Transaction transaction{call.database};
  for (const FormPart& part : call.form) {
    const Field& field = fieldFor(call, part);
    if (!seen.insert(field.part).second) {
      throw badRequest("the part \"" + part.name + "\" is given twice");
    }
    call.database.execute(
        std::string{"UPDATE users SET "} + field.column + " = ? WHERE user_id = ?", part.value,
        userId);
  }
  transaction.commit();
  return writeUser(call, userId, {});
}

}  // namespace

void addUsers(Router& router) {
  router.add({.method = "GET", .path = "identity", .handle = readIdentity});
  router.add({.method = "GET", .path = "users/{user}", .handle = readUser, .query = {"expand"}});
  router.add({.method = "POST", .path = "users/{user}", .handle = updateUser, .body = Body::form});
}

}  // namespace orvane::sandbox
