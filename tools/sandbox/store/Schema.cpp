// SPDX-License-Identifier: Apache-2.0
#include "store/Schema.h"

#include <zlib.h>

#include <string>

namespace orvane::sandbox {

namespace {

// Columns are called as on the wire, in snake case; times are milliseconds since 1970.
constexpr const char* tables = R"sql(
-- One row: how the data was laid.
CREATE TABLE laid (
  around_ms INTEGER NOT NULL,
  is_today INTEGER NOT NULL  -- whether that time is today for as long as the data lives
);

-- Rows as they were laid, of those that have changed since.
CREATE TABLE laid_rows (
  table_name TEXT NOT NULL,
  key TEXT NOT NULL,      -- JSON: the values of the primary key
  row TEXT,               -- JSON; absent where there was none
  PRIMARY KEY (table_name, key)
) WITHOUT ROWID;

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
CREATE INDEX users_by_email ON users (email COLLATE NOCASE);

CREATE TABLE vehicles (
  vehicle_id TEXT PRIMARY KEY,
  make TEXT NOT NULL,
  model TEXT NOT NULL,
  nick_name TEXT,
  year INTEGER NOT NULL,
  vin TEXT NOT NULL,
  plate TEXT NOT NULL,
  time_zone_name TEXT NOT NULL,
  time_zone_offset TEXT NOT NULL,
  enrollment_ms INTEGER NOT NULL,
  background_image_enabled INTEGER NOT NULL,
  require_odometer_snapshot INTEGER NOT NULL,
  health TEXT NOT NULL,   -- JSON
  devices TEXT NOT NULL   -- JSON
) WITHOUT ROWID;

CREATE TABLE vehicle_users (
  vehicle_id TEXT NOT NULL REFERENCES vehicles,
  user_id TEXT NOT NULL REFERENCES users,
  role TEXT NOT NULL,     -- OWNER or OPERATOR
  PRIMARY KEY (vehicle_id, user_id)
) WITHOUT ROWID;
CREATE INDEX vehicles_by_user ON vehicle_users (user_id);

CREATE TABLE trips (
  trip_id TEXT PRIMARY KEY,
  user_id TEXT NOT NULL REFERENCES users,
  vehicle_id TEXT REFERENCES vehicles,
  start_ms INTEGER NOT NULL,
  end_ms INTEGER,
  processed_ms INTEGER,
  time_zone_offset_ms INTEGER NOT NULL,
  day TEXT NOT NULL,      -- where the trip began, yyyy-MM-dd
  kilometers REAL NOT NULL,
  average_kmh REAL NOT NULL,
  maximum_kmh REAL NOT NULL,
  seconds REAL NOT NULL,
  idle_seconds REAL NOT NULL,
  litres REAL NOT NULL,
  status TEXT NOT NULL,
  transport_mode TEXT NOT NULL,
  purpose TEXT NOT NULL,
  -- scores are absent until the trip has been processed
  overall REAL,
  acceleration REAL,
  braking REAL,
  cornering REAL,
  speeding REAL,
  over_speeding REAL,
  distraction REAL,
  usage REAL,
  last_latitude REAL NOT NULL,
  last_longitude REAL NOT NULL
) WITHOUT ROWID;
CREATE INDEX trips_by_user ON trips (user_id, day);
CREATE INDEX trips_by_vehicle ON trips (vehicle_id, day);

-- What only expansions ask for, apart so that lists stay quick.
CREATE TABLE trip_details (
  trip_id TEXT PRIMARY KEY REFERENCES trips,
  geometry TEXT NOT NULL,
  reconstructed_start_geometry TEXT,
  events TEXT NOT NULL,   -- JSON
  pois TEXT NOT NULL,     -- JSON
  profile TEXT NOT NULL   -- seconds and speeds of the positions
);

-- Users who drive for an account that is not their own.
CREATE TABLE account_guests (
  account_id TEXT NOT NULL REFERENCES accounts,
  user_id TEXT NOT NULL REFERENCES users,
  PRIMARY KEY (account_id, user_id)
) WITHOUT ROWID;
CREATE INDEX guests_by_user ON account_guests (user_id);

CREATE TABLE invitations (
  invitation_id INTEGER PRIMARY KEY,
  type TEXT NOT NULL,     -- VEHICLE, ACCOUNT or LEADERBOARD
  created_ms INTEGER NOT NULL,
  updated_ms INTEGER NOT NULL,
  status TEXT NOT NULL,
  from_user_id TEXT NOT NULL REFERENCES users,
  to_user_id TEXT REFERENCES users,  -- absent while nobody has the e-mail address or phone
  to_first_name TEXT NOT NULL,
  to_last_name TEXT NOT NULL,
  to_email TEXT,
  to_phone TEXT,
  vehicle_id TEXT REFERENCES vehicles,
  account_id TEXT REFERENCES accounts
);
CREATE INDEX invitations_from ON invitations (from_user_id);
CREATE INDEX invitations_to ON invitations (to_user_id);

CREATE TABLE activations (
  activation_id TEXT PRIMARY KEY,
  code TEXT NOT NULL,
  user_id TEXT REFERENCES users,     -- absent: anybody's
  used_ms INTEGER
) WITHOUT ROWID;

CREATE TABLE devices (
  user_id TEXT NOT NULL REFERENCES users,
  identifier TEXT NOT NULL,
  device_type TEXT NOT NULL,
  enrollment_device_id TEXT NOT NULL,
  serial_number TEXT,
  push_token TEXT,
  app_id INTEGER,
  active INTEGER NOT NULL,
  PRIMARY KEY (user_id, identifier)
) WITHOUT ROWID;

CREATE TABLE subscriptions (
  user_id TEXT NOT NULL REFERENCES users,
  enrollment_id INTEGER NOT NULL,
  type TEXT NOT NULL,
  start_ms INTEGER NOT NULL,
  length_ms INTEGER NOT NULL,
  trial_ms INTEGER,
  PRIMARY KEY (user_id, enrollment_id)
) WITHOUT ROWID;

CREATE TABLE named_drivers (
  policy_holder_id TEXT NOT NULL REFERENCES users,
  user_id INTEGER NOT NULL,
  user_profile_id TEXT NOT NULL,
  first_name TEXT NOT NULL,
  last_name TEXT NOT NULL,
  email TEXT,
  phone TEXT,
  activated INTEGER NOT NULL,
  activated_ms INTEGER,
  PRIMARY KEY (policy_holder_id, user_id)
) WITHOUT ROWID;

CREATE TABLE alert_settings (
  user_id TEXT NOT NULL REFERENCES users,
  name TEXT NOT NULL,
  value TEXT NOT NULL,
  PRIMARY KEY (user_id, name)
) WITHOUT ROWID;
)sql";

/// A file with other tables than these is laid anew.
std::int64_t expectedVersion() {
  const std::string_view text{tables};
  return static_cast<std::int64_t>(
      crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size())) >> 1U);
}

std::int64_t version(DatabaseConnection& database) {
  Rows rows = database.query("PRAGMA user_version");
  return rows.next() ? rows.integer(0) : 0;
}

}  // namespace

std::vector<std::string> tableNames(DatabaseConnection& database) {
  std::vector<std::string> names;
  Rows rows = database.query(
      "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%'");
  while (rows.next()) names.emplace_back(rows.text(0));
  return names;
}

bool createSchema(DatabaseConnection& database) {
  if (version(database) == expectedVersion()) return false;
  database.executeScript("PRAGMA foreign_keys = OFF");
  for (const std::string& name : tableNames(database)) {
    database.executeScript(("DROP TABLE " + name).c_str());
  }
  database.executeScript("PRAGMA foreign_keys = ON");
  database.executeScript(tables);
  database.executeScript(("PRAGMA user_version = " + std::to_string(expectedVersion())).c_str());
  return true;
}

void clearTables(DatabaseConnection& database) {
  database.execute("PRAGMA defer_foreign_keys = ON");
  for (const std::string& name : tableNames(database)) database.execute("DELETE FROM " + name);
}

}  // namespace orvane::sandbox
