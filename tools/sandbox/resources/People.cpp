// SPDX-License-Identifier: Apache-2.0
#include "resources/People.h"

#include <array>

namespace orvane::sandbox {

namespace {

enum class Kind { text, boolean, truthText, integer };

struct Column {
  const char* name;
  const char* key;
  Kind kind;
  bool isPublic;
};

constexpr std::array<Column, 30> columns{{
    {"user_id", "userId", Kind::text, true},
    {"external_reference_id", "externalReferenceId", Kind::text, false},
    {"user_profile_id", "userProfileId", Kind::text, false},
    {"activated", "activated", Kind::boolean, false},
    {"avatar", "avatar", Kind::text, true},
    {"first_name", "firstName", Kind::text, false},
    {"last_name", "lastName", Kind::text, false},
    {"gender", "gender", Kind::text, true},
    {"public_display_name", "publicDisplayName", Kind::text, true},
    {"city", "city", Kind::text, true},
    {"subdivision", "subdivision", Kind::text, true},
    {"subdivision_code", "subdivisionCode", Kind::text, false},
    {"postalcode", "postalcode", Kind::text, false},
    {"country", "country", Kind::text, true},
    {"country_code", "countryCode", Kind::text, true},
    {"formatted_address", "formattedAddress", Kind::text, false},
    {"date_of_birth", "dateOfBirth", Kind::text, false},
    {"email", "email", Kind::text, false},
    {"phone", "phone", Kind::text, false},
    {"accepted_terms", "acceptedTerms", Kind::boolean, false},
    {"accepted_terms_ms", "acceptedTermsDate", Kind::integer, false},
    {"self_description", "selfDescription", Kind::text, true},
    {"share_user_profile", "shareUserProfile", Kind::truthText, false},
    {"driver_type", "driverType", Kind::text, true},
    {"data_collection_type", "dataCollectionType", Kind::text, false},
    {"scoring_type", "scoringType", Kind::text, false},
    {"enrollment_model_type", "enrollmentModelType", Kind::text, false},
    {"account_role", "accountRole", Kind::text, false},
    {"account_id", nullptr, Kind::text, false},
    {"role_names", nullptr, Kind::text, false},
}};

std::string columnList() {
  std::string list;
  for (const Column& column : columns) {
    list.append(list.empty() ? "users." : ", users.").append(column.name);
  }
  return list;
}

void writeColumn(JsonWriter& json, const Rows& user, int index, const Column& column) {
  if (column.key == nullptr || user.isNull(index)) return;
  json.key(column.key);
  switch (column.kind) {
    case Kind::text:
      json.value(user.text(index));
      break;
    case Kind::boolean:
      json.value(user.boolean(index));
      break;
    case Kind::truthText:
      json.value(user.text(index) == "true");
      break;
    case Kind::integer:
      json.value(user.integer(index));
      break;
  }
}

bool userExists(DatabaseConnection& database, std::string_view userId) {
  return database.query("SELECT 1 FROM users WHERE user_id = ?", userId).next();
}

bool shareAccount(DatabaseConnection& database, std::string_view userId, std::string_view otherId) {
  return database
      .query(
          "SELECT account_id FROM users WHERE user_id = ?1"
          " UNION SELECT account_id FROM account_guests WHERE user_id = ?1"
          " INTERSECT SELECT account_id FROM ("
          "SELECT account_id FROM users WHERE user_id = ?2"
          " UNION SELECT account_id FROM account_guests WHERE user_id = ?2)",
          userId, otherId)
      .next();
}

void requireUser(Call& call, const std::string& userId) {
  if (!userExists(call.database, userId)) throw notFound("there is no such user");
}

}  // namespace

const std::string userColumns = columnList();

void writeUserMembers(JsonWriter& json, const Rows& user) {
  int index = 0;
  for (const Column& column : columns) writeColumn(json, user, index++, column);
}

void writePublicUser(JsonWriter& json, const Rows& user) {
  json.beginObject();
  int index = 0;
  for (const Column& column : columns) {
    if (column.isPublic) writeColumn(json, user, index, column);
    ++index;
  }
  json.endObject();
}

const std::string& readableUser(Call& call, const std::string& userId) {
  if (userId == call.callerId) return userId;
  requireUser(call, userId);
  if (!shareAccount(call.database, call.callerId, userId)) {
    throw forbidden("this user is not associated with the caller");
  }
  return userId;
}

const std::string& ownUser(Call& call, const std::string& userId) {
  if (userId == call.callerId) return userId;
  requireUser(call, userId);
  throw forbidden("only the user may do this");
}

}  // namespace orvane::sandbox
