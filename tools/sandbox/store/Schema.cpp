// SPDX-License-Identifier: Apache-2.0
#include "store/Schema.h"

#include <string>

namespace orvane::sandbox {

namespace {

// Raised whenever the tables or the data change, so that an older file is laid anew.
constexpr std::int64_t kVersion = 1;

// Columns are called as on the wire, in snake case; times are milliseconds since 1970.
constexpr const char* kTables = R"sql(
CREATE TABLE accounts (
  account_id TEXT PRIMARY KEY,
  identifier TEXT NOT NULL
);

CREATE TABLE users (
  user_id TEXT PRIMARY KEY,
  external_reference_id TEXT NOT NULL UNIQUE,
  user_profile_id TEXT NOT NULL,
  account_id TEXT NOT NULL REFERENCES accounts,
  activated INTEGER NOT NULL,
  activated_ms INTEGER,
  avatar TEXT,
  first_name TEXT,
  last_name TEXT,
  gender TEXT,
  public_display_name TEXT,
  city TEXT,
  subdivision TEXT,
  subdivision_code TEXT,
  postalcode TEXT,
  country TEXT,
  country_code TEXT,
  formatted_address TEXT,
  date_of_birth TEXT,
  email TEXT,
  phone TEXT,
  accepted_terms INTEGER NOT NULL,
  accepted_terms_ms INTEGER,
  self_description TEXT,
  share_user_profile TEXT,
  driver_type TEXT,
  data_collection_type TEXT,
  scoring_type TEXT,
  enrollment_model_type TEXT,
  account_role TEXT,
  role_names TEXT NOT NULL,
  support_access_granted TEXT,
  facebook_info TEXT,
  custom_fields TEXT NOT NULL,
  opted_in INTEGER NOT NULL
) WITHOUT ROWID;
CREATE INDEX users_by_account ON users (account_id);
)sql";

std::vector<std::string> tableNames(DatabaseConnection& database) {
  std::vector<std::string> names;
  Rows rows = database.query(
      "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%'");
  while (rows.next()) names.emplace_back(rows.text(0));
  return names;
}

std::int64_t version(DatabaseConnection& database) {
  Rows rows = database.query("PRAGMA user_version");
  return rows.next() ? rows.integer(0) : 0;
}

}  // namespace

bool createSchema(DatabaseConnection& database) {
  if (version(database) == kVersion) return false;
  database.executeScript("PRAGMA foreign_keys = OFF");
  for (const std::string& name : tableNames(database)) {
    database.executeScript(("DROP TABLE " + name).c_str());
  }
  database.executeScript("PRAGMA foreign_keys = ON");
  database.executeScript(kTables);
  database.executeScript(("PRAGMA user_version = " + std::to_string(kVersion)).c_str());
  return true;
}

void clearTables(DatabaseConnection& database) {
  database.execute("PRAGMA defer_foreign_keys = ON");
  for (const std::string& name : tableNames(database)) database.execute("DELETE FROM " + name);
}

}  // namespace orvane::sandbox
